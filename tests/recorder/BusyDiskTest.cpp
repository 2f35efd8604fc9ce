// What the main thread can do while the source's thread waits for the disk.

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>

#include "recorder/AudioPipeline.h"
#include "support/RecordedLog.h"
#include "support/TempFolder.h"

namespace sonavault {
namespace {

using namespace std::chrono_literals;

/// Whoever asks it for the time the first time, in the midst of recording a buffer, is kept there
/// until let go, as by a disk that does not answer.
class ClockThatKeeps final : public Clock {
  public:
    WallTime now() const override {
        if (!asked_.exchange(true)) {
            entered_.set_value();
            leave_.get_future().wait();
        }
        return WallTime{} + 1h;
    }
    void awaitEntry() { entered_.get_future().wait(); }
    void letGo() { leave_.set_value(); }

  private:
    mutable std::atomic<bool> asked_{false};
    mutable std::promise<void> entered_;
    mutable std::promise<void> leave_;
};

TEST(BusyDisk, does_not_hold_up_whoever_arms_the_watch) {
    const testing::TempFolder folder;
    testing::RecordedLog log;
    DiskFlusher flusher;
    ClockThatKeeps clock;
    AudioPipeline pipeline(clock, log, {.level = [](float) {}, .peak = [](float, double) {}});
    ASSERT_TRUE(pipeline.buildResampler({22050, 1, true}));
    auto encoder = LAMEEncoder::create(22050, 1, 24, log);
    ASSERT_TRUE(encoder && encoder->open(folder / "day.mp3", flusher));
    pipeline.begin({.encoder = std::move(encoder), .wallClockAnchor = WallTime{} + 1h});

    const std::vector<float> samples(4096, 0.5F);
    const float* const plane = samples.data();
    const auto send = [&] { pipeline.handleSourceBuffer({{22050, 1, true}, 4096, &plane}); };
    std::thread source(send);
    clock.awaitEntry();
    auto armed = std::async(std::launch::async, [&] {
        pipeline.armNonSilentWatch({.armedAt = WallTime{} + 1h, .emitClockTime = "14:05:09"});
    });
    EXPECT_EQ(armed.wait_for(10s), std::future_status::ready);
    clock.letGo();
    source.join();
    armed.wait();
    send();
    EXPECT_EQ(log.containing("first_nonsilent_after_mic_start delta=0ms").size(), 1U);
    pipeline.end()->close();
}

}  // namespace
}  // namespace sonavault
