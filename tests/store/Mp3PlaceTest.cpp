#include "store/Mp3Place.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "DayStreams.h"
#include "platform/AudioFileInfo.h"
#include "support/SyntheticMp3.h"

namespace sonavault {
namespace {

using testing::DayQuality;
using testing::dayRun;
using testing::encodedRun;
using testing::kDayQualities;
using testing::Mp3Shape;
using testing::SyntheticMp3;

std::span<const std::uint8_t> bytesOf(const std::string& text, std::int64_t from = 0,
                                      std::int64_t count = std::int64_t{1} << 40) {
    const std::span<const std::uint8_t> all(reinterpret_cast<const std::uint8_t*>(text.data()),
                                            text.size());
    const auto begin = static_cast<std::size_t>(from);
    return all.subspan(begin, std::min(all.size() - begin, static_cast<std::size_t>(count)));
}

Mp3Header kindOf(const std::string& stream) {
    return parseMp3Header(bytesOf(stream)).value();
}

std::optional<Mp3Place> placeIn(const std::string& stream, std::int64_t from) {
    return findMp3Place(bytesOf(stream, from, bytesToFindPlace(kindOf(stream))), from);
}

/// Where each frame of a stream begins that has nothing but frames of one kind.
std::vector<std::int64_t> beginsOf(const std::string& stream) {
    std::vector<std::int64_t> begins;
    std::int64_t at = 0;
    while (const auto header = parseMp3Header(bytesOf(stream, at))) {
        begins.push_back(at);
        at += header->frameBytes;
        if (at == static_cast<std::int64_t>(stream.size())) break;
    }
    return begins;
}

/// Looks at places all over a stream of one run and compares what lies between them with a count.
void expectPlacesToAgree(const std::string& stream) {
    const auto begins = beginsOf(stream);
    const auto indexOf = [&begins](std::int64_t at) {
        return std::lower_bound(begins.begin(), begins.end(), at) - begins.begin();
    };
    const auto first = placeIn(stream, 0);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->at, 0);
    std::mt19937 random(3);
    const auto last = static_cast<std::int64_t>(stream.size()) - bytesToFindPlace(kindOf(stream));
    for (int i = 0; i < 200; ++i) {
        const auto from = static_cast<std::int64_t>(random()) % last;
        const auto place = placeIn(stream, from);
        ASSERT_TRUE(place) << from;
        ASSERT_TRUE(std::binary_search(begins.begin(), begins.end(), place->at)) << from;
        EXPECT_EQ(framesBetween(*first, *place), indexOf(place->at)) << from;
    }
}

TEST(Mp3Cadence, of_a_bitrate_that_comes_out_even_has_one_frame_without_padding) {
    for (const DayQuality quality : {kDayQualities[0], kDayQualities[1], kDayQualities[2]}) {
        const Mp3Cadence cadence(kindOf(dayRun(1, quality)));
        EXPECT_EQ(cadence.frames(), 1);
        EXPECT_EQ(cadence.bytes, cadence.plainBytes);
        EXPECT_FALSE(cadence.isPadded(0));
    }
}

TEST(Mp3Cadence, of_the_upper_qualities_repeats_after_49_frames) {
    const Mp3Cadence reallyGood(kindOf(dayRun(1, {48, 22050})));
    EXPECT_EQ(reallyGood.frames(), 49);
    EXPECT_EQ(reallyGood.bytes, 7680);  // 1.28 s at 48 kbps
    const Mp3Cadence crazyGood(kindOf(dayRun(1, {96, 22050})));
    EXPECT_EQ(crazyGood.frames(), 49);
    EXPECT_EQ(crazyGood.bytes, 15360);
}

TEST(Mp3Cadence, is_the_one_that_the_encoder_of_the_days_keeps) {
    for (const auto& quality : kDayQualities) {
        const std::string stream = encodedRun(60, quality.kbps);
        const auto kind = kindOf(stream);
        EXPECT_EQ(kind.sampleRate, quality.sampleRate);
        const Mp3Cadence cadence(kind);
        const auto begins = beginsOf(stream);
        ASSERT_GT(begins.size(), 800U);
        for (std::size_t i = 0; i < begins.size(); ++i) {
            const auto turn = i % static_cast<std::size_t>(cadence.frames());
            const auto turns = static_cast<std::int64_t>(i) / cadence.frames();
            ASSERT_EQ(begins[i], turns * cadence.bytes + cadence.before[turn]) << quality.kbps;
        }
    }
}

TEST(Mp3Place, is_found_anywhere_in_what_the_encoder_made) {
    for (const auto& quality : kDayQualities) expectPlacesToAgree(encodedRun(120, quality.kbps));
}

TEST(Mp3Place, is_found_anywhere_among_sound_that_looks_like_headers) {
    for (const auto& quality : kDayQualities) expectPlacesToAgree(dayRun(9000, quality));
}

TEST(Mp3Place, is_found_in_streams_of_other_makers) {
    for (const DayQuality quality : {DayQuality{128, 22050}, {40, 11025}, {32, 12000}, {64, 24000}})
        expectPlacesToAgree(dayRun(4000, quality));
}

TEST(Mp3Place, is_not_found_where_no_frames_are) {
    EXPECT_FALSE(findMp3Place({}, 0));
    EXPECT_FALSE(findMp3Place(bytesOf(std::string(8192, '\0')), 0));
    EXPECT_FALSE(findMp3Place(bytesOf(std::string(8192, '\xFF')), 0));
    SyntheticMp3 junk;
    EXPECT_FALSE(findMp3Place(bytesOf(junk.junk(8192).bytes()), 0));
}

TEST(Mp3Place, is_not_found_among_too_few_frames) {
    const DayQuality good{24, 16000};
    EXPECT_FALSE(findMp3Place(bytesOf(dayRun(7, good)), 0));
    EXPECT_TRUE(findMp3Place(bytesOf(dayRun(8, good)), 0));
    const DayQuality reallyGood{48, 22050};
    EXPECT_FALSE(findMp3Place(bytesOf(dayRun(48, reallyGood)), 0));
    EXPECT_TRUE(findMp3Place(bytesOf(dayRun(49, reallyGood)), 0));
}

TEST(Mp3Place, is_not_found_where_padding_keeps_no_cadence) {
    SyntheticMp3 alternating;
    alternating.frames(200, {22050, 48, Mp3Shape::Padding::alternating, false});
    EXPECT_FALSE(findMp3Place(bytesOf(alternating.bytes()), 0));
    SyntheticMp3 always;
    always.frames(200, {16000, 24, Mp3Shape::Padding::always, false});
    EXPECT_FALSE(findMp3Place(bytesOf(always.bytes()), 0));
}

TEST(Mp3Place, is_not_found_where_the_bitrate_changes_with_every_frame) {
    SyntheticMp3 variable;
    for (int i = 0; i < 100; ++i)
        variable.frames(1, {44100, i % 2 ? 128 : 32 + 8 * (i % 4), Mp3Shape::Padding::never, true});
    EXPECT_FALSE(findMp3Place(bytesOf(variable.bytes()), 0));
}

TEST(Mp3Place, lies_in_the_longer_stretch_when_a_seam_is_near) {
    const DayQuality good{24, 16000};
    const std::string before = dayRun(10, good).substr(0, 10 * 108 - 50);
    const auto place = findMp3Place(bytesOf(before + dayRun(30, good)), 1000);
    ASSERT_TRUE(place);
    EXPECT_EQ(place->at, 1000 + 10 * 108 - 50);
}

TEST(FramesBetween, is_nothing_across_a_torn_frame) {
    for (const auto& quality : kDayQualities) {
        const std::string before = dayRun(200, quality);
        const auto from = placeIn(before, 0);
        const auto frame = static_cast<std::size_t>(kindOf(before).frameBytes);
        for (std::size_t torn = 1; torn < frame; ++torn) {
            const std::string stream =
                before.substr(0, before.size() - torn) + dayRun(200, quality, 2);
            const auto to = placeIn(stream, static_cast<std::int64_t>(before.size()));
            ASSERT_TRUE(to);
            ASSERT_EQ(framesBetween(*from, *to), std::nullopt) << quality.kbps << " " << torn;
        }
    }
}

TEST(FramesBetween, is_nothing_between_frames_of_the_same_length_at_another_rate) {
    const std::string crummy = dayRun(100, {8, 8000});
    const std::string prettyGood = dayRun(100, {16, 16000});
    ASSERT_EQ(kindOf(crummy).frameBytes, kindOf(prettyGood).frameBytes);
    const std::string stream = crummy + prettyGood;
    const auto from = placeIn(crummy, 0);
    const auto to = placeIn(prettyGood, 0);
    ASSERT_TRUE(from && to);
    EXPECT_EQ(framesBetween(*from, *to), std::nullopt);
}

TEST(FramesBetween, is_nothing_where_a_run_began_the_cadence_afresh) {
    const DayQuality crazyGood{96, 22050};
    for (int frames = 50; frames < 98; ++frames) {
        const std::string before = dayRun(frames, crazyGood);
        const auto from = placeIn(before + dayRun(100, crazyGood), 0);
        const auto behind = dayRun(100, crazyGood);
        auto to = placeIn(behind, 0);
        ASSERT_TRUE(from && to);
        to->at += static_cast<std::int64_t>(before.size());
        EXPECT_EQ(framesBetween(*from, *to), std::nullopt) << frames;
    }
}

}  // namespace
}  // namespace sonavault
