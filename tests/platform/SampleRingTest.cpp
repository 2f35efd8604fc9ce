#include "platform/SampleRing.h"

#include <gtest/gtest.h>

#include <numeric>
#include <thread>
#include <vector>

namespace sonavault::testing {
namespace {

/// `count` samples that tell their place: first, first + 1, ...
std::vector<float> countFrom(float first, std::size_t count) {
    std::vector<float> samples(count);
    std::iota(samples.begin(), samples.end(), first);
    return samples;
}

std::vector<float> popAll(SampleRing& ring, int channels, FrameCount atMost) {
    std::vector<float> samples(static_cast<std::size_t>(atMost * channels));
    const auto frames = ring.pop(samples.data(), atMost);
    samples.resize(static_cast<std::size_t>(frames * channels));
    return samples;
}

TEST(SampleRing, gives_back_what_was_pushed_in_order) {
    SampleRing ring(8, 2);
    EXPECT_EQ(ring.push(countFrom(0, 6).data(), 3), 3);
    EXPECT_EQ(ring.push(countFrom(6, 4).data(), 2), 2);
    EXPECT_EQ(popAll(ring, 2, 100), countFrom(0, 10));
    EXPECT_EQ(popAll(ring, 2, 100), std::vector<float>());
}

TEST(SampleRing, gives_no_more_than_was_asked_for) {
    SampleRing ring(8, 2);
    ring.push(countFrom(0, 10).data(), 5);
    EXPECT_EQ(popAll(ring, 2, 2), countFrom(0, 4));
    EXPECT_EQ(popAll(ring, 2, 0), std::vector<float>());
    EXPECT_EQ(popAll(ring, 2, 100), countFrom(4, 6));
}

TEST(SampleRing, goes_round_its_end_at_every_offset) {
    constexpr FrameCount kCapacity = 7;
    for (FrameCount piece = 1; piece <= kCapacity; ++piece) {
        SampleRing ring(kCapacity, 3);
        float next = 0;
        for (int round = 0; round < 50; ++round) {
            const auto samples = countFrom(next, static_cast<std::size_t>(piece * 3));
            ASSERT_EQ(ring.push(samples.data(), piece), piece);
            ASSERT_EQ(popAll(ring, 3, kCapacity), samples) << piece << " frames, round " << round;
            next += static_cast<float>(piece * 3);
        }
    }
}

TEST(SampleRing, loses_the_newest_frames_when_full_and_counts_them) {
    SampleRing ring(4, 2);
    EXPECT_EQ(ring.push(countFrom(0, 6).data(), 3), 3);
    EXPECT_EQ(ring.push(countFrom(6, 6).data(), 3), 1);
    EXPECT_EQ(ring.push(countFrom(50, 4).data(), 2), 0);
    EXPECT_EQ(ring.dropped(), 4);
    EXPECT_EQ(ring.offered(), 8);
    EXPECT_EQ(popAll(ring, 2, 100), countFrom(0, 8));
    EXPECT_EQ(ring.push(countFrom(60, 8).data(), 4), 4) << "there is room for a whole ring again";
    EXPECT_EQ(popAll(ring, 2, 100), countFrom(60, 8));
}

TEST(SampleRing, holds_one_frame_of_one_channel_at_least) {
    SampleRing ring(0, 0);
    EXPECT_EQ(ring.push(countFrom(5, 2).data(), 2), 1);
    EXPECT_EQ(popAll(ring, 1, 10), countFrom(5, 1));
}

TEST(SampleRing, passes_every_frame_from_one_thread_to_another) {
    constexpr int kFrames = 400'000;
    SampleRing ring(1000, 2);
    std::thread writer([&] {
        std::vector<float> piece;
        for (int next = 0; next < kFrames;) {
            const int frames = std::min(1 + next % 337, kFrames - next);
            piece.clear();
            for (int i = next; i < next + frames; ++i)
                piece.insert(piece.end(), {static_cast<float>(i), static_cast<float>(-i)});
            next += static_cast<int>(ring.push(piece.data(), frames));
        }
    });
    std::vector<float> got(2 * 256);
    int next = 0;
    int wrong = 0;
    while (next < kFrames) {
        const auto frames = static_cast<std::size_t>(ring.pop(got.data(), 256));
        for (std::size_t i = 0; i < frames; ++i, ++next)
            wrong += got[2 * i] != static_cast<float>(next) ||
                     got[2 * i + 1] != static_cast<float>(-next);
    }
    writer.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(popAll(ring, 2, 1), std::vector<float>());
}

}  // namespace
}  // namespace sonavault::testing
