// A life's checks can fail: each fault that they are for is found in a day that was made with it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

#include "automation/ClockChords.h"
#include "life/DayCheck.h"
#include "store/RecordingManifest.h"
#include "support/ScopedTimeZone.h"
#include "support/SyntheticMp3.h"
#include "support/TempFolder.h"
#include "system/SentMarkers.h"

namespace sonavault::testing {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr int kRate = 16000;
constexpr double kStart = 1'774'745'970.4;  // 2026-03-29 00:59:30.4

/// Air from one moment to another, as the automation sends it.
std::vector<float> air(double from, double to) {
    automation::SignalSettings settings;
    settings.sampleRate = kRate;
    automation::ClockChords chords(settings);
    std::vector<float> samples(static_cast<std::size_t>((to - from) * kRate));
    chords.fill(samples, after(WallTime{}, from));
    return samples;
}

std::vector<float> silence(double seconds) {
    return std::vector<float>(static_cast<std::size_t>(seconds * kRate), 0.0F);
}

/// A day's file of these pieces, one behind the other.
AirEvidence dayOf(const std::vector<std::vector<float>>& pieces) {
    Heard heard;
    heard.sampleRate = kRate;
    for (const auto& piece : pieces)
        heard.samples.insert(heard.samples.end(), piece.begin(), piece.end());
    return evidenceOf(heard, kStart);
}

AirStretch stretch(double from, double to, double silentBefore = 0, double ahead = 0) {
    AirStretch made;
    made.from = kStart + from;
    made.to = kStart + to;
    made.silentBefore = silentBefore;
    made.ahead = ahead;
    return made;
}

std::vector<float> airAt(double from, double to) {
    return air(kStart + from, kStart + to);
}

TEST(LifeChecker, is_content_with_a_day_that_is_true_to_the_clock) {
    const auto day = dayOf({airAt(0, 20), silence(10), airAt(30, 50)});
    const std::vector stretches{stretch(0, 20), stretch(30, 50, 9.9)};
    EXPECT_THAT(complaintsAboutAir(day, stretches), IsEmpty());
    const auto accuracy = accuracyOf(day, stretches);
    EXPECT_GE(accuracy.sharp, 38);
    EXPECT_EQ(accuracy.found, accuracy.sharp);

    auto vague = stretches;
    vague[0].slack = 0.1;
    const auto half = accuracyOf(day, vague);
    EXPECT_EQ(half.found, accuracy.found);
    EXPECT_GT(half.sharp, 0);
    EXPECT_LT(half.sharp, accuracy.sharp);
    EXPECT_NEAR(accuracy.earliest, 0, 0.006);
    EXPECT_NEAR(accuracy.latest, 0, 0.006);
}

TEST(LifeChecker, finds_a_shift_of_more_than_is_tolerated_either_way) {
    for (const double shift : {kToleranceSec + 0.015, 0.3, 0.49}) {
        const auto late = dayOf({airAt(0, 10), silence(shift), airAt(10, 20)});
        EXPECT_THAT(complaintsAboutAir(late, {stretch(0, 10), stretch(10.6, 20)}), SizeIs(9));
        const auto early = dayOf({airAt(0, 10), airAt(10 + shift, 20)});
        EXPECT_THAT(complaintsAboutAir(early, {stretch(0, 10), stretch(11, 19)}), SizeIs(8));
    }
    const auto tolerable = dayOf({airAt(0, 10), silence(0.045), airAt(10, 20)});
    EXPECT_THAT(complaintsAboutAir(tolerable, {stretch(0, 10), stretch(10.6, 20)}), IsEmpty());
}

TEST(LifeChecker, finds_a_second_that_is_another) {
    const auto day = dayOf({airAt(0, 10), airAt(11, 20)});
    const auto complaints = complaintsAboutAir(day, {stretch(0, 9), stretch(10.2, 19)});
    EXPECT_THAT(complaints, Contains(HasSubstr("there stands 00:59:42")));
}

TEST(LifeChecker, finds_a_second_that_was_lost_and_made_up_for) {
    const auto day = dayOf({airAt(0, 10), silence(1), airAt(11, 20)});
    const auto complaints = complaintsAboutAir(day, {stretch(0, 20)});
    EXPECT_THAT(complaints, Contains(HasSubstr("2026-03-29 00:59:41.000, due at 10600 ms of the "
                                               "file, is not there")));
    EXPECT_THAT(complaints, Contains(HasSubstr("no air for 1000 ms")));
}

TEST(LifeChecker, finds_a_hole_between_two_chords) {
    const auto day = dayOf({airAt(0, 10), silence(0.05), airAt(10.05, 20)});
    EXPECT_THAT(complaintsAboutAir(day, {stretch(0, 20)}),
                Contains(HasSubstr("no air for 50 ms at 10000 ms of the file")));
}

TEST(LifeChecker, finds_a_hole_of_a_tenth_of_a_second_in_what_does_not_tell_its_time) {
    auto line = stretch(0, 20);
    line.tellsTime = false;
    for (const double hole : {0.05, 0.12}) {
        const auto day = dayOf({airAt(0, 10), silence(hole), airAt(10 + hole, 20)});
        EXPECT_THAT(complaintsAboutAir(day, {line}), SizeIs(hole < 0.1 ? 0 : 1)) << hole;
    }
}

TEST(LifeChecker, finds_sound_where_there_was_no_air) {
    const auto day = dayOf({airAt(0, 10), airAt(5, 10), silence(5), airAt(20, 30)});
    EXPECT_THAT(complaintsAboutAir(day, {stretch(0, 10), stretch(20, 30, 9.5)}),
                Contains(HasSubstr("only 5000 ms of silence between")));
}

TEST(LifeChecker, finds_an_outage_that_was_not_made_up_for) {
    const auto day = dayOf({airAt(0, 10), airAt(20, 30)});
    const auto complaints = complaintsAboutAir(day, {stretch(0, 10), stretch(20, 30, 9.5)});
    EXPECT_THAT(complaints, Contains(HasSubstr("is not there")));
    EXPECT_THAT(complaints, Contains(HasSubstr("of silence between")));
}

TEST(LifeChecker, finds_a_file_that_ends_too_soon) {
    const auto day = dayOf({airAt(0, 10)});
    EXPECT_THAT(complaintsAboutAir(day, {stretch(0, 12)}), Contains(HasSubstr("is not there")));
    auto silentOne = stretch(0, 12);
    silentOne.tellsTime = false;
    EXPECT_THAT(complaintsAboutAir(day, {silentOne}), Contains(HasSubstr("the file ends at")));
}

TEST(LifeChecker, takes_a_clock_that_was_set_back_as_it_is) {
    // Three seconds were heard twice, and from then on the file is ahead by them.
    const auto day = dayOf({airAt(0, 10), airAt(7, 20)});
    EXPECT_THAT(complaintsAboutAir(day, {stretch(0, 10), stretch(7, 20, 0, 3)}), IsEmpty());
    EXPECT_THAT(complaintsAboutAir(day, {stretch(0, 10), stretch(7, 20)}),
                Contains(HasSubstr("there stands")));
}

OwedRow owed(const std::string& row, bool mayBeLost = false) {
    OwedRow made;
    made.text = row;
    made.mayBeLost = mayBeLost;
    return made;
}

const std::string kFirst = "12:00:01,note,Number 1,0\n";
const std::string kSecond = "12:00:02,note,\"Number 2, and last\",0\n";

TEST(LifeChecker, is_content_with_a_log_that_has_each_row_once) {
    const std::string log = kLogHeader + kFirst + kSecond;
    EXPECT_THAT(complaintsAboutLog(log, {owed(kFirst), owed(kSecond)}), IsEmpty());
    EXPECT_THAT(complaintsAboutLog(kLogHeader + kFirst, {owed(kFirst), owed(kSecond, true)}),
                IsEmpty());
}

TEST(LifeChecker, finds_a_marker_that_is_missing) {
    EXPECT_THAT(complaintsAboutLog(kLogHeader + kFirst, {owed(kFirst), owed(kSecond)}),
                Contains(HasSubstr("0 times in the log: 12:00:02")));
}

TEST(LifeChecker, finds_a_marker_that_stands_twice) {
    EXPECT_THAT(complaintsAboutLog(kLogHeader + kFirst + kFirst, {owed(kFirst)}),
                Contains(HasSubstr("2 times")));
    EXPECT_THAT(complaintsAboutLog(kLogHeader + kFirst + kFirst, {owed(kFirst, true)}),
                Contains(HasSubstr("2 times")));
}

TEST(LifeChecker, finds_a_torn_row_at_every_byte) {
    for (std::size_t cut = 1; cut < kSecond.size(); ++cut) {
        const std::string torn = kLogHeader + kFirst + kSecond.substr(0, cut);
        EXPECT_THAT(complaintsAboutLog(torn, {owed(kFirst), owed(kSecond, true)}),
                    Contains(HasSubstr("the last row is torn")))
            << cut;
        EXPECT_THAT(complaintsAboutLog(torn + kFirst, {owed(kFirst), owed(kSecond, true)}),
                    Contains(HasSubstr("a row that nobody sent")))
            << cut;
    }
}

TEST(LifeChecker, finds_a_log_without_its_header) {
    EXPECT_THAT(complaintsAboutLog(kFirst, {owed(kFirst)}), SizeIs(1));
    EXPECT_THAT(complaintsAboutLog("", {}), SizeIs(1));
}

TEST(LifeChecker, finds_a_torn_frame_wherever_it_is) {
    EXPECT_THAT(complaintsAboutStream(SyntheticMp3().frames(50).bytes()), IsEmpty());
    for (int bytes = 1; bytes < 108; ++bytes) {
        const auto atTheEnd = SyntheticMp3().frames(9).tornFrame(bytes).bytes();
        EXPECT_THAT(complaintsAboutStream(atTheEnd), SizeIs(1));
        const auto within = SyntheticMp3().frames(9).tornFrame(bytes).frames(9).bytes();
        EXPECT_THAT(complaintsAboutStream(within), SizeIs(1));
    }
}

TEST(LifeChecker, finds_bytes_that_are_no_frame) {
    for (const int bytes : {5, 1000})
        EXPECT_THAT(complaintsAboutStream(SyntheticMp3().frames(9).junk(bytes).frames(9).bytes()),
                    SizeIs(1));
    EXPECT_THAT(complaintsAboutStream(""), SizeIs(1));
}

TEST(LifeChecker, finds_a_frame_of_another_kind) {
    Mp3Shape other;
    other.sampleRate = 22050;
    EXPECT_THAT(complaintsAboutStream(SyntheticMp3().frames(9).frames(9, other).bytes()),
                SizeIs(1));
}

/// A manifest of a day in UTC whose frame 0 is at 00:59:30.400.
std::string manifestOf(const std::string& startedAt, double startOffsetSec) {
    RecordingManifest manifest;
    manifest.startedAtIso8601 = startedAt;
    manifest.startOffsetSec = startOffsetSec;
    return encodeManifest(manifest);
}

TEST(LifeChecker, finds_a_manifest_that_tells_another_moment_than_it_should) {
    const ScopedTimeZone zone("UTC");
    const TempFolder folder;
    const auto file = folder / "Sonavault_2026-03-29.json";
    const auto complaints = [&file](const std::string& manifest) {
        writeFile(file, manifest);
        return complaintsAboutManifest(file, "2026-03-29");
    };
    const std::string moment = "2026-03-29T00:59:30.400Z";
    EXPECT_THAT(complaints(manifestOf(moment, 3570.4)), IsEmpty());
    EXPECT_THAT(complaints(manifestOf(moment, 3570.39)), Contains(HasSubstr("-10 ms off")));
    EXPECT_THAT(complaints(manifestOf(moment, 3570.41)), Contains(HasSubstr("10 ms off")));
    EXPECT_THAT(complaints(manifestOf("2026-03-28T00:59:30.400Z", 3570.4)),
                Contains(HasSubstr("another day")));
    EXPECT_THAT(complaints(manifestOf("2026-03-29T00:59:30", 3570.4)), SizeIs(1));
    EXPECT_THAT(complaints("{}"), SizeIs(1));
    std::filesystem::remove(file);
    EXPECT_THAT(complaintsAboutManifest(file, "2026-03-29"), SizeIs(1));
}

TEST(LifeChecker, finds_what_is_no_file_of_a_day) {
    const TempFolder folder;
    const std::set<std::string> dates{"2026-03-28", "2026-03-29"};
    for (const char* name : {"Sonavault_2026-03-28.mp3", "Sonavault_2026-03-28.json",
                             "Sonavault_2026-03-29.csv", "Sonavault_2026-03-29.peaks"})
        writeFile(folder / name, "x");
    EXPECT_THAT(complaintsAboutFolder(folder.path(), dates), IsEmpty());
    for (const char* name :
         {"x", "Sonavault_2026-03-30.mp3", "Sonavault_2026-03-29.mp3.new",
          "Sonavault_2026-03-29.m4a", "sonavault_2026-03-29.mp3", ".Sonavault_2026-03-29.json"}) {
        writeFile(folder / name, "x");
        EXPECT_THAT(complaintsAboutFolder(folder.path(), dates),
                    ::testing::ElementsAre(std::string(name) + " is nothing that a day has"));
        std::filesystem::remove(folder / name);
    }
    std::filesystem::create_directory(folder / "Sonavault_2026-03-29.mp3");
    EXPECT_THAT(complaintsAboutFolder(folder.path(), dates), SizeIs(1));
}

TEST(LifeChecker, finds_a_run_that_has_grown) {
    const ProgramRun kept{60, 50'000, 50'000 + kMostGrowthKilobytes, 20, 20 + kMostMoreDescriptors};
    EXPECT_THAT(complaintsAboutUse({kept, kept}), IsEmpty());
    ProgramRun fatter = kept;
    ++fatter.lastKilobytes;
    EXPECT_THAT(complaintsAboutUse({kept, fatter}), Contains(HasSubstr(" KB more after 60")));
    ProgramRun holdsMore = kept;
    ++holdsMore.lastDescriptors;
    EXPECT_THAT(complaintsAboutUse({holdsMore, kept}), Contains(HasSubstr("4 descriptors more")));
}

}  // namespace
}  // namespace sonavault::testing
