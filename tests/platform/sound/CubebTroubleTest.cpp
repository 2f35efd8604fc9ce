// The line input on a machine that is out of threads, and on a sound server that does not answer.

#include <gtest/gtest.h>

#include <chrono>
#include <memory>

#include "platform/CubebAudioInput.h"
#include "platform/Listener.h"
#include "support/NoThreads.h"
#include "support/PrivateSoundServer.h"

namespace sonavault::testing {
namespace {

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;

constexpr AudioFormat kStereo{48000, 2, true};
constexpr int kBufferFrames = 4096;
constexpr auto kSurelyWithin = 15s;

// Far less than the 0.9 s that an answer is waited for.
constexpr auto kAtOnce = 400ms;

class CubebInTrouble : public ::testing::Test {
  protected:
    CubebInTrouble() {
        server_.exportEnvironment();
        server_.start();
        input_ = std::make_unique<CubebAudioInput>();
        input_->installTap(kBufferFrames, kStereo, listener_.tap());
    }

    PrivateSoundServer server_;
    Listener listener_;
    std::unique_ptr<CubebAudioInput> input_;
};

TEST_F(CubebInTrouble, refuses_in_words_without_a_thread_and_starts_once_there_is_one) {
    {
        const NoThreads none;
        const auto refused = input_->start();
        ASSERT_FALSE(refused);
        EXPECT_EQ(refused.error(), "Resource temporarily unavailable");
        EXPECT_FALSE(input_->isRunning());
    }
    ASSERT_TRUE(input_->start());
    EXPECT_TRUE(listener_.awaitBlocks(3, kSurelyWithin));
}

TEST_F(CubebInTrouble, stops_when_a_new_tap_finds_no_thread) {
    ASSERT_TRUE(input_->start());
    ASSERT_TRUE(listener_.awaitBlocks(3, kSurelyWithin));
    {
        const NoThreads none;
        input_->installTap(kBufferFrames, kStereo, listener_.tap());
        EXPECT_FALSE(input_->isRunning());
    }
    listener_.clear();
    ASSERT_TRUE(input_->start());
    EXPECT_TRUE(listener_.awaitBlocks(3, kSurelyWithin));
}

TEST_F(CubebInTrouble, waits_for_a_server_that_left_the_start_unanswered_no_second_time) {
    server_.freeze();
    ASSERT_TRUE(input_->start());
    const auto begun = SteadyClock::now();
    EXPECT_EQ(input_->outputFormat(), kStereo);
    EXPECT_EQ(input_->defaultDeviceName(), "");
    input_->stop();
    ASSERT_TRUE(input_->start());
    EXPECT_LT(SteadyClock::now() - begun, kAtOnce);
    server_.thaw();
    EXPECT_TRUE(listener_.awaitBlocks(3, kSurelyWithin));
    EXPECT_EQ(input_->defaultDeviceName(), "Monitor of Line");
}

}  // namespace
}  // namespace sonavault::testing
