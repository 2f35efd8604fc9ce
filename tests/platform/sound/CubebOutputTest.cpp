#include "platform/CubebOutput.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/CubebOutputStream.h"
#include "support/Eventually.h"
#include "support/PrivateSoundServer.h"

namespace sonavault::testing {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr double kRate = 48000;
constexpr auto kAboutASecond = 1500ms;
constexpr auto kAtOnce = 100ms;

/// Makes a sound as fast as it is heard, on a thread of its own: a sine of 0.5 on the left and of
/// half as much on the right.
class ToneMaker {
  public:
    ToneMaker(double hertz, double sampleRate)
        : sound_(std::make_shared<AudioOutputSound>(sampleRate)),
          thread_([this, turn = 2 * M_PI * hertz / sampleRate] { make(turn); }) {}
    ~ToneMaker() {
        over_ = true;
        sound_->wake();
        thread_.join();
    }
    ToneMaker(const ToneMaker&) = delete;
    ToneMaker& operator=(const ToneMaker&) = delete;

    const std::shared_ptr<AudioOutputSound>& sound() const { return sound_; }

  private:
    void make(double turn) {
        for (std::int64_t n = 0; !over_; ++n) {
            const auto sample = static_cast<float>(0.5 * std::sin(turn * static_cast<double>(n)));
            const std::array<float, 2> frame{sample, sample / 2};
            while (!over_ && sound_->push(frame.data(), 1) == 0) sound_->awaitRoom();
        }
    }

    std::shared_ptr<AudioOutputSound> sound_;
    std::atomic<bool> over_{false};
    std::thread thread_;
};

float decibels(double amplitude) {
    return static_cast<float>(20 * std::log10(amplitude / std::sqrt(2)));
}

std::vector<float> sideOf(const std::vector<float>& samples, std::size_t side) {
    std::vector<float> one;
    for (std::size_t i = side; i < samples.size(); i += 2) one.push_back(samples[i]);
    return one;
}

float loudest(const std::vector<float>& samples) {
    return samples.empty() ? 0 : *std::max_element(samples.begin(), samples.end());
}

/// How often the samples cross zero upwards in a second.
double frequency(const std::vector<float>& samples) {
    int crossings = 0;
    for (std::size_t i = 1; i < samples.size(); ++i)
        crossings += samples[i - 1] < 0 && samples[i] >= 0;
    return crossings * kRate / static_cast<double>(samples.size());
}

class CubebOutputTest : public ::testing::Test {
  protected:
    explicit CubebOutputTest(const PrivateSoundServer::Devices& devices = {}) : server_(devices) {
        server_.exportEnvironment();
        output_ = std::make_unique<CubebOutput>();
    }

    void listen(const std::string& sink = "line") {
        server_.listenTo(sink);
        ASSERT_TRUE(eventually([&] { return !server_.heard().empty(); })) << server_.output();
    }

    /// The next second of what is heard, once it is loud; one vector a side.
    std::vector<std::vector<float>> nextLoudSecond() {
        const auto isLoud = [&] {
            const auto samples = server_.heard();
            const auto last = std::min<std::size_t>(samples.size(), 2000);
            return loudest({samples.end() - static_cast<std::ptrdiff_t>(last), samples.end()}) >
                   0.4F;
        };
        EXPECT_TRUE(eventually(isLoud)) << server_.output();
        const auto from = server_.heard().size() / 2 * 2;
        const auto second = static_cast<std::size_t>(2 * kRate);
        EXPECT_TRUE(eventually([&] { return server_.heard().size() >= from + second; }));
        auto samples = server_.heard();
        samples.resize(from + second);
        samples.erase(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(from));
        return {sideOf(samples, 0), sideOf(samples, 1)};
    }

    /// The same, or one of the seconds that follow, in which the tone has no hole: a busy machine
    /// may come late with some of it.
    std::vector<std::vector<float>> nextSecondOf(double hertz) {
        constexpr int kMostSeconds = 20;
        auto sides = nextLoudSecond();
        for (int i = 1; i < kMostSeconds && std::abs(frequency(sides[0]) - hertz) > 2; ++i)
            sides = nextLoudSecond();
        return sides;
    }

    void playOnARunningServer() {
        server_.start();
        ASSERT_TRUE(output_->start());
        output_->play(tone_.sound());
        ASSERT_TRUE(flows());
    }

    /// Whether more sound is sent out from now on.
    bool flows(std::chrono::milliseconds patience = kEventually) {
        const auto before = tone_.sound()->taken();
        return eventually([&] { return tone_.sound()->taken() > before + 4800; }, patience);
    }

    double secondsToFlow() {
        const auto begun = Clock::now();
        EXPECT_TRUE(flows()) << server_.output();
        const double seconds = std::chrono::duration<double>(Clock::now() - begun).count();
        std::cout << "sound flows " << seconds << " s after the server is back\n";
        return seconds;
    }

    PrivateSoundServer server_;
    std::unique_ptr<CubebOutput> output_;
    ToneMaker tone_{1000, 48000};
};

class CubebOutputWithoutDevices : public CubebOutputTest {
  protected:
    CubebOutputWithoutDevices() : CubebOutputTest({48000, 2, false}) {}
};

TEST(OutputMeter, tells_the_level_of_each_side_a_buffer_of_1024_frames_at_a_time) {
    OutputMeter meter;
    std::vector<float> samples;
    for (int i = 0; i < 1024; ++i) samples.insert(samples.end(), {0.5F, -0.25F});
    EXPECT_FALSE(meter.add(samples.data(), 1000));
    EXPECT_EQ(meter.levels().left, kSilenceDb);
    EXPECT_TRUE(meter.add(samples.data(), 24));
    EXPECT_NEAR(meter.levels().left, -6.0206, 0.001);
    EXPECT_NEAR(meter.levels().right, -12.0412, 0.001);
    const std::vector<float> silence(2048);
    EXPECT_TRUE(meter.add(silence.data(), 1024));
    EXPECT_EQ(meter.levels().left, kSilenceDb);
    EXPECT_EQ(meter.levels().right, kSilenceDb);
}

TEST_F(CubebOutputTest, is_heard_at_its_frequency_and_level_on_both_sides) {
    server_.start();
    listen();
    ASSERT_TRUE(output_->start());
    output_->play(tone_.sound());
    const auto sides = nextSecondOf(1000);
    EXPECT_NEAR(frequency(sides[0]), 1000, 2);
    EXPECT_NEAR(loudest(sides[0]), 0.5, 0.001);
    EXPECT_NEAR(loudest(sides[1]), 0.25, 0.001);
    EXPECT_NEAR(output_->levels().left, decibels(0.5), 0.2);
    EXPECT_NEAR(output_->levels().right, decibels(0.25), 0.2);
}

TEST_F(CubebOutputTest, keeps_the_pitch_of_a_sound_of_another_rate) {
    server_.start();
    listen();
    ASSERT_TRUE(output_->start());
    const ToneMaker slow(1000, 16000);
    output_->play(slow.sound());
    ASSERT_TRUE(eventually([&] { return slow.sound()->taken() > 16000; }));
    EXPECT_NEAR(frequency(nextSecondOf(1000)[0]), 1000, 2);
}

TEST_F(CubebOutputTest, tells_silence_once_it_is_stopped) {
    playOnARunningServer();
    ASSERT_TRUE(eventually([&] { return output_->levels().left > -20; }));
    output_->stop();
    EXPECT_TRUE(eventually([&] { return output_->levels().left == kSilenceDb; }));
    EXPECT_EQ(output_->levels().right, kSilenceDb);
    const auto taken = tone_.sound()->taken();
    EXPECT_FALSE(flows(300ms));
    EXPECT_EQ(tone_.sound()->taken(), taken);
}

TEST_F(CubebOutputTest, changes_from_sound_to_sound_without_a_gap_in_the_stream) {
    playOnARunningServer();
    const auto stream = server_.control({"list", "short", "sink-inputs"});
    ASSERT_NE(stream, "");
    for (int i = 0; i < 20; ++i) {
        const ToneMaker other(500, 48000);
        output_->play(other.sound());
        ASSERT_TRUE(eventually([&] { return other.sound()->taken() > 480; }));
    }
    EXPECT_EQ(server_.control({"list", "short", "sink-inputs"}), stream);
}

TEST_F(CubebOutputTest, refuses_in_words_without_a_server_and_is_heard_at_the_next_play) {
    const auto refused = output_->start();
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error(), "no output device can be opened (alsa)");
    EXPECT_EQ(output_->levels().left, kSilenceDb);
    server_.start();
    output_->play(tone_.sound());
    EXPECT_TRUE(flows());
}

TEST_F(CubebOutputTest, is_heard_by_itself_once_there_is_a_server) {
    output_->play(tone_.sound());
    EXPECT_FALSE(flows(700ms));
    server_.start();
    EXPECT_LT(secondsToFlow(), 2);
}

TEST_F(CubebOutputWithoutDevices, comes_to_no_harm_when_the_server_has_no_output) {
    server_.start();
    (void)output_->start();  // some servers make a stand-in, and then there is one
    output_->play(tone_.sound());
    server_.addSink("line", 48000, 2);
    EXPECT_TRUE(flows());
}

TEST_F(CubebOutputTest, comes_back_when_the_server_is_killed_in_the_midst_of_a_play) {
    playOnARunningServer();
    server_.kill();
    EXPECT_TRUE(eventually([&] { return output_->levels().left == kSilenceDb; }))
        << "what is not sent out has no level";
    server_.start();
    EXPECT_LT(secondsToFlow(), 2);
    EXPECT_TRUE(eventually([&] { return output_->levels().left > -20; }));
}

TEST_F(CubebOutputTest, is_heard_again_at_the_next_play_when_the_server_died_while_nothing_played) {
    playOnARunningServer();
    output_->stop();
    server_.kill();
    server_.start();
    output_->play(tone_.sound());
    EXPECT_LT(secondsToFlow(), 2);
}

TEST_F(CubebOutputTest, never_makes_the_caller_wait_for_a_frozen_server) {
    server_.start();
    server_.freeze();
    auto begun = Clock::now();
    EXPECT_TRUE(output_->start());
    EXPECT_LT(Clock::now() - begun, kAboutASecond);
    begun = Clock::now();
    output_->play(tone_.sound());
    output_->stop();
    output_->play(tone_.sound());
    EXPECT_LT(Clock::now() - begun, kAtOnce);
    EXPECT_EQ(output_->levels().left, kSilenceDb);
    server_.thaw();
    EXPECT_LT(secondsToFlow(), 2);
}

TEST_F(CubebOutputTest, goes_on_after_a_freeze_in_which_the_stream_was_given_up) {
    playOnARunningServer();
    server_.freeze();
    EXPECT_TRUE(eventually([&] { return output_->levels().left == kSilenceDb; }));
    EXPECT_FALSE(flows(6s));
    const auto begun = Clock::now();
    output_->stop();
    output_->play(tone_.sound());
    EXPECT_LT(Clock::now() - begun, kAtOnce);
    server_.thaw();
    EXPECT_LT(secondsToFlow(), 2);
}

TEST_F(CubebOutputTest, follows_a_change_of_the_default_device) {
    playOnARunningServer();
    server_.addSink("spare", 48000, 2);
    listen("spare");
    server_.control({"set-default-sink", "spare"});
    EXPECT_NEAR(frequency(nextSecondOf(1000)[0]), 1000, 2);
}

TEST_F(CubebOutputTest, comes_back_when_the_device_is_plugged_in_again) {
    playOnARunningServer();
    server_.control({"unload-module", "module-null-sink"});
    EXPECT_FALSE(flows(1s));
    server_.addSink("line", 44100, 1);
    EXPECT_LT(secondsToFlow(), 2);
}

/// The life of a program that plays, meets a server that freezes, and wants to end. Gives its exit
/// status.
int endWhileFrozen(PrivateSoundServer& server) {
    server.exportEnvironment();
    ToneMaker tone(1000, 48000);
    auto output = std::make_unique<CubebOutput>();
    output->play(tone.sound());
    if (!eventually([&] { return tone.sound()->taken() > 4800; })) return 1;
    server.freeze();
    const auto begun = Clock::now();
    output.reset();
    return Clock::now() - begun < kAboutASecond ? 0 : 2;
}

// In a process of its own: the device thread that is left behind must not keep the process from
// ending either.
TEST(CubebOutputDeathTest, lets_the_program_end_while_the_server_is_frozen) {
    PrivateSoundServer server;
    server.start();
    EXPECT_EXIT(std::exit(endWhileFrozen(server)), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace sonavault::testing
