// The change of day, as the built program meets it while it records.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <csignal>

#include "platform/LocalTime.h"
#include "store/RecordingManifest.h"
#include "system/Listening.h"
#include "system/MovableClock.h"
#include "system/Night.h"
#include "system/SentMarkers.h"
#include "system/Station.h"

namespace sonavault::testing {
namespace {

using namespace std::chrono_literals;
using TimePoint = std::chrono::system_clock::time_point;

constexpr auto kStarted = "Sonavault recorder: started (Cadenzo TCP) → ";
constexpr auto kStopped = "Sonavault recorder: stopped → ";
constexpr auto kRolledOver = "Sonavault recorder: rolled over → ";
constexpr auto kFiring = "Sonavault recorder: midnight rollover firing";

/// What the encoder adds to a run when it is closed, at most: its delay and the last frame's
/// padding, at 16,000 Hz. Units: seconds
constexpr double kClosing = 0.11;

/// How late the change may come on a busy machine. Units: seconds
constexpr double kLateness = 0.4;

class OverMidnight : public ::testing::Test {
  protected:
    OverMidnight() {
        station_.useLink();
        station_.resumeOnLaunch();
    }

    void launch() {
        program_ = station_.start();
        ASSERT_TRUE(program_->waitForLine("Sonavault audio server: listening on 9171", 20s))
            << program_->text();
    }

    HeardLine wait(const std::string& line, std::chrono::milliseconds patience,
                   std::size_t fromLine = 0) {
        const auto heard = program_->waitForLine(line, patience, fromLine);
        if (!heard) ADD_FAILURE() << "no \"" << line << "\" in\n" << program_->text();
        return heard.value_or(HeardLine{});
    }

    /// The number of the first line that contains `part`.
    std::size_t lineOf(const std::string& part) const {
        std::size_t number = 0;
        for (const auto& line : program_->lines()) {
            if (line.text.find(part) != std::string::npos) return number;
            ++number;
        }
        return number;
    }

    std::filesystem::path fileOf(const std::string& date, const std::string& suffix) const {
        return station_.audioFolder() / ("Sonavault_" + date + "." + suffix);
    }

    RecordingManifest manifestOf(const std::string& date) {
        const auto manifest = readManifest(fileOf(date, "json"));
        if (!manifest) ADD_FAILURE() << "no manifest of " << date;
        return manifest.value_or(RecordingManifest{});
    }

    /// Both start and end of a day's file, told by the day's own clock. Units: seconds of the day
    Stretch covered(const std::string& date) {
        const double start = manifestOf(date).startOffsetSec;
        return {start, start + listenTo(fileOf(date, "mp3")).durationSec()};
    }

    Station station_;
    std::unique_ptr<ChildProcess> program_;
    std::unique_ptr<ChildProcess> automation_;
};

/// The whole seconds of the day at which a file has a burst of tone, and that it has them there and
/// nowhere else.
std::vector<int> burstSeconds(const Heard& heard, double startOffset) {
    constexpr double kStep = 0.01;
    constexpr double kLoudDb = -30;
    std::vector<int> seconds;
    bool wasLoud = false;
    for (double at = 0; at + kStep < heard.durationSec(); at += kStep) {
        const bool isLoud = levelDb(heard.part(at, at + kStep)) > kLoudDb;
        if (isLoud && !wasLoud) {
            const double onset = startOffset + at;
            EXPECT_NEAR(onset, std::round(onset), 0.2) << "a burst out of place";
            seconds.push_back(static_cast<int>(std::lround(onset)));
        }
        wasLoud = isLoud;
    }
    return seconds;
}

std::vector<int> everySecond(int from, int to) {
    std::vector<int> seconds;
    for (int second = from; second <= to; ++second) seconds.push_back(second);
    return seconds;
}

/// A marker every 400 ms for as long as the longest of these tests.
std::string plannedMarkers() {
    std::string plan;
    for (int i = 0; i < 60; ++i)
        plan += std::to_string(0.4 * i) + " marker note duration=" + std::to_string(i) +
                " Number " + std::to_string(i) + "\n";
    return plan;
}

TEST_F(OverMidnight, goes_on_into_the_next_days_file_and_loses_nothing) {
    const Night night = nightIn(8);
    station_.setEnvironment({{"TZ", night.zone}});
    writeFile(fileOf(night.after, "peaks"), "of an earlier run");
    writeFile(station_.home() / "plan", plannedMarkers());
    launch();
    automation_ = station_.startAutomation({"--signal", "tone-bursts", "--rate", "48000",
                                            "--markers", (station_.home() / "plan").string()});
    const auto started = wait(kStarted, 20s);
    wait("Sonavault recorder: midnight rollover armed in 0m ", 5s);
    const auto firing = wait(kFiring, 20s);
    const auto atMidnight = lineOf(kFiring);
    const auto closed = wait(kStopped + fileOf(night.before, "mp3").string(), 5s, atMidnight);
    wait(kRolledOver + fileOf(night.after, "mp3").string(), 5s, atMidnight);
    wait("Sonavault recorder: midnight rollover armed in 1439m 59s", 5s, atMidnight);
    wait("Sonavault sync: wall_elapsed=4.", 20s, atMidnight);
    automation_->signal(SIGTERM);
    const auto stopped = wait(kStopped + fileOf(night.after, "mp3").string(), 10s);
    RecordProperty("fired_after_midnight_s", std::to_string(night.onDayAfter(firing.at)));

    EXPECT_NEAR(night.onDayAfter(firing.at), 1.0 + kLateness / 2, kLateness / 2);
    EXPECT_NEAR(manifestOf(night.before).startOffsetSec, night.onDayBefore(started.at), 0.1);
    EXPECT_NEAR(manifestOf(night.after).startOffsetSec, night.onDayAfter(firing.at), 0.1);
    EXPECT_NEAR(covered(night.before).to, night.onDayBefore(closed.at), 0.06 + kClosing);
    EXPECT_NEAR(covered(night.after).to, night.onDayAfter(stopped.at), 0.06 + kClosing);
    WallTime frameZero;
    ASSERT_TRUE(parseIso8601WithFraction(*manifestOf(night.after).startedAtIso8601, frameZero));
    EXPECT_NEAR(secondsBetween(night.midnight, frameZero), manifestOf(night.after).startOffsetSec,
                0.002);

    const auto oldBursts = burstSeconds(listenTo(fileOf(night.before, "mp3")),
                                        manifestOf(night.before).startOffsetSec);
    const auto newBursts =
        burstSeconds(listenTo(fileOf(night.after, "mp3")), manifestOf(night.after).startOffsetSec);
    ASSERT_GE(oldBursts.size(), 3U);
    // The burst of the second in which the files change may be cut by the change.
    EXPECT_EQ(
        std::vector<int>(oldBursts.begin(), std::find(oldBursts.begin(), oldBursts.end(), 86401)),
        everySecond(oldBursts.front(), 86400));
    const auto second = std::find(newBursts.begin(), newBursts.end(), 2);
    ASSERT_NE(second, newBursts.end());
    EXPECT_EQ(std::vector<int>(second, newBursts.end()), everySecond(2, newBursts.back()));
    EXPECT_GE(newBursts.back(), 4);

    const auto oldLog = readFile(fileOf(night.before, "csv"));
    const auto newLog = readFile(fileOf(night.after, "csv"));
    ASSERT_TRUE(oldLog.starts_with(kLogHeader) && newLog.starts_with(kLogHeader));
    EXPECT_EQ(oldLog + newLog.substr(std::string(kLogHeader).size()),
              logOf(sentRows(*automation_)));
    EXPECT_NE(oldLog.find("\n23:59:5"), std::string::npos);
    EXPECT_EQ(oldLog.find("\n00:00:"), std::string::npos);
    EXPECT_NE(newLog.find("\n00:00:0"), std::string::npos);
    EXPECT_NE(readFile(fileOf(night.after, "peaks")), "of an earlier run");
    std::size_t handshakes = 0;
    for (const auto& line : program_->lines())
        handshakes += line.text.find("handshake OK") != std::string::npos;
    EXPECT_EQ(handshakes, 1U) << "the source goes on";
}

TEST_F(OverMidnight, begins_the_next_day_with_the_link_that_was_lost_at_midnight) {
    const Night night = nightIn(6);
    station_.setEnvironment({{"TZ", night.zone}});
    launch();
    const double drop = -night.onDayAfter(std::chrono::system_clock::now()) - 0.5;
    automation_ =
        station_.startAutomation({"--signal", "tone", "--drop-at", std::to_string(drop) + ":2.5"});
    wait(kStarted + fileOf(night.before, "mp3").string(), 20s);
    wait("Cadenzo dropped while recording", 20s);
    wait(kStarted + fileOf(night.after, "mp3").string(), 20s);
    EXPECT_EQ(lineOf(kFiring), program_->lineCount()) << "it was not recording at midnight";
    EXPECT_NEAR(manifestOf(night.after).startOffsetSec, 2, 0.4);
    EXPECT_NEAR(covered(night.before).to, 86400 - 0.5, 0.3);
}

class EachOddDay : public OverMidnight, public ::testing::WithParamInterface<Night::Day> {};

TEST_P(EachOddDay, ends_when_its_clock_says_so) {
    const Night night = nightIn(5, GetParam());
    station_.setEnvironment({{"TZ", night.zone}});
    launch();
    automation_ = station_.startAutomation({"--signal", "tone"});
    const auto started = wait(kStarted + fileOf(night.before, "mp3").string(), 20s);
    wait("Sonavault recorder: midnight rollover armed in 0m ", 5s);
    const auto firing = wait(kFiring, 20s);
    wait(kRolledOver + fileOf(night.after, "mp3").string(), 5s);
    wait("Sonavault recorder: midnight rollover armed in 1439m 59s", 5s);
    EXPECT_NEAR(night.onDayAfter(firing.at), 1.0 + kLateness / 2, kLateness / 2);
    EXPECT_NEAR(manifestOf(night.before).startOffsetSec, night.onDayBefore(started.at), 0.1);
    EXPECT_NEAR(manifestOf(night.after).startOffsetSec, night.onDayAfter(firing.at), 0.1);
}

INSTANTIATE_TEST_SUITE_P(Day, EachOddDay,
                         ::testing::Values(Night::Day::of23Hours, Night::Day::of25Hours),
                         [](const auto& day) {
                             return day.param == Night::Day::of23Hours ? "of_23_hours"
                                                                       : "of_25_hours";
                         });

/// The program lives by a clock that the test sets; it is about noon at first.
class UnderAMovedClock : public OverMidnight {
  protected:
    static constexpr long kDay = 86400;

    UnderAMovedClock() {
        auto environment = clock_.environment();
        station_.setEnvironment(environment);
        launch();
        // Its own clock is the machine's: air comes in real time whatever a clock shows.
        station_.setEnvironment({{"LD_PRELOAD", ""}});
        automation_ = station_.startAutomation({"--signal", "tone"});
        wait(kStarted, 20s);
        wait("Sonavault sync: wall_elapsed=2.", 10s);
    }

    ~UnderAMovedClock() override {
        program_->signal(SIGKILL);
        program_->waitForEnd(5s);
        MovableClock::cleanUpAfter(*program_);
    }

    MovableClock clock_;
};

TEST_F(UnderAMovedClock, changes_files_soon_after_the_clock_was_put_over_midnight_and_back) {
    clock_.showAhead(kDay);
    const auto put = std::chrono::system_clock::now();
    const auto rolled = wait(kRolledOver, 10s);
    EXPECT_LT(seconds(put, rolled.at), 1.5);
    std::filesystem::path tomorrow = rolled.text.substr(std::string(kRolledOver).size());
    EXPECT_NE(tomorrow, station_.dayFile("mp3"));
    const auto firstStart = readManifestStartedAt(station_.dayFile("json"));
    const auto secondStart = readManifestStartedAt(tomorrow.replace_extension("json"));
    ASSERT_TRUE(firstStart && secondStart);
    EXPECT_NEAR(secondsBetween(*firstStart, *secondStart), kDay + 3.5, 2.5);

    const auto beforeReturn = program_->lineCount();
    wait("Sonavault sync: wall_elapsed=2.", 10s, beforeReturn);
    const auto manifest = readFile(station_.dayFile("json"));
    const auto audio = readFile(station_.dayFile("mp3"));
    clock_.showAhead(0);
    wait(kRolledOver + station_.dayFile("mp3").string(), 10s, beforeReturn);
    // The second of these comes a second after the first, which may be due to the first buffer.
    wait("Sonavault sync:", 10s, program_->lineCount());
    wait("Sonavault sync:", 10s, program_->lineCount());
    EXPECT_EQ(readFile(station_.dayFile("json")), manifest);
    EXPECT_TRUE(readFile(station_.dayFile("mp3")).starts_with(audio));
    EXPECT_GT(readFile(station_.dayFile("mp3")).size(), audio.size());
}

}  // namespace
}  // namespace sonavault::testing
