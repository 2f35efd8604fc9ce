#include "platform/CubebDelivery.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <memory>
#include <numeric>
#include <thread>
#include <vector>

#include "platform/Listener.h"

namespace sonavault::testing {
namespace {

using namespace std::chrono_literals;

constexpr AudioFormat kStereo{48000, 2, true};
constexpr AudioFormat kStereoPlanes{48000, 2, false};

std::vector<float> countFrom(float first, std::size_t count) {
    std::vector<float> samples(count);
    std::iota(samples.begin(), samples.end(), first);
    return samples;
}

/// What the device's callback does.
void arrive(CubebCaptureRun& run, const std::vector<float>& samples) {
    run.ring.push(samples.data(), static_cast<FrameCount>(samples.size()) / run.format.channels);
    run.arrived.release();
}

std::vector<float> joined(const std::vector<Listener::Block>& blocks, std::size_t channel) {
    std::vector<float> all;
    for (const auto& block : blocks)
        all.insert(all.end(), block.channels[channel].begin(), block.channels[channel].end());
    return all;
}

TEST(CubebDelivery, makes_whole_blocks_of_pieces_of_any_size) {
    const auto run = std::make_shared<CubebCaptureRun>(kStereo);
    Listener listener;
    CubebDelivery delivery(run, 100, listener.tap());
    const auto samples = countFrom(0, 1400);  // 700 frames
    for (std::size_t at = 0, size = 2; at < samples.size(); at += size, size += 14)
        arrive(*run, {samples.begin() + static_cast<std::ptrdiff_t>(at),
                      samples.begin() +
                          static_cast<std::ptrdiff_t>(std::min(at + size, samples.size()))});
    ASSERT_TRUE(listener.awaitBlocks(7, 10s));
    for (const auto& block : listener.blocks()) {
        EXPECT_EQ(block.frames, 100);
        EXPECT_EQ(block.format, kStereo);
    }
    const auto left = joined(listener.blocks(), 0);
    const auto right = joined(listener.blocks(), 1);
    for (std::size_t i = 0; i < left.size(); ++i) {
        ASSERT_EQ(left[i], samples[2 * i]);
        ASSERT_EQ(right[i], samples[2 * i + 1]);
    }
}

TEST(CubebDelivery, gives_each_channel_a_plane_of_its_own_when_asked) {
    const auto run = std::make_shared<CubebCaptureRun>(kStereoPlanes);
    Listener listener;
    CubebDelivery delivery(run, 3, listener.tap());
    arrive(*run, {1, -1, 2, -2, 3, -3});
    ASSERT_TRUE(listener.awaitBlocks(1, 10s));
    EXPECT_EQ(listener.blocks()[0].format, kStereoPlanes);
    EXPECT_EQ(listener.blocks()[0].channels,
              (std::vector<std::vector<float>>{{1, 2, 3}, {-1, -2, -3}}));
}

TEST(CubebDelivery, completes_a_begun_block_with_silence_when_the_samples_dry_up) {
    const auto run = std::make_shared<CubebCaptureRun>(kStereo);
    Listener listener;
    CubebDelivery delivery(run, 4, listener.tap());
    arrive(*run, {1, -1});
    ASSERT_TRUE(listener.awaitBlocks(1, 10s));
    arrive(*run, {5, -5, 6, -6, 7, -7, 8, -8});
    ASSERT_TRUE(listener.awaitBlocks(2, 10s));
    EXPECT_EQ(joined(listener.blocks(), 0), (std::vector<float>{1, 0, 0, 0, 5, 6, 7, 8}));
    EXPECT_EQ(joined(listener.blocks(), 1), (std::vector<float>{-1, 0, 0, 0, -5, -6, -7, -8}));
}

/// A tap whose first call lasts until the test lets it go.
class SlowTap {
  public:
    AudioInput::Tap tap() {
        return [this](const AudioBufferView&) {
            if (calls_++ > 0) return;
            entered_.set_value();
            leave_.get_future().wait();
            left_ = true;
        };
    }

    void awaitEntry() { entered_.get_future().wait(); }
    void letGo() { leave_.set_value(); }
    bool left() const { return left_; }
    int calls() const { return calls_; }

  private:
    std::promise<void> entered_;
    std::promise<void> leave_;
    std::atomic<bool> left_{false};
    std::atomic<int> calls_{0};
};

/// Brings more frames than the ring holds, so that some were surely taken out when it returns.
void arriveMoreThanTheRingHolds(CubebCaptureRun& run) {
    const auto frames = countFrom(0, 200);
    const auto capacity = run.format.sampleRate * CubebCaptureRun::kRingSeconds;
    for (FrameCount taken = 0; static_cast<double>(taken) < 2 * capacity; run.arrived.release())
        taken += run.ring.push(frames.data(), 100);
}

TEST(CubebDelivery, waits_for_a_slow_tap_before_it_is_dropped_and_never_calls_it_again) {
    const auto run = std::make_shared<CubebCaptureRun>(AudioFormat{1000, 2, true});
    SlowTap slow;
    CubebDelivery delivery(run, 1, slow.tap());
    arrive(*run, {1, -1, 2, -2, 3, -3});
    slow.awaitEntry();
    std::promise<void> dropping;
    std::atomic<bool> leftBeforeDropped{false};
    std::thread control([&] {
        dropping.set_value();
        delivery.dropTap();
        leftBeforeDropped = slow.left();
    });
    dropping.get_future().wait();
    slow.letGo();
    control.join();
    EXPECT_TRUE(leftBeforeDropped);
    const int calls = slow.calls();
    arriveMoreThanTheRingHolds(*run);
    EXPECT_EQ(slow.calls(), calls);
}

TEST(CubebDelivery, waits_for_a_slow_tap_when_it_ends) {
    const auto run = std::make_shared<CubebCaptureRun>(kStereo);
    SlowTap slow;
    auto delivery = std::make_unique<CubebDelivery>(run, 1, slow.tap());
    arrive(*run, {1, -1});
    slow.awaitEntry();
    std::atomic<bool> leftBeforeEnded{false};
    std::thread control([&] {
        delivery.reset();
        leftBeforeEnded = slow.left();
    });
    slow.letGo();
    control.join();
    EXPECT_TRUE(leftBeforeEnded);
}

TEST(CubebDelivery, keeps_emptying_the_ring_for_nobody) {
    const auto run = std::make_shared<CubebCaptureRun>(AudioFormat{1000, 2, true});
    CubebDelivery delivery(run, 64, nullptr);
    arriveMoreThanTheRingHolds(*run);
    EXPECT_GE(run->ring.offered(), 10'000);
}

}  // namespace
}  // namespace sonavault::testing
