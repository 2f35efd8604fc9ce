#include "review/PlaybackFile.h"

#include <gtest/gtest.h>

#include <fstream>

#include "support/SyntheticMp3.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

constexpr int kFramesOfAnHour = 100'000;  // of 36 ms and 108 bytes

class PlaybackFileTest : public ::testing::Test {
  protected:
    PlaybackFile opened(std::string_view bytes) const {
        writeFile(file_, bytes);
        return std::move(PlaybackFile::open(file_).value());
    }

    static std::shared_ptr<const Mp3FrameIndex> awaited(const PlaybackFile& file) {
        return file.source()->index->await({}).value();
    }

    void append(const std::string& bytes) const {
        std::ofstream(file_, std::ios::binary | std::ios::app) << bytes;
    }

    TempFolder folder_;
    const std::filesystem::path file_ = folder_ / "day.mp3";
};

TEST_F(PlaybackFileTest, knows_the_length_of_a_short_file_and_where_everything_is_at_once) {
    const auto file = opened(SyntheticMp3().frames(1000).bytes());
    EXPECT_EQ(file.info().frames, 576'000);
    EXPECT_NE(file.source()->index->ifReady(), nullptr);
}

TEST_F(PlaybackFileTest, knows_the_length_of_a_long_file_before_it_has_walked_it) {
    SyntheticMp3 day;
    day.frames(kFramesOfAnHour).tornFrame(50).frames(kFramesOfAnHour);
    const auto file = opened(day.bytes());
    EXPECT_EQ(file.source()->probed.frames, day.lengthInFrames());
    EXPECT_EQ(file.source()->probed.sampleRate, 16000);
    EXPECT_EQ(file.info().frames, day.lengthInFrames());
    EXPECT_EQ(awaited(file)->info().frames, day.lengthInFrames());
}

TEST_F(PlaybackFileTest, learns_from_the_walk_what_a_few_places_did_not_tell) {
    std::string bytes = SyntheticMp3().frames(kFramesOfAnHour).bytes();
    // Destroyed in their place, where nobody looks at first.
    constexpr std::size_t kFrame = 54'321;
    bytes.replace(kFrame * 108, 10 * 108, 10 * 108, '\0');
    const auto file = opened(bytes);
    EXPECT_EQ(file.source()->probed.frames, kFramesOfAnHour * 576LL);
    awaited(file);
    EXPECT_EQ(file.info().frames, (kFramesOfAnHour - 10) * 576LL);
}

TEST_F(PlaybackFileTest, walks_a_long_file_whose_frames_lie_on_no_grid) {
    SyntheticMp3 day;
    for (int i = 0; i < 50; ++i)
        day.frames(800, {.bitrateKbps = 24 + 8 * (i % 2)}).junk(i + 40'000, 1U + i % 7U);
    const auto file = opened(day.bytes());
    EXPECT_EQ(file.info().frames, readAudioFileInfo(file_).value().frames);
}

TEST_F(PlaybackFileTest, takes_in_what_a_day_has_gained_at_once) {
    auto file = opened(SyntheticMp3().frames(kFramesOfAnHour).bytes());
    awaited(file);
    append(SyntheticMp3().frames(1000).bytes());
    ASSERT_TRUE(file.openAfresh());
    EXPECT_NE(file.source()->index->ifReady(), nullptr);
    EXPECT_EQ(file.info().frames, (kFramesOfAnHour + 1000) * 576LL);
}

TEST_F(PlaybackFileTest, has_what_a_day_has_gained_in_many_hours_looked_at_in_the_background) {
    auto file = opened(SyntheticMp3().frames(1000).bytes());
    append(SyntheticMp3().frames(2 * kFramesOfAnHour).bytes());
    ASSERT_TRUE(file.openAfresh());
    EXPECT_EQ(file.source()->probed.frames, (2 * kFramesOfAnHour + 1000) * 576LL);
    EXPECT_EQ(awaited(file)->info().frames, (2 * kFramesOfAnHour + 1000) * 576LL);
}

TEST_F(PlaybackFileTest, is_the_same_as_long_as_the_file_is) {
    auto file = opened(SyntheticMp3().frames(1000).bytes());
    const auto before = file.source();
    ASSERT_TRUE(file.openAfresh());
    EXPECT_EQ(file.source(), before);
}

TEST_F(PlaybackFileTest, stays_what_it_was_when_the_name_is_gone) {
    auto file = opened(SyntheticMp3().frames(1000).bytes());
    const auto before = file.source();
    std::filesystem::remove(file_);
    EXPECT_EQ(file.openAfresh().error(), "No such file or directory");
    EXPECT_EQ(file.source(), before);
    EXPECT_TRUE(before->openDecoder({}));
}

TEST_F(PlaybackFileTest, says_why_it_cannot_be_opened) {
    EXPECT_EQ(PlaybackFile::open(file_).error(), "No such file or directory");
    EXPECT_EQ(PlaybackFile::open(folder_.path()).error(), "Is a directory");
    writeFile(file_, "a text");
    EXPECT_EQ(PlaybackFile::open(file_).error(), "The file holds no MPEG audio frame");
    writeFile(file_, std::string(5'000'000, 'x'));
    EXPECT_EQ(PlaybackFile::open(file_).error(), "The file holds no MPEG audio frame");
}

}  // namespace
}  // namespace sonavault::testing
