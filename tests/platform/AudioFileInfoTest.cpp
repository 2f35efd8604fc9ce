#include "platform/AudioFileInfo.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/SyntheticMp3.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

using Padding = Mp3Shape::Padding;

const Mp3Shape kGood{16000, 24, Padding::never, false};              // 108 bytes a frame
const Mp3Shape kPrettyGood{16000, 16, Padding::never, false};        // 72
const Mp3Shape kCrummy{8000, 8, Padding::never, false};              // 72
const Mp3Shape kReallyGood{22050, 48, Padding::alternating, false};  // 156 and 157
const Mp3Shape kCrazyGood{22050, 96, Padding::alternating, false};   // 313 and 314
const Mp3Shape kThird{16000, 8, Padding::never, false};              // 36, a third of kGood's
const std::vector<Mp3Shape> kShapes = {kGood,       kPrettyGood, kCrummy,
                                       kReallyGood, kCrazyGood,  kThird};

std::span<const std::uint8_t> bytesOf(const std::string& text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

/// The length told for these bytes; -1 when they are refused.
FrameCount lengthOf(const std::string& bytes) {
    const auto info = walkMp3(bytesOf(bytes));
    return info ? info.value().frames : -1;
}

/// Frames of 576 samples told for bytes of one rate.
FrameCount framesOf576(const std::string& bytes) {
    return lengthOf(bytes) / 576;
}

void expectTrueLength(const SyntheticMp3& mp3, const std::string& what = {}) {
    const auto info = walkMp3(mp3.span());
    ASSERT_TRUE(info) << what;
    EXPECT_EQ(info.value().frames, mp3.lengthInFrames()) << what;
    EXPECT_EQ(info.value().sampleRate, mp3.made().front().sampleRate) << what;
}

std::string describe(const Mp3Shape& shape) {
    return std::to_string(shape.sampleRate) + "/" + std::to_string(shape.bitrateKbps);
}

TEST(AudioFileInfo, counts_the_samples_of_a_uniform_stream_exactly) {
    for (const auto& shape : kShapes) {
        SyntheticMp3 mp3;
        mp3.frames(1001, shape);
        const auto info = walkMp3(mp3.span());
        ASSERT_TRUE(info);
        EXPECT_EQ(info.value().frames, 1001 * 576);
        EXPECT_EQ(info.value().sampleRate, shape.sampleRate);
        EXPECT_DOUBLE_EQ(info.value().durationSec(), 1001 * 576.0 / shape.sampleRate);
    }
}

TEST(AudioFileInfo, counts_mpeg_1_frames_as_1152_samples) {
    SyntheticMp3 mp3;
    mp3.frames(100, {44100, 128, Padding::alternating, true});
    EXPECT_EQ(lengthOf(mp3.bytes()), 100 * 1152);
}

TEST(AudioFileInfo, counts_a_single_frame) {
    SyntheticMp3 mp3;
    expectTrueLength(mp3.frames(1));
}

TEST(AudioFileInfo, follows_a_bitrate_that_changes_with_every_frame) {
    SyntheticMp3 mp3;
    for (int i = 0; i < 300; ++i) mp3.frames(1, {44100, i % 2 ? 128 : 32 + 8 * (i % 4), {}, true});
    expectTrueLength(mp3);
}

TEST(AudioFileInfo, steps_over_the_tags_before_and_behind) {
    SyntheticMp3 mp3;
    expectTrueLength(mp3.id3v2(4096).frames(50).id3v1());
}

TEST(AudioFileInfo, leaves_out_the_last_frame_until_its_last_byte_is_there) {
    for (const auto& shape : kShapes) {
        SyntheticMp3 whole;
        whole.frames(4, shape);
        const auto& last = whole.made().back();
        for (std::int64_t cut = 0; cut < last.begin + last.bytes; ++cut) {
            SyntheticMp3 mp3 = whole;
            mp3.cutEnd(cut);
            const FrameCount expected = mp3.made().empty() ? -1 : mp3.lengthInFrames();
            ASSERT_EQ(lengthOf(mp3.bytes()), expected) << describe(shape) << " cut by " << cut;
        }
    }
}

TEST(AudioFileInfo, leaves_out_the_frame_that_was_torn_where_the_next_recording_begins) {
    for (const auto& before : kShapes)
        for (const auto& after : kShapes)
            for (int torn = 0; torn < mp3FrameBytes(before, false); ++torn) {
                SyntheticMp3 mp3;
                mp3.frames(5, before).tornFrame(torn, before).frames(20, after);
                expectTrueLength(mp3, describe(before) + " torn after " + std::to_string(torn) +
                                          ", then " + describe(after));
            }
}

TEST(AudioFileInfo, finds_a_recording_shorter_than_the_torn_frame_before_it) {
    for (int torn = 4; torn < 313; ++torn)
        for (int count = 1; count * 36 < 313; ++count) {
            SyntheticMp3 mp3;
            mp3.frames(3, kCrazyGood).tornFrame(torn, kCrazyGood).frames(count, kThird);
            // A last frame that ends the file is taken as whole, whatever came to fill it.
            const bool fills = torn + count * 36 == mp3FrameBytes(kCrazyGood, true);
            if (fills) continue;
            expectTrueLength(mp3, std::to_string(torn) + " + " + std::to_string(count));
        }
}

TEST(AudioFileInfo, steps_over_junk_of_any_length_between_frames) {
    for (int length = 1; length < 400; ++length) {
        SyntheticMp3 mp3;
        mp3.frames(4).junk(length, static_cast<std::uint32_t>(length)).frames(4);
        expectTrueLength(mp3, std::to_string(length));
    }
}

TEST(AudioFileInfo, steps_over_junk_before_the_first_frame_and_behind_the_last) {
    SyntheticMp3 mp3;
    expectTrueLength(mp3.junk(777).frames(4).junk(999));
}

TEST(AudioFileInfo, steps_over_a_tag_in_the_middle_of_the_file) {
    SyntheticMp3 mp3;
    expectTrueLength(mp3.frames(4).id3v1().id3v2(300).frames(4));
}

TEST(AudioFileInfo, adds_up_the_frames_own_durations_when_the_rate_changes) {
    SyntheticMp3 mp3;
    mp3.frames(1000, kGood).frames(1000, kReallyGood).frames(1000, kCrummy);
    const auto info = walkMp3(mp3.span());
    ASSERT_TRUE(info);
    EXPECT_EQ(info.value().sampleRate, 16000);
    EXPECT_NEAR(info.value().durationSec(), mp3.durationSec(), 0.5 / 16000);
    EXPECT_NEAR(info.value().durationSec(), 36.0 + 576000 / 22050.0 + 72.0, 0.5 / 16000);
}

TEST(AudioFileInfo, is_not_led_astray_by_a_header_in_the_sound_of_a_torn_frame) {
    const std::string falseHeader = mp3HeaderBytes({44100, 320, {}, true}, false);
    for (int place = 4; place < 80; ++place) {
        SyntheticMp3 torn;
        torn.tornFrame(90);
        std::string bytes = torn.bytes();
        bytes.replace(static_cast<std::size_t>(place), 4, falseHeader);
        SyntheticMp3 mp3;
        mp3.frames(5).raw(bytes).frames(50);
        expectTrueLength(mp3, std::to_string(place));
    }
}

TEST(AudioFileInfo, is_not_led_astray_by_a_header_in_the_sound_that_points_at_a_true_one) {
    // 4 + 14 bytes into the torn frame a header of another kind claims 72 bytes: they reach into
    // the next recording, and end just where its first frame does.
    SyntheticMp3 torn;
    torn.tornFrame(18 + 36);
    std::string bytes = torn.bytes();
    bytes.replace(18, 4, mp3HeaderBytes(kCrummy, false));
    SyntheticMp3 mp3;
    expectTrueLength(mp3.frames(5).raw(bytes).frames(50, kThird));
}

TEST(AudioFileInfo, is_not_led_astray_by_a_header_in_the_sound_that_points_at_the_next_recording) {
    // From the 18th byte of the torn frame a header of another kind claims the rest of it to its
    // last byte.
    SyntheticMp3 torn;
    torn.tornFrame(18 + 72);
    std::string bytes = torn.bytes();
    bytes.replace(18, 4, mp3HeaderBytes(kCrummy, false));
    SyntheticMp3 mp3;
    expectTrueLength(mp3.frames(5).raw(bytes).frames(50, kReallyGood));
}

TEST(AudioFileInfo, is_not_led_astray_when_a_torn_frame_points_at_what_looks_like_a_header) {
    const std::string falseHeader = mp3HeaderBytes({8000, 16, Padding::never, false}, false);
    for (const auto& after : kShapes)
        for (int torn = 4; torn < 104; ++torn) {
            // Only where the sound of the next recording's first frame is.
            const int place = 108 - torn;
            if (place < 4 || place + 4 > mp3FrameBytes(after, false)) continue;
            SyntheticMp3 mp3;
            mp3.frames(5).tornFrame(torn).frames(50, after);
            std::string bytes = mp3.bytes();
            bytes.replace(6 * 108, 4, falseHeader);
            EXPECT_EQ(lengthOf(bytes), mp3.lengthInFrames()) << describe(after) << " " << torn;
        }
}

TEST(AudioFileInfo, takes_a_whole_frame_for_whole_though_its_sound_looks_like_a_header) {
    SyntheticMp3 whole;
    whole.frames(1);
    std::string bytes = whole.bytes();
    bytes.replace(40, 4, mp3HeaderBytes(kGood, false));
    for (const bool junkBehind : {false, true}) {
        SyntheticMp3 mp3;
        mp3.frames(3).raw(bytes);
        if (junkBehind) mp3.junk(500);
        mp3.frames(3);
        EXPECT_EQ(lengthOf(mp3.bytes()), 7 * 576);
    }
}

TEST(AudioFileInfo, loses_no_more_than_the_frame_in_which_a_byte_is_damaged) {
    for (const auto& shape : kShapes) {
        SyntheticMp3 mp3;
        mp3.frames(6, shape);
        for (std::size_t at = 0; at < mp3.bytes().size(); ++at)
            for (const int damage : {0x00, 0x55, 0xFF}) {
                std::string bytes = mp3.bytes();
                bytes[at] = static_cast<char>(damage);
                const auto info = walkMp3(bytesOf(bytes));
                ASSERT_TRUE(info) << at;
                const double lost = mp3.durationSec() - info.value().durationSec();
                EXPECT_NEAR(lost, 0, 1.01 * 1152 / shape.sampleRate)
                    << describe(shape) << " byte " << at << " = " << damage;
            }
    }
}

TEST(AudioFileInfo, refuses_what_holds_no_frame) {
    EXPECT_EQ(lengthOf(""), -1);
    EXPECT_EQ(lengthOf("\xFF"), -1);
    EXPECT_EQ(lengthOf("A text is no sound.\n"), -1);
    EXPECT_EQ(lengthOf(std::string(1 << 20, '\0')), -1);
    EXPECT_EQ(lengthOf(std::string(1 << 20, '\xFF')), -1);
    EXPECT_EQ(lengthOf(SyntheticMp3().id3v2(50).bytes()), -1);
    EXPECT_EQ(lengthOf(SyntheticMp3().id3v2(50).id3v1().bytes()), -1);
    EXPECT_EQ(lengthOf(SyntheticMp3().tornFrame(100).bytes()), -1);
}

TEST(AudioFileInfo, refuses_a_tag_that_claims_more_than_the_file_holds) {
    SyntheticMp3 mp3;
    mp3.id3v2(5000).frames(10);
    EXPECT_EQ(lengthOf(mp3.bytes().substr(0, 3000)), -1);
}

TEST(AudioFileInfo, looks_for_the_first_frame_in_the_beginning_of_a_file_only) {
    std::string nothing(static_cast<std::size_t>(Mp3Walk::kFirstFrameWithin), '\0');
    SyntheticMp3 mp3;
    mp3.frames(10);
    EXPECT_EQ(lengthOf(nothing + mp3.bytes()), -1);
    nothing.pop_back();
    EXPECT_EQ(framesOf576(nothing + mp3.bytes()), 10);
}

TEST(AudioFileInfo, looks_for_the_next_frame_however_far_it_is) {
    const std::string hole(static_cast<std::size_t>(Mp3Walk::kFirstFrameWithin) + 1000, '\0');
    SyntheticMp3 mp3;
    mp3.frames(10);
    EXPECT_EQ(framesOf576(mp3.bytes() + hole + mp3.bytes()), 20);
    EXPECT_EQ(framesOf576(SyntheticMp3().frames(1).bytes() + hole + mp3.bytes()), 11);
}

TEST(Mp3Walk, tells_each_run_of_frames_of_one_kind_and_where_it_lies) {
    SyntheticMp3 mp3;
    mp3.id3v2(20).frames(5, kGood).tornFrame(50, kGood).frames(4, kReallyGood).junk(33);
    const auto& made = mp3.made();
    Mp3Walk walk(mp3.span());

    const auto first = walk.next();
    ASSERT_TRUE(first);
    EXPECT_EQ(first->begin, 30);
    EXPECT_EQ(first->end, 30 + 5 * 108);
    EXPECT_EQ(first->count, 5);
    EXPECT_EQ(first->header.bitrateKbps, 24);

    const auto second = walk.next();
    ASSERT_TRUE(second);
    EXPECT_EQ(second->begin, made[5].begin);
    EXPECT_EQ(second->end, made[8].begin + made[8].bytes);
    EXPECT_EQ(second->count, 4);
    EXPECT_EQ(second->header.sampleRate, 22050);

    EXPECT_FALSE(walk.next());
    EXPECT_FALSE(walk.next());
}

TEST(AudioFileInfo, reads_a_files_length) {
    TempFolder folder;
    SyntheticMp3 mp3;
    mp3.frames(100, kReallyGood);
    writeFile(folder / "a.mp3", mp3.bytes());
    const auto info = readAudioFileInfo(folder / "a.mp3");
    ASSERT_TRUE(info);
    EXPECT_EQ(info.value().frames, 100 * 576);
    EXPECT_EQ(info.value().sampleRate, 22050);
}

TEST(AudioFileInfo, says_in_words_why_a_file_has_no_length) {
    TempFolder folder;
    EXPECT_EQ(readAudioFileInfo(folder / "none").error(), "No such file or directory");
    EXPECT_EQ(readAudioFileInfo(folder.path()).error(), "Is a directory");
    writeFile(folder / "empty", "");
    EXPECT_EQ(readAudioFileInfo(folder / "empty").error(), "The file holds no MPEG audio frame");
}

TEST(AudioFileInfo, refuses_five_gibibytes_of_nothing_after_a_look_at_its_beginning) {
    TempFolder folder;
    writeFile(folder / "holes", "");
    std::filesystem::resize_file(folder / "holes", std::uintmax_t{5} << 30);
    EXPECT_EQ(readAudioFileInfo(folder / "holes").error(), "The file holds no MPEG audio frame");
}

}  // namespace
}  // namespace sonavault::testing
