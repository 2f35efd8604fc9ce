#include "store/AudioLengthCache.h"

#include <gtest/gtest.h>

#include "support/TempFolder.h"

namespace sonavault {
namespace {

using testing::readFile;
using testing::TempFolder;
using testing::writeFile;

const FileStamp kStamp{259'200'000, 1'772'000'000'123'456'789, 18'000'000'000'000'000'001U};
const std::filesystem::path kDays = "/station/Logs/Audio";
const std::filesystem::path kDay = kDays / "Sonavault_2026-05-08.mp3";
const std::filesystem::path kOtherDay = kDays / "Sonavault_2026-05-07.mp3";

class AudioLengthCacheTest : public ::testing::Test {
  protected:
    /// A launch that learns these two lengths.
    void learnTwo() {
        AudioLengthCache cache(place_);
        cache.put(kDay, kStamp, 86399.964);
        cache.put(kOtherDay, kStamp, 1.0 / 3);
        cache.save();
    }

    std::optional<double> foundAtNextLaunch(const std::filesystem::path& audio,
                                            const FileStamp& stamp = kStamp) {
        return AudioLengthCache(place_).find(audio, stamp);
    }

    TempFolder folder_;
    const std::filesystem::path place_ = folder_ / "cache" / "sonavault";
    const std::filesystem::path file_ = AudioLengthCache(place_).file();
};

TEST_F(AudioLengthCacheTest, knows_nothing_at_first_and_makes_no_file) {
    AudioLengthCache cache(place_);
    EXPECT_EQ(cache.find(kDay, kStamp), std::nullopt);
    cache.save();
    EXPECT_FALSE(std::filesystem::exists(place_));
}

TEST_F(AudioLengthCacheTest, keeps_lengths_to_the_last_digit_across_launches) {
    learnTwo();
    EXPECT_EQ(foundAtNextLaunch(kDay), 86399.964);
    EXPECT_EQ(foundAtNextLaunch(kOtherDay), 1.0 / 3);
}

TEST_F(AudioLengthCacheTest, knows_nothing_of_a_file_that_has_changed) {
    learnTwo();
    for (const auto change : {&FileStamp::size, &FileStamp::modifiedNs}) {
        FileStamp changed = kStamp;
        changed.*change += 1;
        EXPECT_EQ(foundAtNextLaunch(kDay, changed), std::nullopt);
    }
    FileStamp replaced = kStamp;
    replaced.inode -= 1;
    EXPECT_EQ(foundAtNextLaunch(kDay, replaced), std::nullopt);
}

TEST_F(AudioLengthCacheTest, takes_the_newer_length_of_a_file) {
    learnTwo();
    FileStamp grown = kStamp;
    grown.size += 108;
    AudioLengthCache cache(place_);
    cache.put(kDay, grown, 7);
    cache.save();
    EXPECT_EQ(foundAtNextLaunch(kDay, grown), 7.0);
    EXPECT_EQ(foundAtNextLaunch(kDay), std::nullopt);
}

TEST_F(AudioLengthCacheTest, forgets_the_vanished_files_of_a_folder_and_no_others) {
    const std::filesystem::path elsewhere = "/other/Sonavault_2026-05-01.mp3";
    AudioLengthCache cache(place_);
    cache.put(elsewhere, kStamp, 5);
    cache.save();
    learnTwo();

    AudioLengthCache later(place_);
    EXPECT_TRUE(later.find(kDay, kStamp));
    later.forgetUnasked(kDays);
    later.save();
    EXPECT_TRUE(foundAtNextLaunch(kDay));
    EXPECT_FALSE(foundAtNextLaunch(kOtherDay));
    EXPECT_TRUE(foundAtNextLaunch(elsewhere));
}

TEST_F(AudioLengthCacheTest, asks_again_after_each_time_it_forgot) {
    AudioLengthCache cache(place_);
    cache.put(kDay, kStamp, 5);
    cache.forgetUnasked(kDays);
    EXPECT_TRUE(cache.find(kDay, kStamp));
    cache.forgetUnasked(kDays);
    cache.forgetUnasked(kDays);
    EXPECT_FALSE(cache.find(kDay, kStamp));
}

TEST_F(AudioLengthCacheTest, may_be_deleted) {
    learnTwo();
    std::filesystem::remove_all(folder_ / "cache");
    EXPECT_EQ(foundAtNextLaunch(kDay), std::nullopt);
    learnTwo();
    EXPECT_EQ(foundAtNextLaunch(kDay), 86399.964);
}

TEST_F(AudioLengthCacheTest, believes_nothing_once_any_byte_is_damaged_or_missing) {
    learnTwo();
    const std::string whole = readFile(file_);
    for (std::size_t at = 0; at < whole.size(); ++at) {
        std::string damaged = whole;
        damaged[at] = static_cast<char>(damaged[at] ^ 1);
        writeFile(file_, damaged);
        ASSERT_EQ(foundAtNextLaunch(kDay), std::nullopt) << at;
        writeFile(file_, whole.substr(0, at));
        ASSERT_EQ(foundAtNextLaunch(kDay), std::nullopt) << at;
    }
}

TEST_F(AudioLengthCacheTest, is_written_anew_after_damage) {
    learnTwo();
    writeFile(file_, "nonsense");
    learnTwo();
    EXPECT_EQ(foundAtNextLaunch(kDay), 86399.964);
}

TEST_F(AudioLengthCacheTest, does_not_read_a_file_beyond_all_measure) {
    std::filesystem::create_directories(place_);
    writeFile(file_, "x");
    std::filesystem::resize_file(file_, std::uintmax_t{1} << 40U);  // a terabyte of nothing
    EXPECT_EQ(foundAtNextLaunch(kDay), std::nullopt);
}

TEST_F(AudioLengthCacheTest, keeps_no_more_than_it_should) {
    AudioLengthCache cache(place_);
    for (std::size_t i = 0; i < AudioLengthCache::kMostEntries + 10; ++i)
        cache.put(kDays / std::to_string(i), kStamp, 1);
    cache.put(kDays / "0", kStamp, 2);
    EXPECT_FALSE(cache.find(kDays / std::to_string(AudioLengthCache::kMostEntries), kStamp));
    EXPECT_EQ(cache.find(kDays / "0", kStamp), 2.0);
    cache.save();
    EXPECT_LT(std::filesystem::file_size(file_), 1'000'000U);
    EXPECT_EQ(foundAtNextLaunch(kDays / "0"), 2.0);
}

TEST_F(AudioLengthCacheTest, keeps_paths_of_any_bytes_but_a_line_feed) {
    const auto odd = kDays / "a b \xFF € .mp3";
    const auto twoLines = kDays / "a\nb.mp3";
    AudioLengthCache cache(place_);
    cache.put(odd, kStamp, 3);
    cache.put(twoLines, kStamp, 4);
    cache.save();
    EXPECT_EQ(foundAtNextLaunch(odd), 3.0);
    EXPECT_EQ(foundAtNextLaunch(twoLines), std::nullopt);
}

TEST_F(AudioLengthCacheTest, goes_on_in_memory_when_its_folder_cannot_be_made) {
    writeFile(folder_ / "cache", "a file where the folder should be");
    AudioLengthCache cache(place_);
    cache.put(kDay, kStamp, 5);
    cache.save();
    EXPECT_EQ(cache.find(kDay, kStamp), 5.0);
    EXPECT_EQ(readFile(folder_ / "cache"), "a file where the folder should be");
}

TEST_F(AudioLengthCacheTest, leaves_its_file_alone_when_nothing_is_new) {
    learnTwo();
    AudioLengthCache cache(place_);
    EXPECT_TRUE(cache.find(kDay, kStamp));
    EXPECT_TRUE(cache.find(kOtherDay, kStamp));
    cache.forgetUnasked(kDays);
    std::filesystem::remove(file_);
    cache.save();
    EXPECT_FALSE(std::filesystem::exists(file_));
}

}  // namespace
}  // namespace sonavault
