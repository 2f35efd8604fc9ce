#include "platform/Mp3FrameIndex.h"

#include <gtest/gtest.h>

#include "support/SyntheticMp3.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

const Mp3Shape kGood{16000, 24, Mp3Shape::Padding::never, false};
const Mp3Shape kReallyGood{22050, 48, Mp3Shape::Padding::alternating, false};

SyntheticMp3 seamed() {
    SyntheticMp3 mp3;
    mp3.id3v2(40).frames(150, kGood).tornFrame(50, kGood).frames(70, kGood).junk(33);
    mp3.frames(66, kReallyGood).tornFrame(20, kReallyGood).frames(40, kGood);
    return mp3;
}

class Mp3FrameIndexOf : public ::testing::Test {
  protected:
    void write(const std::string& bytes) const { writeFile(file, bytes); }
    void write(const SyntheticMp3& mp3) const { write(mp3.bytes()); }
    Mp3FrameIndex open() const {
        auto index = Mp3FrameIndex::of(file);
        if (!index) throw std::runtime_error(index.error());
        return std::move(index.value());
    }
    /// Where in the file the frame begins, found from its group as a decoder does.
    std::int64_t offsetOf(const Mp3FrameIndex& index, Mp3FrameIndex::Place place) const {
        const std::string bytes = readFile(file);
        std::int64_t at = index.groups()[place.group].begin;
        for (std::int64_t i = 0; i < place.frame; ++i) {
            const auto* begin = reinterpret_cast<const std::uint8_t*>(bytes.data()) + at;
            at += parseMp3Header({begin, kMp3HeaderBytes}).value().frameBytes;
        }
        return at;
    }

    TempFolder folder;
    std::filesystem::path file = folder / "day.mp3";
};

void expectSame(const Mp3FrameIndex& one, const Mp3FrameIndex& other, const std::string& what) {
    ASSERT_EQ(one.info().frames, other.info().frames) << what;
    ASSERT_EQ(one.info().sampleRate, other.info().sampleRate) << what;
    ASSERT_EQ(one.channels(), other.channels()) << what;
    ASSERT_EQ(one.groups().size(), other.groups().size()) << what;
    for (std::size_t i = 0; i < one.groups().size(); ++i) {
        ASSERT_EQ(one.groups()[i].begin, other.groups()[i].begin) << what << " group " << i;
        ASSERT_EQ(one.groups()[i].count, other.groups()[i].count) << what << " group " << i;
        ASSERT_EQ(one.groups()[i].position, other.groups()[i].position) << what << " group " << i;
    }
}

TEST_F(Mp3FrameIndexOf, a_file_tells_the_length_that_its_headers_tell) {
    for (const auto& mp3 : {seamed(), SyntheticMp3().frames(1), SyntheticMp3().frames(64),
                            SyntheticMp3().frames(65), SyntheticMp3().id3v2(9).frames(7).id3v1()}) {
        write(mp3);
        const auto info = readAudioFileInfo(file);
        ASSERT_TRUE(info);
        EXPECT_EQ(open().info().frames, info.value().frames);
        EXPECT_EQ(open().info().frames, mp3.lengthInFrames());
        EXPECT_EQ(open().info().sampleRate, info.value().sampleRate);
    }
}

TEST_F(Mp3FrameIndexOf, a_file_tells_the_channels_of_its_first_frame) {
    write(SyntheticMp3().frames(9, kGood));
    EXPECT_EQ(open().channels(), 1);
    write(SyntheticMp3().frames(9, {44100, 128, {}, true}).frames(9, kGood));
    EXPECT_EQ(open().channels(), 2);
}

TEST_F(Mp3FrameIndexOf, a_seamed_file_finds_the_frame_of_every_position) {
    const SyntheticMp3 mp3 = seamed();
    write(mp3);
    const Mp3FrameIndex index = open();
    double begin = 0;
    for (const auto& frame : mp3.made()) {
        const double end = begin + frame.samples * 16000.0 / frame.sampleRate;
        for (const double inside : {begin + 1, (begin + end) / 2, end - 1}) {
            const auto place = index.find(static_cast<FrameCount>(inside));
            ASSERT_EQ(offsetOf(index, place), frame.begin) << inside;
            EXPECT_NEAR(static_cast<double>(index.positionOf(place)), begin, 0.51);
        }
        begin = end;
    }
}

TEST_F(Mp3FrameIndexOf, a_seamed_file_has_no_hole_between_two_frames) {
    write(seamed());
    const Mp3FrameIndex index = open();
    FrameCount position = 0;
    for (std::size_t group = 0; group < index.groups().size(); ++group)
        for (std::int64_t frame = 0; frame < index.groups()[group].count; ++frame) {
            ASSERT_EQ(index.positionOf({group, frame}), position);
            position = index.positionOf({group, frame + 1});
            ASSERT_EQ(index.find(position - 1), (Mp3FrameIndex::Place{group, frame}));
        }
    EXPECT_EQ(position, index.info().frames);
}

TEST_F(Mp3FrameIndexOf, a_file_steps_back_over_groups_to_its_beginning) {
    write(SyntheticMp3().frames(200));
    const Mp3FrameIndex index = open();
    for (std::int64_t from = 0; from < 200; ++from)
        for (const std::int64_t count : {0, 1, 31, 32, 64, 65, 129, 500}) {
            const auto place = index.stepBack(index.find(from * 576), count);
            const auto expected = std::max<std::int64_t>(0, from - count);
            ASSERT_EQ(index.positionOf(place), expected * 576) << from << " - " << count;
        }
}

TEST_F(Mp3FrameIndexOf, a_growing_file_is_the_same_wherever_it_was_looked_at_before) {
    const std::string bytes = seamed().bytes();
    write(bytes);
    const Mp3FrameIndex whole = open();
    int extended = 0;
    for (std::size_t cut = 300; cut < bytes.size(); cut += 13) {
        write(bytes.substr(0, cut));
        Mp3FrameIndex index = open();
        write(bytes);
        const auto unchanged = index.extend();
        ASSERT_TRUE(unchanged) << cut;
        extended += unchanged.value() > 0;
        expectSame(index, whole, "cut at " + std::to_string(cut));
    }
    EXPECT_GT(extended, 1000);
}

TEST_F(Mp3FrameIndexOf, a_growing_file_keeps_all_but_its_last_frames) {
    SyntheticMp3 mp3;
    write(mp3.frames(10'000));
    Mp3FrameIndex index = open();
    write(mp3.frames(10));
    const auto unchanged = index.extend();
    ASSERT_TRUE(unchanged);
    EXPECT_GT(unchanged.value(), (10'000 - 3 * 64) * 576);
    EXPECT_LE(unchanged.value(), 10'000 * 576);
    EXPECT_EQ(index.info().frames, 10'010 * 576);
}

TEST_F(Mp3FrameIndexOf, a_growing_file_grows_step_by_step) {
    const std::string bytes = seamed().bytes();
    write(bytes.substr(0, 400));
    Mp3FrameIndex index = open();
    for (std::size_t size = 400; size < bytes.size(); size += 777) {
        write(bytes.substr(0, size));
        ASSERT_TRUE(index.extend());
        expectSame(index, open(), std::to_string(size));
    }
}

TEST_F(Mp3FrameIndexOf, a_file_that_took_anothers_name_is_walked_from_its_beginning) {
    write(SyntheticMp3().frames(1000));
    Mp3FrameIndex index = open();
    writeFile(folder / "other.mp3", SyntheticMp3().frames(2000).bytes());
    std::filesystem::rename(folder / "other.mp3", file);
    const auto unchanged = index.extend();
    ASSERT_TRUE(unchanged);
    EXPECT_EQ(unchanged.value(), 0);
    EXPECT_EQ(index.info().frames, 2000 * 576);
}

TEST_F(Mp3FrameIndexOf, a_file_that_was_written_anew_in_place_is_walked_from_its_beginning) {
    write(SyntheticMp3().frames(1000, kGood));
    Mp3FrameIndex index = open();
    write(SyntheticMp3().frames(2000, kReallyGood));
    EXPECT_EQ(index.extend().value(), 0);
    EXPECT_EQ(index.info().frames, 2000 * 576);
    EXPECT_EQ(index.info().sampleRate, 22050);
}

TEST_F(Mp3FrameIndexOf, a_file_that_was_cut_short_is_walked_from_its_beginning) {
    SyntheticMp3 mp3;
    write(mp3.frames(1000));
    Mp3FrameIndex index = open();
    write(mp3.cutEnd(108));
    EXPECT_EQ(index.extend().value(), 0);
    EXPECT_EQ(index.info().frames, 999 * 576);
}

TEST_F(Mp3FrameIndexOf, a_file_that_went_away_stands_as_it_was_known) {
    write(SyntheticMp3().frames(1000));
    Mp3FrameIndex index = open();
    std::filesystem::remove(file);
    EXPECT_EQ(index.extend().error(), "No such file or directory");
    EXPECT_EQ(index.info().frames, 1000 * 576);
}

TEST_F(Mp3FrameIndexOf, a_long_file_is_given_up_when_asked_to_stop) {
    SyntheticMp3 mp3;
    write(mp3.frames(100'000));
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(Mp3FrameIndex::of(file, stop.get_token()).error(), "Stopped");
}

TEST_F(Mp3FrameIndexOf, what_holds_no_frame_is_an_error_in_words) {
    for (const std::string& bytes :
         {std::string(), std::string("A text is no sound.\n"), std::string(100'000, '\xFF')}) {
        write(bytes);
        EXPECT_EQ(Mp3FrameIndex::of(file).error(), "The file holds no MPEG audio frame");
    }
    EXPECT_EQ(Mp3FrameIndex::of(folder / "none").error(), "No such file or directory");
    EXPECT_EQ(Mp3FrameIndex::of(folder.path()).error(), "Is a directory");
}

}  // namespace
}  // namespace sonavault::testing
