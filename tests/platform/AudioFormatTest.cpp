#include "platform/AudioFormat.h"

#include <gtest/gtest.h>

namespace sonavault::testing {
namespace {

TEST(AudioFormat, is_described_for_log_lines) {
    EXPECT_EQ(describe({.sampleRate = 44100, .channels = 2, .interleaved = true}),
              "44100 Hz, 2 ch, Float32, interleaved");
    EXPECT_EQ(describe({.sampleRate = 22050, .channels = 1, .interleaved = false}),
              "22050 Hz, 1 ch, Float32, non-interleaved");
    EXPECT_EQ(describe({.sampleRate = 47999.25, .channels = 8, .interleaved = true}),
              "47999.25 Hz, 8 ch, Float32, interleaved");
    EXPECT_EQ(describe({}), "0 Hz, 0 ch, Float32, non-interleaved");
}

TEST(AudioFormat, counts_the_bytes_between_frames) {
    EXPECT_EQ(
        (AudioFormat{.sampleRate = 44100, .channels = 2, .interleaved = true}).bytesPerFrame(), 8);
    EXPECT_EQ(
        (AudioFormat{.sampleRate = 44100, .channels = 2, .interleaved = false}).bytesPerFrame(), 4);
}

}  // namespace
}  // namespace sonavault::testing
