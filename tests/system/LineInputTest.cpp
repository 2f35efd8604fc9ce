// The line input, from a real sound server to the decoded file.

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <thread>
#include <vector>

#include "platform/LocalTime.h"
#include "store/RecordingManifest.h"
#include "support/PrivateSoundServer.h"
#include "system/Listening.h"
#include "system/Station.h"

namespace sonavault::testing {
namespace {

using namespace std::chrono_literals;

constexpr auto kStarted = "Sonavault recorder: started (line input) → ";
constexpr auto kSync = "Sonavault sync:";

/// The root mean square of a sine at half of full scale, which the sound server plays. Units: dBFS
constexpr double kPlayedDb = -9.03;

constexpr auto kOutage = 3s;

class LineInput : public ::testing::Test {
  protected:
    LineInput() {
        station_.setEnvironment(sound_.environment());
        station_.useLineInput();
        station_.resumeOnLaunch();
    }

    void startRecording() {
        program_ = station_.start();
        ASSERT_TRUE(program_->waitForLine(kStarted, 20s)) << program_->text();
    }

    /// Lets the recording run until the program says that this much of the day has passed since its
    /// first frame.
    void runUntil(double elapsed) {
        for (std::size_t line = 0;;) {
            const auto heard = program_->waitForLine(kSync, 20s, line);
            ASSERT_TRUE(heard) << program_->text();
            if (number(heard->text, "wall_elapsed=") >= elapsed) return;
            const auto lines = program_->lines();
            for (line = 0; line < lines.size() && lines[line].at <= heard->at;) ++line;
        }
    }

    /// The middle one of what the last five lines about the clock say: a busy machine may come late
    /// to write a line, which is not the file's fault.
    double latestDriftMs() const {
        std::vector<double> drifts;
        for (const auto& line : program_->lines())
            if (line.text.starts_with(kSync)) drifts.push_back(number(line.text, "drift="));
        if (drifts.size() < 5) return 1e9;
        std::sort(drifts.end() - 5, drifts.end());
        return *(drifts.end() - 3);
    }

    std::size_t padCount() const {
        std::size_t count = 0;
        for (const auto& line : program_->lines())
            count += line.text.find("wall-clock pad") != std::string::npos;
        return count;
    }

    PrivateSoundServer sound_;
    Station station_;
    std::unique_ptr<ChildProcess> program_;
};

TEST_F(LineInput, is_recorded_at_its_frequency_and_level_and_true_to_the_clock) {
    sound_.start();
    startRecording();
    sound_.playTone(1000);
    runUntil(62);
    EXPECT_LE(std::abs(latestDriftMs()), 60);
    program_->signal(SIGKILL);
    const auto heard = listenTo(station_.dayFile("mp3"));
    const auto middle = heard.part(5, 60);
    EXPECT_NEAR(toneFrequency(middle, heard.sampleRate, 1000), 1000, 0.1);
    EXPECT_NEAR(levelDb(middle), kPlayedDb, 1);
    EXPECT_LE(silences(heard, -30, 0.02).size(), padCount() + 1)
        << "silence stands only where the clock asked for it, and before the tone began";
}

TEST_F(LineInput, comes_back_by_itself_when_the_sound_server_died) {
    sound_.start();
    startRecording();
    sound_.playTone(1000);
    runUntil(6);
    sound_.kill();
    const auto died = std::chrono::system_clock::now();
    std::this_thread::sleep_for(kOutage);
    sound_.start();
    const auto back = std::chrono::system_clock::now();
    sound_.playTone(1000);
    const auto lines = program_->lineCount();
    const auto first = program_->waitForLine(kSync, 10s, lines);
    ASSERT_TRUE(first) << program_->text();
    EXPECT_LT(seconds(back, first->at), 2.5);
    runUntil(number(first->text, "wall_elapsed=") + 6);
    EXPECT_LE(std::abs(latestDriftMs()), 60);
    program_->signal(SIGKILL);

    const auto startedAt = readManifestStartedAt(station_.dayFile("json"));
    ASSERT_TRUE(startedAt);
    const auto heard = listenTo(station_.dayFile("mp3"));
    const double diedAt = secondsBetween(*startedAt, died);
    const auto outage = silentSpan(heard, diedAt - 0.5);
    EXPECT_NEAR(outage.from, diedAt, 0.3);
    EXPECT_GT(outage.length(), std::chrono::duration<double>(kOutage).count());
    EXPECT_LT(outage.length(), 6);
    EXPECT_NEAR(
        toneFrequency(heard.part(outage.to + 1, heard.durationSec() - 0.2), heard.sampleRate, 1000),
        1000, 0.1);
}

TEST_F(LineInput, is_recorded_once_a_sound_server_that_starts_late_is_there) {
    program_ = station_.start();
    ASSERT_TRUE(program_->waitForLine("Sonavault recorder: engine.start failed: ", 20s))
        << program_->text();
    sound_.start();
    const auto there = std::chrono::system_clock::now();
    const auto started = program_->waitForLine(kStarted, 10s);
    ASSERT_TRUE(started) << program_->text();
    EXPECT_LT(seconds(there, started->at), 5);
    sound_.playTone(440);
    runUntil(8);
    program_->signal(SIGKILL);
    const auto heard = listenTo(station_.dayFile("mp3"));
    const double end = heard.durationSec();
    const auto tone = heard.part(end - 4, end - 1);
    EXPECT_NEAR(toneFrequency(tone, heard.sampleRate, 440), 440, 0.1);
    EXPECT_GT(levelDb(tone), kPlayedDb - 6) << "a busy machine may cost some of it";
}

}  // namespace
}  // namespace sonavault::testing
