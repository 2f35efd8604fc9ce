#include "store/PeaksFile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

using Code = PeaksError::Code;

PeaksData fourBuckets() {
    return {0.25, 0.9, {0.5F, 0.0F, 0.125F, 1.0F}, 1.0F};
}

/// A header with this many buckets told, and nothing behind it.
std::string headerWithCount(std::uint32_t count) {
    std::string bytes = encodePeaks({0.25, 2.5, {}, 1.0F});
    for (std::size_t i = 0; i < 4; ++i) bytes[24 + i] = static_cast<char>(count >> (8 * i));
    return bytes;
}

void expectEqual(const PeaksData& one, const PeaksData& other) {
    EXPECT_EQ(one.bucketSec, other.bucketSec);
    EXPECT_EQ(one.totalDurationSec, other.totalDurationSec);
    EXPECT_EQ(one.rms, other.rms);
    EXPECT_EQ(one.maxRMS, other.maxRMS);
}

void expectError(const std::string& bytes, Code code, const std::string& description) {
    const auto peaks = decodePeaks(bytes);
    ASSERT_FALSE(peaks) << description;
    EXPECT_EQ(peaks.error(), (PeaksError{code, description}));
}

TEST(PeaksFile, lies_beside_the_audio) {
    EXPECT_EQ(peaksURL("/a/Sonavault_2026-05-08.mp3"), "/a/Sonavault_2026-05-08.peaks");
    EXPECT_EQ(peaksURL("/a.b/Sonavault_2026-05-08.M4A"), "/a.b/Sonavault_2026-05-08.peaks");
}

TEST(PeaksFile, has_the_bytes_that_its_description_shows) {
    const std::string expected(
        "SVPK\x02\0\0\0\0\0\0\0\0\0\xD0\x3F\xCD\xCC\xCC\xCC\xCC\xCC\xEC\x3F\x04\0\0\0\0\0\x80\x3F"
        "\0\0\0\x3F\0\0\0\0\0\0\0\x3E\0\0\x80\x3F",
        48);
    EXPECT_EQ(encodePeaks(fourBuckets()), expected);
}

TEST(PeaksFile, reads_what_it_wrote) {
    const TempFolder folder;
    PeaksData day{5513.0 / 22050, 86400.5, {}, 0.75F};
    for (int i = 0; i < 345'600; ++i) day.rms.push_back(static_cast<float>(i) / 345'600);
    for (const auto& peaks : {fourBuckets(), PeaksData{0.25, 0, {}, 1.0F}, day}) {
        ASSERT_TRUE(savePeaksFile(peaks, folder / "a.peaks"));
        const auto loaded = loadPeaksFile(folder / "a.peaks");
        ASSERT_TRUE(loaded);
        expectEqual(loaded.value(), peaks);
    }
    EXPECT_EQ(std::filesystem::file_size(folder / "a.peaks"), 32U + 4 * 345'600);
}

TEST(PeaksFile, of_31_bytes_is_truncated_and_of_32_with_no_bucket_is_an_empty_record) {
    const std::string empty = headerWithCount(0);
    ASSERT_EQ(empty.size(), 32U);
    expectError(empty.substr(0, 31), Code::truncated, "Peaks file truncated");
    const auto loaded = decodePeaks(empty);
    ASSERT_TRUE(loaded);
    expectEqual(loaded.value(), {0.25, 2.5, {}, 1.0F});
}

TEST(PeaksFile, of_ten_buckets_needs_72_bytes_and_passes_over_more) {
    const std::string header = headerWithCount(10);
    expectError(header + std::string(39, '\0'), Code::payloadShort, "Peaks file payload short");
    for (const std::size_t payload : {40U, 48U}) {
        const auto loaded = decodePeaks(header + std::string(payload, '\0'));
        ASSERT_TRUE(loaded);
        EXPECT_EQ(loaded.value().rms, std::vector<float>(10));
    }
}

TEST(PeaksFile, of_another_version_says_which) {
    std::string bytes = headerWithCount(0);
    for (const auto& [version, name] : {std::pair{'\0', "0"}, {'\1', "1"}, {'\3', "3"}}) {
        bytes[4] = version;
        expectError(bytes, Code::olderFormat,
                    std::string("Peaks file is an older format (v") + name + "); will regenerate.");
    }
    bytes.replace(4, 4, "\xFF\xFF\xFF\xFF");
    expectError(bytes, Code::olderFormat,
                "Peaks file is an older format (v4294967295); will regenerate.");
}

TEST(PeaksFile, refuses_a_bucket_that_is_not_longer_than_nothing) {
    for (const double bad : {0.0, -0.0, -0.25, std::nan("")})
        expectError(encodePeaks({bad, 1, {}, 1.0F}), Code::invalidBucketSec,
                    "Peaks file has invalid bucketSec");
    EXPECT_TRUE(decodePeaks(encodePeaks({std::numeric_limits<double>::denorm_min(), 1, {}, 1.0F})));
}

TEST(PeaksFile, tells_the_first_of_several_faults) {
    std::string bytes = encodePeaks({0, 1, {}, 1.0F});  // and a bad length of buckets
    bytes[24] = '\5';                                   // and too few of them
    expectError(bytes, Code::invalidBucketSec, "Peaks file has invalid bucketSec");
    bytes[4] = '\1';
    expectError(bytes, Code::olderFormat, "Peaks file is an older format (v1); will regenerate.");
    bytes[0] = 'X';
    expectError(bytes, Code::badMagic, "Bad peaks magic");
    expectError(bytes.substr(0, 20), Code::truncated, "Peaks file truncated");
}

TEST(PeaksFile, does_not_believe_a_count_that_the_file_can_not_hold) {
    expectError(headerWithCount(0xFFFFFFFF), Code::payloadShort, "Peaks file payload short");
    expectError(headerWithCount(0x40000000) + "1234", Code::payloadShort,
                "Peaks file payload short");
}

TEST(PeaksFile, is_refused_wherever_it_is_cut) {
    const std::string bytes = encodePeaks(fourBuckets());
    for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
        const auto loaded = decodePeaks(std::string_view(bytes).substr(0, cut));
        ASSERT_FALSE(loaded) << cut;
        EXPECT_EQ(loaded.error().code, cut < 32 ? Code::truncated : Code::payloadShort) << cut;
    }
}

TEST(PeaksFile, with_a_damaged_byte_is_refused_or_differs_in_that_value_only) {
    const std::string bytes = encodePeaks(fourBuckets());
    for (std::size_t at = 0; at < bytes.size(); ++at)
        for (const int damage : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
            std::string damaged = bytes;
            damaged[at] = static_cast<char>(damage);
            const auto loaded = decodePeaks(damaged);
            if (!loaded) {
                EXPECT_LT(at, 28U) << at;
                continue;
            }
            // A smaller count leaves bytes behind the last bucket.
            if (at >= 24 && at < 28) continue;
            const std::string again = encodePeaks(loaded.value());
            EXPECT_EQ(again, damaged) << at << " = " << damage;
        }
}

TEST(PeaksFile, that_can_not_be_read_passes_the_systems_words_on) {
    const TempFolder folder;
    EXPECT_EQ(loadPeaksFile(folder / "none").error(),
              (PeaksError{Code::passedOn, "No such file or directory"}));
    EXPECT_EQ(loadPeaksFile(folder.path()).error().code, Code::passedOn);
}

TEST(PeaksFile, that_can_not_be_written_leaves_the_old_one_and_no_temporary) {
    const TempFolder folder;
    EXPECT_FALSE(savePeaksFile(fourBuckets(), folder / "no" / "a.peaks"));
    std::filesystem::create_directories(folder / "a.peaks" / "in the way");
    EXPECT_FALSE(savePeaksFile(fourBuckets(), folder / "a.peaks"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

}  // namespace
}  // namespace sonavault::testing
