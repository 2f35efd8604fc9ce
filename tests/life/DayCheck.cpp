#include "life/DayCheck.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>

#include "automation/ClockChords.h"
#include "platform/LocalTime.h"
#include "store/MarkerLogReader.h"
#include "store/RecordingManifest.h"
#include "support/WholeFrames.h"
#include "system/SentMarkers.h"

namespace sonavault::testing {

namespace {

// An encoder smears what begins or ends over a frame to either side, and a second of air arrives
// some milliseconds after it was played.
constexpr double kEdgeSec = 0.15;

// The least silence that is put in to keep to the clock is 50 ms, some of which an encoder smears
// over.
constexpr double kShortestHole = 0.03;

// What plays into a sound server is a program too, and may come late.
constexpr double kShortestHoleOfLine = 0.1;

std::string clockText(long long secondOfDay) {
    char text[32];
    std::snprintf(text, sizeof text, "%02lld:%02lld:%02lld", secondOfDay / 3600,
                  secondOfDay / 60 % 60, secondOfDay % 60);
    return text;
}

std::string milliseconds(double seconds) {
    return std::to_string(std::llround(seconds * 1000)) + " ms";
}

/// The whole seconds whose chord lies in the stretch.
std::vector<long long> secondsOf(const AirStretch& stretch) {
    std::vector<long long> seconds;
    if (!stretch.tellsTime) return seconds;
    const double last = stretch.to - automation::ClockChords::kChordSec - kEdgeSec;
    for (auto second = std::llround(std::ceil(stretch.from + kEdgeSec));
         static_cast<double>(second) <= last; ++second)
        seconds.push_back(second);
    return seconds;
}

/// The chord nearest to where that second belongs, at most half a second off.
const HeardChord* chordNear(const AirEvidence& evidence, double at) {
    const auto next =
        std::lower_bound(evidence.chords.begin(), evidence.chords.end(), at,
                         [](const HeardChord& chord, double place) { return chord.at < place; });
    const HeardChord* best = nullptr;
    for (auto each = next == evidence.chords.begin() ? next : next - 1;
         each != evidence.chords.end() && each <= next; ++each)
        if (std::abs(each->at - at) < 0.5 &&
            (!best || std::abs(each->at - at) < std::abs(best->at - at)))
            best = &*each;
    return best;
}

double placeOf(const AirEvidence& evidence, const AirStretch& stretch, double moment) {
    return moment + stretch.ahead - evidence.startedAt;
}

void checkSecond(const AirEvidence& evidence, const AirStretch& stretch, long long second,
                 std::vector<std::string>& complaints) {
    const double place = placeOf(evidence, stretch, static_cast<double>(second));
    const HeardChord* chord = chordNear(evidence, place);
    const std::string where =
        "second " + utcText(static_cast<double>(second)) + ", due at " + milliseconds(place);
    if (!chord) {
        complaints.push_back(where + " of the file, is not there");
        return;
    }
    if (chord->secondOfDay != second % 86400)
        complaints.push_back(where + " of the file: there stands " + clockText(chord->secondOfDay));
    else if (std::abs(chord->at - place) > kToleranceSec + stretch.slack)
        complaints.push_back(where + " of the file, stands " + milliseconds(chord->at - place) +
                             " off");
}

std::size_t blockAt(const AirEvidence& evidence, double place) {
    const auto block = std::llround(place / AirEvidence::kBlockSec);
    return static_cast<std::size_t>(
        std::clamp<long long>(block, 0, static_cast<long long>(evidence.levels.size())));
}

/// No hole between these places of the file.
void checkUnbroken(const AirEvidence& evidence, double from, double to, double shortestHole,
                   std::vector<std::string>& complaints) {
    const std::size_t end = std::max(blockAt(evidence, to), blockAt(evidence, from));
    std::size_t hole = 0;
    for (std::size_t block = blockAt(evidence, from); block <= end; ++block) {
        if (block < end && evidence.levels[block] < AirEvidence::kAirDb) {
            ++hole;
            continue;
        }
        const double length = static_cast<double>(hole) * AirEvidence::kBlockSec;
        if (length >= shortestHole) {
            const double place = static_cast<double>(block - hole) * AirEvidence::kBlockSec;
            complaints.push_back("no air for " + milliseconds(length) + " at " +
                                 milliseconds(place) + " of the file, which is " +
                                 utcText(evidence.startedAt + place));
        }
        hole = 0;
    }
    if (blockAt(evidence, to + AirEvidence::kBlockSec) == evidence.levels.size() &&
        to > evidence.durationSec() + kEdgeSec)
        complaints.push_back("the file ends at " + milliseconds(evidence.durationSec()) +
                             ", before " + milliseconds(to));
}

void checkOutage(const AirEvidence& evidence, const AirStretch& before, const AirStretch& after,
                 std::vector<std::string>& complaints) {
    const double from = placeOf(evidence, before, before.to);
    const double to = placeOf(evidence, after, after.from);
    double silent = 0;
    for (std::size_t block = blockAt(evidence, from); block < blockAt(evidence, to); ++block)
        if (evidence.levels[block] < AirEvidence::kSilentDb) silent += AirEvidence::kBlockSec;
    if (silent < after.silentBefore)
        complaints.push_back("only " + milliseconds(silent) + " of silence between " +
                             utcText(before.to) + " and " + utcText(after.from) +
                             ", where there was no air for " + milliseconds(after.silentBefore));
}

bool isRow(const std::string& row, const OwedRow& owed) {
    return owed.isWhole ? row == owed.text : row.find(owed.text) != std::string::npos;
}

}  // namespace

std::string utcText(double moment) {
    std::string text = iso8601WithMilliseconds(
        WallTime(std::chrono::duration_cast<std::chrono::nanoseconds>(Seconds(moment))));
    text[10] = ' ';
    text.pop_back();
    return text;
}

std::vector<std::string> complaintsAboutAir(const AirEvidence& evidence,
                                            const std::vector<AirStretch>& stretches) {
    std::vector<std::string> complaints;
    const AirStretch* before = nullptr;
    for (const AirStretch& stretch : stretches) {
        const double edge = kEdgeSec + stretch.slack;
        for (const long long second : secondsOf(stretch))
            checkSecond(evidence, stretch, second, complaints);
        checkUnbroken(evidence, placeOf(evidence, stretch, stretch.from) + edge,
                      placeOf(evidence, stretch, stretch.to) - edge,
                      stretch.tellsTime ? kShortestHole : kShortestHoleOfLine, complaints);
        if (before) checkOutage(evidence, *before, stretch, complaints);
        before = &stretch;
    }
    return complaints;
}

Accuracy accuracyOf(const AirEvidence& evidence, const std::vector<AirStretch>& stretches) {
    Accuracy accuracy;
    for (const AirStretch& stretch : stretches) {
        for (const long long second : secondsOf(stretch)) {
            const double place = placeOf(evidence, stretch, static_cast<double>(second));
            const HeardChord* chord = chordNear(evidence, place);
            if (!chord || chord->secondOfDay != second % 86400) continue;
            ++accuracy.found;
            if (stretch.slack > 0) continue;
            const double late = chord->at - place;
            const bool isFirst = accuracy.sharp++ == 0;
            accuracy.earliest = isFirst ? late : std::min(accuracy.earliest, late);
            accuracy.latest = isFirst ? late : std::max(accuracy.latest, late);
        }
    }
    return accuracy;
}

std::vector<std::string> complaintsAboutLog(const std::string& log,
                                            const std::vector<OwedRow>& owed) {
    std::vector<std::string> complaints;
    const std::string header = kLogHeader;
    if (!log.starts_with(header)) return {"the log does not begin with its header"};
    std::vector<int> found(owed.size(), 0);
    for (std::size_t at = header.size(); at < log.size();) {
        const auto newline = log.find('\n', at);
        if (newline == std::string::npos) {
            complaints.push_back("the last row is torn: " + log.substr(at));
            break;
        }
        const std::string row = log.substr(at, newline + 1 - at);
        at = newline + 1;
        std::size_t which = 0;
        while (which < owed.size() && !isRow(row, owed[which])) ++which;
        if (which < owed.size())
            ++found[which];
        else
            complaints.push_back("a row that nobody sent: " + row.substr(0, row.size() - 1));
    }
    for (std::size_t i = 0; i < owed.size(); ++i) {
        const bool isMissing = found[i] == 0 && !owed[i].mayBeLost;
        if (isMissing || found[i] > 1)
            complaints.push_back("a marker stands " + std::to_string(found[i]) +
                                 " times in the log: " + owed[i].text);
    }
    return complaints;
}

std::vector<std::string> complaintsAboutStream(const std::string& bytes) {
    const std::size_t end = bytesOfWholeFrames(bytes);
    if (end == 0) return {"no frame at the beginning"};
    if (end == bytes.size()) return {};
    return {"a tear at byte " + std::to_string(end) + " of " + std::to_string(bytes.size())};
}

std::vector<std::string> complaintsAboutManifest(const std::filesystem::path& manifest,
                                                 const std::string& date) {
    constexpr double kMostOff = 0.002;  // the two are told in milliseconds
    const auto told = readManifest(manifest);
    const auto startedAt = readManifestStartedAt(manifest);
    if (!told || !startedAt) return {"the manifest is missing, or does not tell when frame 0 was"};
    std::vector<std::string> complaints;
    if (isoDateString(*startedAt) != date)
        complaints.push_back("frame 0 is of another day: " + *told->startedAtIso8601);
    const double off = told->startOffsetSec - clockSecondsSinceMidnight(*startedAt);
    if (!(std::abs(off) <= kMostOff))
        complaints.push_back("start_offset_sec is " + milliseconds(off) + " off its moment");
    return complaints;
}

std::vector<std::string> complaintsAboutFolder(const std::filesystem::path& folder,
                                               const std::set<std::string>& dates) {
    std::set<std::string> known;
    for (const auto& date : dates)
        for (const char* suffix : {".mp3", ".json", ".csv", ".peaks"})
            known.insert("Sonavault_" + date + suffix);
    std::vector<std::string> complaints;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (const auto name = entry.path().filename().string();
            !known.contains(name) || !entry.is_regular_file())
            complaints.push_back(name + " is nothing that a day has");
    return complaints;
}

std::vector<std::string> complaintsAboutUse(const std::vector<ProgramRun>& runs) {
    std::vector<std::string> complaints;
    for (const auto& run : runs) {
        const long grown = run.lastKilobytes - run.firstKilobytes;
        const int opened = run.lastDescriptors - run.firstDescriptors;
        const std::string after = " more after " + std::to_string(run.seconds) + " s";
        if (grown > kMostGrowthKilobytes)
            complaints.push_back(std::to_string(grown) + " KB" + after);
        if (opened > kMostMoreDescriptors)
            complaints.push_back(std::to_string(opened) + " descriptors" + after);
    }
    return complaints;
}

}  // namespace sonavault::testing
