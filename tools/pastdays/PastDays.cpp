#include "pastdays/PastDays.h"

#include <QTemporaryDir>
#include <algorithm>

#include "pastdays/DayFiles.h"
#include "pastdays/LegacySound.h"
#include "pastdays/Mp3Pieces.h"
#include "platform/LocalTime.h"

namespace sonavault::pastdays {
namespace {

using Say = std::function<void(const std::string&)>;

/// A day that is still to be made.
struct DatedDay {
    const PastDay& day;
    WallTime midnight;
    std::string date;
};

/// What a power cut takes of a demonstration is made again: the disk is left in peace.
DiskSync noSync() {
    return {[](int) { return 0; }, [](int) { return 0; }};
}

/// The moment of that day at which the wall clock shows `second`.
WallTime momentOf(WallTime midnight, double second) {
    const WallTime moment = after(midnight, second);
    return after(moment, second - clockSecondsSinceMidnight(moment));
}

std::vector<DatedDay> missingDays(const std::filesystem::path& recordings,
                                  const std::vector<PastDay>& days, WallTime now, const Say& say) {
    const auto midnights = daysBefore(now, static_cast<int>(days.size()));
    std::vector<DatedDay> missing;
    for (std::size_t i = 0; i < days.size(); ++i) {
        const std::string date = isoDateString(midnights[i]);
        if (dayExists(recordings, date))
            say(date + ": has a recording already, which stays");
        else
            missing.push_back({days[i], midnights[i], date});
    }
    return missing;
}

/// Makes the days of one kind from the same pieces.
template <class WriteOne>
Outcome writeDays(const std::vector<DatedDay>& days, bool legacy,
                  const std::vector<Recipe>& recipes, SoundFormat& format, const Say& say,
                  const WriteOne& writeOne) {
    const auto wanted = [legacy](const DatedDay& dated) { return dated.day.legacy == legacy; };
    if (std::none_of(days.begin(), days.end(), wanted)) return Done{};
    const auto pieces = makePieces(recipes, format);
    if (!pieces) return Outcome::failure(pieces.error());
    const auto shapes = shapesOf(pieces.value());
    for (const DatedDay& dated : days) {
        if (!wanted(dated)) continue;
        const DayPlan plan = planDay(dated.day.outline, shapes, format.frameSec());
        if (auto written = writeOne(dated, plan, pieces.value()); !written) return written;
        say(dated.date + ": " + dated.day.title);
    }
    return Done{};
}

Outcome makeMp3Days(const std::filesystem::path& recordings, const std::vector<DatedDay>& days,
                    const Material& material, const Say& say) {
    const QTemporaryDir scratch;
    if (!scratch.isValid()) return Outcome::failure(scratch.errorString().toStdString());
    DiskFlusher flusher(std::chrono::milliseconds(1500), noSync());
    StandardOutputLog log;
    Mp3Pieces format(scratch.path().toStdString(), flusher, log);
    return writeDays(days, false, material.recipes, format, say,
                     [&](const DatedDay& dated, const DayPlan& plan, const auto& pieces) {
                         return writeDay(filesOf(recordings, dated.date), plan, pieces,
                                         momentOf(dated.midnight, dated.day.outline.startSec),
                                         flusher);
                     });
}

Outcome makeLegacyDays(const std::filesystem::path& recordings, const std::vector<DatedDay>& days,
                       const Material& material, const Say& say) {
    AacPieces format;
    return writeDays(days, true, material.legacyRecipes, format, say,
                     [&](const DatedDay& dated, const DayPlan& plan, const auto& pieces) {
                         const OutputURLs files = filesOf(recordings, dated.date);
                         if (auto written = writeMarkerLog(files.csv, plan); !written)
                             return written;
                         return writeM4a(sidecarURL(files.audio, "m4a"), plan, pieces);
                     });
}

}  // namespace

std::vector<PastDay> fiveDays(unsigned seed) {
    constexpr double kHour = 3600;
    std::vector<PastDay> days{
        {"a full day", {.outages = {{2.4 * kHour, 2.4 * kHour + 25}}}},
        {"a day with outages",
         {.startSec = 1,
          .outages = {{4.25 * kHour, 4.25 * kHour + 95},
                      {9.7 * kHour, 10.85 * kHour, false},
                      {14.9 * kHour, 15.1 * kHour},
                      {20.5 * kHour, 20.6 * kHour, false}}}},
        {"a day that begins at 06:30",
         {.startSec = 6.5 * kHour, .outages = {{12.4 * kHour, 12.4 * kHour + 40}}}},
        {"a day with hour marks only",
         {.startSec = 1, .endSec = 21.25 * kHour, .onlyHourMarks = true}},
        {"a legacy day of three hours",
         {.endSec = 3 * kHour, .outages = {{1.2 * kHour, 1.2 * kHour + 20}}},
         true}};
    for (std::size_t i = 0; i < days.size(); ++i)
        days[i].outline.seed = seed * 5 + static_cast<unsigned>(i);
    return days;
}

std::vector<WallTime> daysBefore(WallTime now, int count) {
    const std::string today = isoDateString(now);
    std::vector<WallTime> midnights;
    // A day may have 25 hours, so that this begins early enough.
    for (WallTime day = startOfNextLocalDay(now - std::chrono::hours(25 * (count + 2)));
         isoDateString(day) != today; day = startOfNextLocalDay(day))
        midnights.insert(midnights.begin(), day);
    midnights.resize(static_cast<std::size_t>(count));
    return midnights;
}

Material standardMaterial(unsigned seed) {
    return {standardRecipes(seed), legacyRecipes(seed)};
}

Outcome makePastDays(const std::filesystem::path& recordings, const std::vector<PastDay>& days,
                     const Material& material, WallTime now, const Say& say) {
    std::error_code error;
    std::filesystem::create_directories(recordings, error);
    if (error) return Outcome::failure(recordings.string() + ": " + error.message());
    const auto missing = missingDays(recordings, days, now, say);
    if (auto made = makeMp3Days(recordings, missing, material, say); !made) return made;
    return makeLegacyDays(recordings, missing, material, say);
}

}  // namespace sonavault::pastdays
