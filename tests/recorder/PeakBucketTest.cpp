#include "recorder/PeakBucket.h"

#include <gtest/gtest.h>

#include <vector>

namespace sonavault {
namespace {

std::vector<float> fed(PeakBucket& bucket, std::size_t frames, float value) {
    std::vector<float> peaks;
    bucket.feed(std::vector<float>(frames, value), [&](float rms) { peaks.push_back(rms); });
    return peaks;
}

TEST(PeakBucket, holds_5512_frames_at_22050_hertz) {
    PeakBucket bucket(22050, 0);
    EXPECT_TRUE(fed(bucket, 5511, 0.5F).empty());
    EXPECT_EQ(fed(bucket, 1, 0.5F).size(), 1U);
}

TEST(PeakBucket, gives_the_root_mean_square) {
    PeakBucket bucket(22050, 0);
    const auto peaks = fed(bucket, 5512, -0.5F);
    ASSERT_EQ(peaks.size(), 1U);
    EXPECT_NEAR(peaks[0], 0.5F, 1e-5);
}

TEST(PeakBucket, splits_what_it_is_fed_over_many_buckets) {
    PeakBucket bucket(22050, 0);
    EXPECT_EQ(fed(bucket, 5512 * 3 + 10, 0.25F).size(), 3U);
    EXPECT_EQ(fed(bucket, 5502, 0.25F).size(), 1U);
}

TEST(PeakBucket, goes_on_upon_the_grid_of_the_file) {
    PeakBucket bucket(22050, 5512 * 7 + 5000);
    EXPECT_TRUE(fed(bucket, 511, 1.0F).empty());
    const auto peaks = fed(bucket, 1, 1.0F);
    ASSERT_EQ(peaks.size(), 1U);
    EXPECT_NEAR(peaks[0], std::sqrt(512.0F / 5512.0F), 1e-4);
}

TEST(PeakBucket, of_a_rate_too_low_for_a_bucket_still_ends) {
    PeakBucket bucket(1, 0);
    EXPECT_EQ(fed(bucket, 10, 1.0F).size(), 10U);
}

}  // namespace
}  // namespace sonavault
