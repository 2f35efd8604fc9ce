#include "pastdays/PastDays.h"

#include <cmath>
#include <set>

#include "pastdays/DemoCards.h"
#include "pastdays/PastDaysOptions.h"
#include "platform/AudioFileInfo.h"
#include "platform/LocalTime.h"
#include "platform/M4aDecoder.h"
#include "platform/MappedFile.h"
#include "store/MarkerLogReader.h"
#include "store/RecordingLength.h"
#include "store/RecordingManifest.h"
#include "store/StationFolder.h"
#include "support/RecordedLog.h"
#include "support/ScopedTimeZone.h"
#include "tools/PastDaysFixture.h"

namespace sonavault::pastdays {
namespace {

using sonavault::testing::readFile;
using sonavault::testing::RecordedLog;
using sonavault::testing::ScopedTimeZone;
using sonavault::testing::TempFolder;
using sonavault::testing::writeFile;

class PastDays : public ::testing::Test {
  protected:
    const ScopedTimeZone zone_{"UTC"};
    const TempFolder folder_;
    RecordedLog log_;
};

PastDay twoHours(double startSec) {
    return {"two hours", {.startSec = startSec, .endSec = startSec + 7200}, false};
}

TEST_F(PastDays, make_a_full_day_that_is_24_hours_long_to_the_frame) {
    const auto audio = makeYesterday(folder_.path(), fiveDays(1)[0]);
    const auto mapped = MappedFile::open(audio);
    ASSERT_TRUE(mapped) << mapped.error();
    Mp3Walk walk(mapped.value().bytes());
    const auto run = walk.next();
    ASSERT_TRUE(run);
    EXPECT_EQ(run->begin, 0);
    EXPECT_EQ(run->count, 2'400'000);
    EXPECT_EQ(run->header.bitrateKbps, 24);
    EXPECT_FALSE(walk.next());
    const auto length = recordingLengthSec(audio, *fileStamp(audio));
    ASSERT_TRUE(length);
    EXPECT_EQ(*length, 86400);
    EXPECT_EQ(durationLabel(*length), "24:00");
}

TEST_F(PastDays, say_when_their_first_frame_was_on_the_air) {
    const auto audio = makeYesterday(folder_.path(), twoHours(6.5 * 3600));
    const auto manifest = loadManifest(audio, log_);
    ASSERT_TRUE(manifest) << ::testing::PrintToString(log_.lines());
    EXPECT_EQ(manifest->startOffsetSec, 23400);
    EXPECT_EQ(manifest->startedAtIso8601, "2026-11-20T06:30:00.000Z");
    EXPECT_EQ(manifest->sampleRate, 22050);
    EXPECT_EQ(manifest->channels, 1);
    EXPECT_EQ(manifest->bitrateKbps, 24);
    EXPECT_EQ(manifest->sourceMode, "cadenzo_tcp");
    EXPECT_NEAR(*recordingLengthSec(audio, *fileStamp(audio)), 7200, 0.036);
}

TEST_F(PastDays, have_a_log_whose_every_row_reads_and_lies_within_the_audio) {
    const auto audio = makeYesterday(folder_.path(), twoHours(6.5 * 3600));
    const auto log = sidecarURL(audio, "csv");
    const auto markers = parseMarkerCSV(log);
    ASSERT_TRUE(markers);
    EXPECT_GT(markers->size(), 100U);
    EXPECT_EQ(static_cast<int>(markers->size()), countMarkerLines(log));
    for (const Marker& marker : *markers) {
        EXPECT_GE(marker.timeSec, 23400);
        EXPECT_LT(marker.timeSec + marker.durationSec, 23400 + 7201);
    }
}

/// The root mean square of the file's sound from one second of it to another.
double loudness(const std::vector<float>& samples, double from, double to) {
    double energy = 0;
    const auto begin = static_cast<std::size_t>(from * 16000);
    const auto end = std::min(static_cast<std::size_t>(to * 16000), samples.size());
    for (std::size_t i = begin; i < end; ++i)
        energy += static_cast<double>(samples[i]) * samples[i];
    return std::sqrt(energy / static_cast<double>(end - begin));
}

TEST_F(PastDays, are_silent_where_an_outage_was_and_nowhere_else) {
    PastDay day = twoHours(0);
    day.outline.outages = {{1000, 1100}, {5000, 5600, false}};
    const auto samples = decoded(makeYesterday(folder_.path(), day));
    ASSERT_EQ(samples.size(), 7200U * 16000);
    for (const auto& [from, to] : {std::pair{1000, 1100}, {5000, 5600}}) {
        // The decoder lets what came before ring on into two frames.
        EXPECT_EQ(loudness(samples, from + 0.12, to), 0);
        EXPECT_GT(loudness(samples, from - 10, from), 0.01);
        EXPECT_GT(loudness(samples, to, to + 10), 0.01);
    }
    for (double at = 0; at < 7200; at += 10)
        if ((at < 1000 || at >= 1100) && (at < 5000 || at >= 5600)) {
            EXPECT_GT(loudness(samples, at, at + 10), 0.01) << at;
        }
}

TEST_F(PastDays, have_a_legacy_day_that_is_read_as_one) {
    PastDay day = fiveDays(1)[4];
    day.outline.endSec = 5400;
    const auto audio = makeYesterday(folder_.path(), day);
    EXPECT_FALSE(std::filesystem::exists(sidecarURL(audio, "json")));
    EXPECT_TRUE(parseMarkerCSV(sidecarURL(audio, "csv")));
    const auto info = readM4aInfo(audio);
    ASSERT_TRUE(info) << info.error();
    EXPECT_EQ(info.value().sampleRate, 22050);
    EXPECT_NEAR(info.value().durationSec(), 5400, 1024.0 / 22050);
    const auto decoder = openM4a(audio);
    ASSERT_TRUE(decoder) << decoder.error();
    EXPECT_EQ(decoder.value()->channels(), 1);
    EXPECT_EQ(recordingLengthSec(audio, *fileStamp(audio)), info.value().durationSec());
    const auto samples = decoded(audio);
    for (double at = 0; at + 10 <= 5400; at += 10) {
        const double from = at * 22050 / 16000;  // loudness() counts at the rate of an MP3 day
        const bool outage = at + 10 > 1.2 * 3600 && at < 1.2 * 3600 + 20;
        if (!outage) {
            EXPECT_GT(loudness(samples, from, from + 10), 0.01) << at;
        }
    }
    EXPECT_LT(
        loudness(samples, (1.2 * 3600 + 1) * 22050 / 16000, (1.2 * 3600 + 19) * 22050 / 16000),
        1e-4);
}

TEST_F(PastDays, are_the_same_for_the_same_seed) {
    const PastDay day = twoHours(0);
    const std::string first = readFile(makeYesterday(folder_ / "a", day));
    EXPECT_EQ(first.size(), 200'000U * 108);
    EXPECT_EQ(first, readFile(makeYesterday(folder_ / "b", day)));
    EXPECT_EQ(readFile(folder_ / "a" / "Sonavault_2026-11-20.csv"),
              readFile(folder_ / "b" / "Sonavault_2026-11-20.csv"));
    EXPECT_NE(first, readFile(makeYesterday(folder_ / "c", day, 2)));
}

TEST_F(PastDays, leave_a_recording_as_it_is) {
    writeFile(folder_ / "Sonavault_2026-11-20.m4a", "somebody's air");
    writeFile(folder_ / "Sonavault_2026-11-19.mp3", "somebody's air");
    std::vector<std::string> said;
    const auto made =
        makePastDays(folder_.path(), {twoHours(0), twoHours(0), twoHours(0)}, shortMaterial(), kNow,
                     [&said](const std::string& line) { said.push_back(line); });
    ASSERT_TRUE(made) << made.error();
    EXPECT_EQ(readFile(folder_ / "Sonavault_2026-11-20.m4a"), "somebody's air");
    EXPECT_EQ(readFile(folder_ / "Sonavault_2026-11-19.mp3"), "somebody's air");
    EXPECT_FALSE(std::filesystem::exists(folder_ / "Sonavault_2026-11-20.mp3"));
    EXPECT_FALSE(std::filesystem::exists(folder_ / "Sonavault_2026-11-19.csv"));
    EXPECT_EQ(std::filesystem::file_size(folder_ / "Sonavault_2026-11-18.mp3"), 200'000U * 108);
    EXPECT_EQ(said, (std::vector<std::string>{
                        "2026-11-20: has a recording already, which stays",
                        "2026-11-19: has a recording already, which stays",
                        "2026-11-18: two hours",
                    }));
}

TEST_F(PastDays, leave_nothing_but_the_days_behind) {
    makeYesterday(folder_.path(), twoHours(0));
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path()))
        names.insert(entry.path().filename().string());
    EXPECT_EQ(names, (std::set<std::string>{"Sonavault_2026-11-20.mp3", "Sonavault_2026-11-20.json",
                                            "Sonavault_2026-11-20.csv"}));
}

TEST_F(PastDays, fail_with_words_where_there_is_no_room_for_them) {
    writeFile(folder_ / "file", "in the way");
    const auto made = makePastDays(folder_ / "file" / "days", {twoHours(0)}, shortMaterial(), kNow,
                                   [](const std::string&) {});
    ASSERT_FALSE(made);
    EXPECT_NE(made.error().find("file/days"), std::string::npos) << made.error();
}

TEST(PastDates, are_those_before_today_also_where_the_clocks_change) {
    const ScopedTimeZone zone("Europe/Berlin");
    // Monday, 26 October 2026, half past midnight; the day before had 25 hours.
    const WallTime now = WallTime(std::chrono::hours(20'751 * 24 + 23) + std::chrono::minutes(30));
    ASSERT_EQ(isoDateString(now), "2026-10-26");
    std::vector<std::string> dates;
    for (const WallTime day : daysBefore(now, 5)) {
        EXPECT_EQ(clockSecondsSinceMidnight(day), 0);
        dates.push_back(isoDateString(day));
    }
    EXPECT_EQ(dates, (std::vector<std::string>{"2026-10-25", "2026-10-24", "2026-10-23",
                                               "2026-10-22", "2026-10-21"}));
}

TEST(PastDates, begin_at_the_second_that_the_clock_shows_when_it_was_put_on) {
    const ScopedTimeZone zone("Europe/Berlin");
    const TempFolder folder;
    RecordedLog log;
    // Monday, 30 March 2026, 15:00; the day before had 23 hours.
    const WallTime now = WallTime(std::chrono::hours(20'542 * 24 + 13));
    ASSERT_TRUE(makePastDays(folder.path(), {twoHours(6.5 * 3600)}, shortMaterial(), now,
                             [](const std::string&) {}));
    const auto manifest = loadManifest(folder / "Sonavault_2026-03-29.mp3", log);
    ASSERT_TRUE(manifest);
    EXPECT_EQ(manifest->startOffsetSec, 23400);
    EXPECT_EQ(manifest->startedAtIso8601, "2026-03-29T04:30:00.000Z");
}

TEST(PastDaysOptions, find_the_recordings_of_a_home) {
    const auto options = parsePastDaysOptions(
        {"program", "--home", "/demo", "--seed", "7", "--airchecks", "/demo/cards"});
    ASSERT_TRUE(options) << options.error();
    EXPECT_EQ(options.value().recordings, "/demo/Calderwave/Station/Logs/Audio");
    EXPECT_EQ(options.value().airchecks, "/demo/cards");
    EXPECT_EQ(options.value().seed, 7U);
}

TEST(PastDaysOptions, take_a_folder_as_it_is) {
    const auto options = parsePastDaysOptions({"program", "--recordings", "/days"});
    ASSERT_TRUE(options) << options.error();
    EXPECT_EQ(options.value().recordings, "/days");
    EXPECT_EQ(options.value().airchecks, "");
    EXPECT_EQ(options.value().seed, 1U);
}

TEST(PastDaysOptions, refuse_what_names_no_place_or_two) {
    for (const QStringList& wrong : {QStringList{},
                                     {"--home", "/a", "--recordings", "/b"},
                                     {"--home", ""},
                                     {"--home", "/a", "--seed", "-1"},
                                     {"--home", "/a", "--seed", "one"},
                                     {"--home", "/a", "stray"},
                                     {"--nonsense"}}) {
        const auto options = parsePastDaysOptions(QStringList{"program"} + wrong);
        ASSERT_FALSE(options) << wrong.join(' ').toStdString();
        EXPECT_FALSE(options.error().empty());
    }
}

TEST(PastDaysOptions, answer_for_help_and_version_without_a_place) {
    EXPECT_TRUE(parsePastDaysOptions({"program", "--help"}).value().wantsHelp);
    EXPECT_TRUE(parsePastDaysOptions({"program", "--version"}).value().wantsVersion);
    for (const char* option : {"--home", "--recordings", "--seed", "--airchecks", "--version"})
        EXPECT_NE(pastDaysHelpText().find(option), std::string::npos) << option;
    EXPECT_EQ(pastDaysVersionText().rfind("sonavault-past-days ", 0), 0U);
}

TEST(DemoCards, are_ready_and_run_when_the_hour_of_the_start_is_over) {
    LocalTime now{2026, 11, 21, 14, 20, 0, 0};
    const auto cards = demoCards(now);
    ASSERT_EQ(cards.size(), 2U);
    for (const ScheduledAircheckCard& card : cards) {
        EXPECT_TRUE(card.isReady()) << card.label;
        EXPECT_FALSE(card.isDue(now)) << card.label;
    }
    now.hour = 15;
    EXPECT_TRUE(cards[0].isDue(now));
    EXPECT_FALSE(cards[1].isDue(now));
}

TEST(DemoCards, are_found_in_the_preferences_beside_what_is_there) {
    const TempFolder folder;
    writeFile(folder / "conf", "[General]\nSonavaultSourceMode=cadenzo_tcp\n");
    Preferences preferences(folder / "conf");
    storeDemoCards(preferences, {2026, 11, 21, 14, 20, 0, 0});
    const auto stored = preferences.bytes("SVScheduledAirchecks");
    ASSERT_TRUE(stored);
    const auto cards = decodeCards(*stored);
    ASSERT_TRUE(cards);
    EXPECT_EQ(cards->size(), 2U);
    EXPECT_EQ(preferences.text("SonavaultSourceMode"), "cadenzo_tcp");
}

}  // namespace
}  // namespace sonavault::pastdays
