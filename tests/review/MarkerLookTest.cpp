#include "review/MarkerLook.h"

#include <gtest/gtest.h>

#include "review/Lanes.h"

namespace sonavault::testing {
namespace {

constexpr Size kLane{1000, 100};
constexpr double kNoon = 43200;  // at x = 500

Marker marker(const std::string& type, double durationSec = 0) {
    return {.type = type, .timeSec = kNoon, .durationSec = durationSec};
}
Box frameOf(const std::string& type, double durationSec = 0) {
    return markerFrame(marker(type, durationSec), kLane);
}

TEST(MarkerFrame, an_hour_is_a_tick_over_the_height_of_the_lane) {
    EXPECT_EQ(frameOf("hour"), (Box{499, 4, 2, 92}));
    EXPECT_EQ(frameOf("hour", 600), (Box{499, 4, 2, 92}));
    EXPECT_EQ(markerFrame(marker("hour"), {1000, 5}).height, 2);
}

TEST(MarkerFrame, a_span_is_as_wide_as_it_is_long) {
    for (const auto* type : {"break", "mic", "vt"})
        EXPECT_EQ(frameOf(type, 8640), (Box{500, 39, 100, 22})) << type;
}

TEST(MarkerFrame, a_short_span_is_8_points_wide) {
    EXPECT_EQ(frameOf("vt", 1), (Box{500, 39, 8, 22}));
}

TEST(MarkerFrame, a_voicetrack_without_a_length_is_a_pin) {
    EXPECT_FALSE(isSpan(marker("vt")));
    EXPECT_TRUE(isInstant(marker("vt")));
    EXPECT_EQ(frameOf("vt"), (Box{496, 38, 8, 24}));
}

TEST(MarkerFrame, a_pair_of_arrows_encloses_what_it_marks) {
    for (const auto* kind : {"vt", "mic"}) {
        EXPECT_EQ(frameOf(std::string(kind) + "_start"), (Box{500, 39, 10, 22}));
        EXPECT_EQ(frameOf(std::string(kind) + "_end"), (Box{490, 39, 10, 22}));
    }
}

TEST(MarkerFrame, an_arrow_ignores_its_length) {
    EXPECT_EQ(frameOf("vt_start", 30), frameOf("vt_start"));
}

TEST(MarkerFrame, only_breaks_voicetracks_and_mics_have_a_length) {
    for (const auto* type : {"eas", "vt-pre", "custom", "silence_start", "hour"})
        EXPECT_FALSE(isSpan(marker(type, 120))) << type;
    EXPECT_EQ(frameOf("eas", 120), frameOf("eas"));
    EXPECT_TRUE(isInstant(marker("eas", 120)));
    EXPECT_FALSE(isInstant(marker("hour")));
}

TEST(MarkerColour, goes_by_the_whole_type) {
    EXPECT_EQ(markerColour("vt-post"), kColorMarkerVT);
    EXPECT_EQ(markerColour("vt-other"), kColorMarkerCustom);
    EXPECT_EQ(laneFor("vt-other"), Lane::vt);
    EXPECT_EQ(markerColour("microphone"), kColorMarkerCustom);
    EXPECT_EQ(markerColour("Hour"), kColorMarkerCustom);
    EXPECT_EQ(markerColour("mic_end"), kColorMarkerMic);
    EXPECT_EQ(markerColour("eas"), (Colour{181 / 255.0, 84 / 255.0, 168 / 255.0, 1}));
}

TEST(MarkerColour, of_a_lanes_own_type_is_the_lanes) {
    for (const LaneDescription& each : laneOrder)
        EXPECT_EQ(markerColour(std::string(each.key)), each.markerColour) << each.key;
}

TEST(MarkerReadout, says_when_what_and_the_label_if_there_is_one) {
    EXPECT_EQ(markerReadout({.type = "hour", .timeSec = 50400}), "14:00:00  Hour");
    EXPECT_EQ(markerReadout({.type = "hour", .timeSec = 50400, .label = "Top of hour"}),
              "14:00:00  Hour:  Top of hour");
}

TEST(MarkerReadout, has_a_word_for_each_type) {
    EXPECT_EQ(markerWord("break"), "Break");
    EXPECT_EQ(markerWord("vt_end"), "Voicetrack");
    EXPECT_EQ(markerWord("vt-pre"), "Voicetrack");
    EXPECT_EQ(markerWord("mic"), "Live mic");
    EXPECT_EQ(markerWord("eas"), "EAS");
    EXPECT_EQ(markerWord("vt_pre"), "Note");
    EXPECT_EQ(markerWord("anything"), "Note");
}

TEST(MarkerReadout, an_end_of_silence_is_an_orange_note) {
    EXPECT_EQ(laneFor("silence_end"), Lane::custom);
    EXPECT_EQ(markerColour("silence_end"), kColorMarkerSilence);
    EXPECT_EQ(markerWord("silence_end"), "Silence");
}

/// One outline of the shapes, which must be of the kind that is asked for.
template <class Outline>
Outline outline(const MarkerShapes& shapes, std::size_t index) {
    EXPECT_LT(index, shapes.count);
    return std::get<Outline>(shapes.shapes.at(index).outline);
}

TEST(MarkerShapes, arrows_point_into_what_they_enclose) {
    const auto start = markerShapes(marker("mic_start"), {10, 22});
    ASSERT_EQ(start.count, 1U);
    EXPECT_EQ(outline<Triangle>(start, 0), (Triangle{{{0, 0}, {10, 11}, {0, 22}}}));
    const auto end = markerShapes(marker("vt_end"), {10, 22});
    ASSERT_EQ(end.count, 1U);
    EXPECT_EQ(outline<Triangle>(end, 0), (Triangle{{{10, 0}, {0, 11}, {10, 22}}}));
}

TEST(MarkerShapes, an_hour_fills_its_frame) {
    const auto shapes = markerShapes(marker("hour"), {2, 92});
    ASSERT_EQ(shapes.count, 1U);
    EXPECT_EQ(outline<Box>(shapes, 0), (Box{0, 0, 2, 92}));
    EXPECT_EQ(shapes.begin()->colour, kColorMarkerHour);
}

TEST(MarkerShapes, a_pin_is_a_body_under_a_point) {
    const auto shapes = markerShapes(marker("eas"), {8, 24});
    ASSERT_EQ(shapes.count, 2U);
    EXPECT_EQ(outline<RoundedBox>(shapes, 0), (RoundedBox{{0, 6, 8, 18}, 2}));
    EXPECT_EQ(outline<Triangle>(shapes, 1), (Triangle{{{4, 0}, {8, 6}, {0, 6}}}));
    for (const FilledShape& each : shapes) EXPECT_EQ(each.colour, kColorMarkerEAS);
}

TEST(MarkerShapes, a_span_is_pale_with_its_point_at_the_left_end) {
    const auto shapes = markerShapes(marker("break", 8640), {100, 22});
    ASSERT_EQ(shapes.count, 2U);
    EXPECT_EQ(outline<RoundedBox>(shapes, 0), (RoundedBox{{0, 6, 100, 16}, 3}));
    EXPECT_EQ(outline<Triangle>(shapes, 1), (Triangle{{{4, 0}, {8, 6}, {0, 6}}}));
    EXPECT_EQ(shapes.shapes.at(0).colour, kColorMarkerBreak.withAlpha(0.5));
    EXPECT_EQ(shapes.shapes.at(1).colour, kColorMarkerBreak);
}

TEST(PlayheadCap, points_down_at_the_line) {
    EXPECT_EQ(playheadCap(2), (Triangle{{{-5, 0}, {7, 0}, {1, 7}}}));
}

}  // namespace
}  // namespace sonavault::testing
