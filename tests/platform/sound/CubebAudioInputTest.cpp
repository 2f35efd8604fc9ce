#include "platform/CubebAudioInput.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

#include "platform/Listener.h"
#include "support/PrivateSoundServer.h"

namespace sonavault::testing {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Blocks = std::vector<Listener::Block>;

constexpr AudioFormat kStereo{48000, 2, true};
constexpr int kBufferFrames = 4096;

// The longest that a control call may take, with room for a busy machine around the 0.9 s of
// waiting.
constexpr auto kAboutASecond = 1500ms;

constexpr auto kRecoveredWithin = 2s;
constexpr auto kSurelyWithin = 15s;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double rms(const std::vector<float>& samples) {
    double sum = 0;
    for (const float sample : samples) sum += static_cast<double>(sample) * sample;
    return std::sqrt(sum / static_cast<double>(samples.size()));
}

/// The mean distance of the upward crossings of zero, as a frequency.
double frequency(const std::vector<float>& samples, double sampleRate) {
    double first = -1;
    double last = -1;
    int crossings = 0;
    for (std::size_t i = 1; i < samples.size(); ++i) {
        const double before = samples[i - 1];
        const double after = samples[i];
        if (before >= 0 || after < 0) continue;
        last = static_cast<double>(i - 1) + before / (before - after);
        if (crossings++ == 0) first = last;
    }
    return crossings < 2 ? 0 : (crossings - 1) * sampleRate / (last - first);
}

std::vector<float> channelOf(const Blocks& blocks, std::size_t channel) {
    std::vector<float> all;
    for (const auto& block : blocks)
        all.insert(all.end(), block.channels.at(channel).begin(), block.channels.at(channel).end());
    return all;
}

/// All blocks since the last quiet one.
Blocks loudEnd(const Blocks& blocks) {
    std::size_t first = blocks.size();
    while (first > 0 && rms(blocks[first - 1].channels[0]) > 0.2) --first;
    return {blocks.begin() + static_cast<std::ptrdiff_t>(first), blocks.end()};
}

/// 16-bit stereo at 48,000 Hz: a sine on the left, silence on the right.
std::string leftOnlyWaveFile(double hertz, int seconds) {
    std::string bytes;
    const auto put = [&](std::uint32_t value, int count) {
        for (int i = 0; i < count; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
    };
    const auto frames = static_cast<std::uint32_t>(48000 * seconds);
    bytes += "RIFF", put(36 + frames * 4, 4), bytes += "WAVEfmt ";
    put(16, 4), put(1, 2), put(2, 2), put(48000, 4), put(48000 * 4, 4), put(4, 2), put(16, 2);
    bytes += "data", put(frames * 4, 4);
    for (std::uint32_t i = 0; i < frames; ++i) {
        const auto sample = std::lround(16000 * std::sin(2 * M_PI * hertz * i / 48000));
        put(static_cast<std::uint16_t>(sample), 2), put(0, 2);
    }
    return bytes;
}

class CubebAudioInputTest : public ::testing::Test {
  protected:
    explicit CubebAudioInputTest(const PrivateSoundServer::Devices& devices = {})
        : server_(devices) {
        server_.exportEnvironment();
        input_ = std::make_unique<CubebAudioInput>();
    }

    void beginCapture(const AudioFormat& format = kStereo) {
        input_->installTap(kBufferFrames, format, listener_.tap());
        const auto started = input_->start();
        ASSERT_TRUE(started) << started.error();
    }

    void beginCaptureOfARunningServer() {
        server_.start();
        beginCapture();
        ASSERT_TRUE(listener_.awaitBlocks(5, kSurelyWithin));
    }

    /// Plays a tone until two seconds of it were heard without a break; gives its frequency as
    /// heard.
    double heardFrequency(double played, const std::string& sink = "line") {
        server_.playTone(played, sink);
        return frequencyOfTheEnd(played);
    }

    double frequencyOfTheEnd(double expected) {
        Blocks heard;
        const auto enough = [&](const Blocks& blocks) {
            const auto loud = loudEnd(blocks);
            // The first loud block may begin in the middle with the tone.
            if (loud.size() < 2) return false;
            heard.assign(loud.begin() + 1, loud.end());
            const double rate = heard[0].format.sampleRate;
            const auto twoSeconds = static_cast<std::size_t>(2 * rate / kBufferFrames) + 1;
            if (heard.size() > twoSeconds)
                heard.erase(heard.begin(), heard.end() - static_cast<std::ptrdiff_t>(twoSeconds));
            return heard.size() == twoSeconds &&
                   std::abs(frequency(channelOf(heard, 0), rate) - expected) < 0.5;
        };
        EXPECT_TRUE(listener_.await(enough, kSurelyWithin))
            << heard.size() << " loud blocks. " << server_.output();
        return heard.empty() ? 0 : frequency(channelOf(heard, 0), heard[0].format.sampleRate);
    }

    /// How long it takes from now until a block comes. Units: seconds
    double secondsToNextBlock() {
        const auto start = Clock::now();
        listener_.clear();
        EXPECT_TRUE(listener_.awaitBlocks(1, kSurelyWithin)) << server_.output();
        const double seconds = secondsSince(start);
        std::cout << "samples flow " << seconds << " s after the server is back\n";
        RecordProperty("secondsToRecover", std::to_string(seconds));
        return seconds;
    }

    /// For as long as that, which a stream needs to be given up.
    void stayInTrouble(std::chrono::milliseconds time) {
        listener_.clear();
        EXPECT_FALSE(listener_.awaitBlocks(static_cast<std::size_t>(-1), time));
    }

    static double limit() { return std::chrono::duration<double>(kRecoveredWithin).count(); }

    PrivateSoundServer server_;
    Listener listener_;
    std::unique_ptr<CubebAudioInput> input_;
};

class CubebAudioInputAt44100Mono : public CubebAudioInputTest {
  protected:
    CubebAudioInputAt44100Mono() : CubebAudioInputTest({44100, 1, true}) {}
};

class CubebAudioInputWithoutDevices : public CubebAudioInputTest {
  protected:
    CubebAudioInputWithoutDevices() : CubebAudioInputTest({48000, 2, false}) {}
};

TEST_F(CubebAudioInputAt44100Mono, knows_the_default_device_and_its_format) {
    server_.start();
    EXPECT_EQ(input_->outputFormat(), (AudioFormat{44100, 1, true}));
    EXPECT_EQ(input_->defaultDeviceName(), "Monitor of Line");
    beginCapture({44100, 1, true});
    EXPECT_EQ(input_->outputFormat(), (AudioFormat{44100, 1, true})) << "asked while capturing";
    EXPECT_NEAR(heardFrequency(1000), 1000, 0.5);
}

TEST_F(CubebAudioInputAt44100Mono, keeps_the_format_of_the_tap_whatever_the_device_is_like) {
    server_.start();
    beginCapture(kStereo);
    EXPECT_NEAR(heardFrequency(1000), 1000, 0.5);
    for (const auto& block : listener_.blocks()) ASSERT_EQ(block.format, kStereo);
}

TEST_F(CubebAudioInputTest, assumes_a_usual_format_and_no_name_without_a_server) {
    EXPECT_EQ(input_->outputFormat(), kStereo);
    EXPECT_EQ(input_->defaultDeviceName(), "");
}

TEST_F(CubebAudioInputTest, refuses_in_words_without_a_server_and_starts_once_there_is_one) {
    input_->installTap(kBufferFrames, kStereo, listener_.tap());
    const auto refused = input_->start();
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error(), "there is no input device (alsa)");
    EXPECT_FALSE(input_->isRunning());
    server_.start();
    const auto started = input_->start();
    ASSERT_TRUE(started) << started.error();
    EXPECT_TRUE(input_->isRunning());
    EXPECT_TRUE(listener_.awaitBlocks(3, kSurelyWithin));
}

TEST_F(CubebAudioInputWithoutDevices, refuses_in_words_when_the_server_has_no_input_device) {
    server_.start();
    const auto refused = input_->start();
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error(), "there is no input device (pulse)");
    EXPECT_FALSE(input_->isRunning());
}

TEST_F(CubebAudioInputTest, refuses_a_format_that_no_stream_can_have) {
    server_.start();
    for (const AudioFormat& format : {AudioFormat{48000, 0, true}, AudioFormat{48000, 9, true},
                                      AudioFormat{0, 2, true}, AudioFormat{NAN, 2, true}}) {
        input_->installTap(kBufferFrames, format, listener_.tap());
        EXPECT_FALSE(input_->start());
        EXPECT_FALSE(input_->isRunning());
    }
}

TEST_F(CubebAudioInputTest, hears_what_is_played_in_whole_blocks) {
    server_.start();
    beginCapture();
    EXPECT_NEAR(heardFrequency(1000), 1000, 0.5);
    const auto blocks = listener_.blocks();
    for (const auto& block : blocks) {
        ASSERT_EQ(block.frames, kBufferFrames);
        ASSERT_EQ(block.format, kStereo);
    }
    EXPECT_NEAR(rms(blocks.back().channels[0]), 0.5 / std::sqrt(2), 0.01);
    EXPECT_NEAR(rms(blocks.back().channels[1]), 0.5 / std::sqrt(2), 0.01);
}

TEST_F(CubebAudioInputTest, keeps_the_channels_apart) {
    const TempFolder folder;
    writeFile(folder / "left.wav", leftOnlyWaveFile(700, 10));
    server_.start();
    beginCapture({48000, 2, false});
    server_.playFile(folder / "left.wav");
    EXPECT_NEAR(frequencyOfTheEnd(700), 700, 0.5);
    EXPECT_EQ(rms(listener_.blocks().back().channels[1]), 0);
}

TEST_F(CubebAudioInputTest, captures_as_many_channels_as_are_asked_for) {
    server_.start();
    for (const int channels : {1, 3, 6, 8}) {
        listener_.clear();
        beginCapture({48000, channels, true});
        ASSERT_TRUE(listener_.awaitBlocks(2, kSurelyWithin));
        EXPECT_EQ(listener_.blocks()[0].channels.size(), static_cast<std::size_t>(channels));
        input_->stop();
    }
}

TEST_F(CubebAudioInputTest, calls_no_tap_after_it_was_removed_or_stopped) {
    beginCaptureOfARunningServer();
    input_->removeTap();
    listener_.clear();
    EXPECT_TRUE(input_->isRunning());
    EXPECT_FALSE(listener_.awaitBlocks(1, 500ms));
    input_->installTap(1024, kStereo, listener_.tap());
    EXPECT_TRUE(listener_.awaitBlocks(5, kSurelyWithin)) << "a new tap while running";
    EXPECT_EQ(listener_.blocks()[0].frames, 1024);
    input_->stop();
    listener_.clear();
    EXPECT_FALSE(input_->isRunning());
    EXPECT_FALSE(listener_.awaitBlocks(1, 500ms));
    ASSERT_TRUE(input_->start());
    EXPECT_TRUE(listener_.awaitBlocks(5, kSurelyWithin)) << "the same tap after a new start";
}

TEST_F(CubebAudioInputTest, follows_a_change_of_the_default_device) {
    server_.start();
    server_.addSink("spare", 44100, 1);
    beginCapture();
    server_.playTone(2000, "spare");
    EXPECT_NEAR(heardFrequency(1000), 1000, 0.5);
    server_.setDefaultInput("spare.monitor");
    EXPECT_EQ(input_->defaultDeviceName(), "Monitor of spare");
    EXPECT_NEAR(frequencyOfTheEnd(2000), 2000, 0.5);
}

TEST_F(CubebAudioInputTest, comes_back_after_the_server_was_killed) {
    beginCaptureOfARunningServer();
    server_.kill();
    stayInTrouble(3s);
    EXPECT_TRUE(input_->isRunning());
    server_.start();
    EXPECT_LT(secondsToNextBlock(), limit());
    EXPECT_NEAR(heardFrequency(1000), 1000, 0.5);
}

TEST_F(CubebAudioInputTest, comes_back_after_the_server_was_killed_and_replaced_at_once) {
    beginCaptureOfARunningServer();
    for (int i = 0; i < 3; ++i) {
        server_.kill();
        server_.start();
        EXPECT_LT(secondsToNextBlock(), limit());
    }
}

TEST_F(CubebAudioInputTest, goes_on_after_a_short_freeze) {
    beginCaptureOfARunningServer();
    server_.freeze();
    stayInTrouble(2s);
    server_.thaw();
    EXPECT_LT(secondsToNextBlock(), limit());
    EXPECT_NEAR(heardFrequency(1000), 1000, 0.5);
}

TEST_F(CubebAudioInputTest, comes_back_after_a_freeze_in_which_the_stream_was_given_up) {
    beginCaptureOfARunningServer();
    server_.freeze();
    stayInTrouble(6s);
    server_.thaw();
    EXPECT_LT(secondsToNextBlock(), limit());
    EXPECT_NEAR(heardFrequency(1000), 1000, 0.5);
}

TEST_F(CubebAudioInputTest, comes_back_after_a_frozen_server_was_killed_and_replaced) {
    beginCaptureOfARunningServer();
    server_.freeze();
    stayInTrouble(6s);
    server_.kill();
    server_.start();
    EXPECT_LT(secondsToNextBlock(), limit());
    EXPECT_NEAR(heardFrequency(1000), 1000, 0.5);
}

TEST_F(CubebAudioInputTest, comes_back_when_the_device_is_plugged_in_again) {
    beginCaptureOfARunningServer();
    server_.control({"unload-module", "module-null-sink"});
    stayInTrouble(2s);
    server_.addSink("line", 44100, 1);
    EXPECT_LT(secondsToNextBlock(), limit());
    for (const auto& block : listener_.blocks()) EXPECT_EQ(block.format, kStereo);
}

TEST_F(CubebAudioInputTest, opens_the_device_anew_when_it_is_quiet_for_long) {
    beginCaptureOfARunningServer();
    const auto firstStream = server_.control({"list", "short", "source-outputs"});
    ASSERT_NE(firstStream, "");
    server_.control({"suspend-sink", "line", "1"});
    const auto giveUp = Clock::now() + kSurelyWithin;
    std::string stream = firstStream;
    while ((stream == firstStream || stream.empty()) && Clock::now() < giveUp) {
        stayInTrouble(100ms);
        stream = server_.control({"list", "short", "source-outputs"});
    }
    EXPECT_NE(stream, firstStream);
    server_.control({"suspend-sink", "line", "0"});
    EXPECT_LT(secondsToNextBlock(), limit());
}

TEST_F(CubebAudioInputTest, never_makes_the_caller_wait_for_a_frozen_server) {
    server_.start();
    server_.freeze();
    auto begun = Clock::now();
    EXPECT_EQ(input_->outputFormat(), kStereo);
    EXPECT_LT(Clock::now() - begun, kAboutASecond);
    begun = Clock::now();
    EXPECT_EQ(input_->defaultDeviceName(), "");
    EXPECT_LT(Clock::now() - begun, kAboutASecond);
    begun = Clock::now();
    beginCapture();
    EXPECT_LT(Clock::now() - begun, kAboutASecond);
    EXPECT_TRUE(input_->isRunning());
    server_.thaw();
    EXPECT_LT(secondsToNextBlock(), limit());
}

TEST_F(CubebAudioInputTest, keeps_trying_when_the_server_that_did_not_answer_turns_out_dead) {
    server_.start();
    server_.freeze();
    beginCapture();
    server_.kill();
    stayInTrouble(1s);
    server_.start();
    EXPECT_LT(secondsToNextBlock(), limit());
}

TEST_F(CubebAudioInputTest, stops_and_starts_again_while_the_server_is_frozen) {
    beginCaptureOfARunningServer();
    server_.freeze();
    auto begun = Clock::now();
    input_->stop();
    EXPECT_LT(Clock::now() - begun, kAboutASecond);
    listener_.clear();
    beginCapture({44100, 1, true});
    server_.thaw();
    ASSERT_TRUE(listener_.awaitBlocks(3, kSurelyWithin));
    for (const auto& block : listener_.blocks()) EXPECT_EQ(block.format.sampleRate, 44100);
}

/// The life of a program that captures, meets a server that freezes, and wants to end. Gives its
/// exit status.
int endWhileFrozen(PrivateSoundServer& server) {
    server.exportEnvironment();
    Listener listener;
    auto input = std::make_unique<CubebAudioInput>();
    input->installTap(kBufferFrames, kStereo, listener.tap());
    if (!input->start() || !listener.awaitBlocks(3, kSurelyWithin)) return 1;
    server.freeze();
    const auto begun = Clock::now();
    input.reset();
    return Clock::now() - begun < kAboutASecond ? 0 : 2;
}

// In a process of its own: the device thread that is left behind must not keep the process from
// ending either.
TEST(CubebAudioInputDeathTest, lets_the_program_end_while_the_server_is_frozen) {
    PrivateSoundServer server;
    server.start();
    EXPECT_EXIT(std::exit(endWhileFrozen(server)), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace sonavault::testing
