#include "review/LaneMarkers.h"

#include <gtest/gtest.h>

#include <random>

#include "review/MarkerLook.h"

namespace sonavault::testing {
namespace {

constexpr Size kLane{1000, 100};

/// A day as a wild automation would log it: all types, in no order, with lengths here and there.
std::vector<Marker> wildDay(std::size_t count, unsigned seed) {
    const std::vector<std::string> types{"hour",   "break",       "vt",        "vt_start", "vt_end",
                                         "vt-pre", "mic",         "mic_start", "mic_end",  "eas",
                                         "custom", "silence_end", "custom",    "break"};
    std::mt19937 random(seed);
    std::uniform_int_distribution<std::size_t> type(0, types.size() - 1);
    std::uniform_int_distribution<int> second(0, 86399);
    std::uniform_int_distribution<int> length(-200, 2000);
    std::vector<Marker> markers;
    for (std::size_t i = 0; i < count; ++i)
        markers.push_back({.type = types[type(random)],
                           .timeSec = static_cast<double>(second(random)),
                           .durationSec = static_cast<double>(std::max(0, length(random)))});
    return markers;
}

/// The same by looking at every marker.
std::vector<const Marker*> plainlyExposed(const std::vector<Marker>& markers, Lane lane, Size size,
                                          Extent exposed) {
    std::vector<const Marker*> found;
    for (const Marker& each : markers) {
        const Box frame = markerFrame(each, size);
        if (laneFor(each.type) == lane && frame.right() >= exposed.left && frame.x <= exposed.right)
            found.push_back(&each);
    }
    return found;
}

constexpr std::array kLanes{Lane::hour, Lane::breaks, Lane::vt, Lane::mic, Lane::eas, Lane::custom};

TEST(LaneMarkers, finds_what_a_look_at_every_marker_finds_at_every_zoom) {
    const auto markers = wildDay(3000, 1);
    const LaneMarkers lanes(markers);
    std::size_t seen = 0;
    for (const double zoom : {1.0, 3.7, 24.0, 720.0})
        for (const Lane lane : kLanes)
            for (double at = 0; at < 1; at += 0.0617) {
                const Size size{1000 * zoom, 100};
                const Extent exposed{at * size.width, at * size.width + 300};
                const auto found = lanes.exposed(lane, size, exposed);
                EXPECT_EQ(found, plainlyExposed(markers, lane, size, exposed));
                seen += found.size();
            }
    EXPECT_GT(seen, 10000U);
}

TEST(LaneMarkers, points_at_what_a_look_at_every_marker_points_at) {
    const auto markers = wildDay(1000, 2);
    const LaneMarkers lanes(markers);
    std::mt19937 random(3);
    std::uniform_real_distribution<double> x(0, 6000);
    std::uniform_real_distribution<double> y(0, 100);
    const Size size{6000, 100};
    int hits = 0;
    for (int i = 0; i < 1500; ++i) {
        const Lane lane = kLanes.at(static_cast<std::size_t>(i) % kLanes.size());
        const Point point{x(random), y(random)};
        const Marker* uppermost = nullptr;
        for (const Marker* each : plainlyExposed(markers, lane, size, {point.x, point.x}))
            if (markerFrame(*each, size).contains(point)) uppermost = each;
        ASSERT_EQ(lanes.at(lane, size, point), uppermost);
        hits += uppermost != nullptr;
    }
    EXPECT_GT(hits, 20);
}

TEST(LaneMarkers, what_stands_later_in_the_list_lies_on_top) {
    const std::vector<Marker> markers{{.type = "eas", .timeSec = 43260, .label = "below"},
                                      {.type = "eas", .timeSec = 43200, .label = "above"}};
    const LaneMarkers lanes(markers);
    const auto found = lanes.exposed(Lane::eas, kLane, {0, 1000});
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[1]->label, "above");
    EXPECT_EQ(lanes.at(Lane::eas, kLane, {500, 50})->label, "above");
}

TEST(LaneMarkers, a_pin_is_hit_in_all_of_its_frame_and_not_beside_it) {
    const std::vector<Marker> markers{{.type = "eas", .timeSec = 43200}};
    const LaneMarkers lanes(markers);
    EXPECT_NE(lanes.at(Lane::eas, kLane, {496, 38}), nullptr);
    EXPECT_NE(lanes.at(Lane::eas, kLane, {503.9, 61.9}), nullptr);
    EXPECT_EQ(lanes.at(Lane::eas, kLane, {504, 50}), nullptr);
    EXPECT_EQ(lanes.at(Lane::eas, kLane, {495.9, 50}), nullptr);
    EXPECT_EQ(lanes.at(Lane::eas, kLane, {500, 62}), nullptr);
    EXPECT_EQ(lanes.at(Lane::mic, kLane, {500, 50}), nullptr);
}

TEST(LaneMarkers, finds_a_long_span_by_its_far_end) {
    std::vector<Marker> markers{{.type = "break", .timeSec = 0, .durationSec = 80000}};
    for (int i = 1; i < 100; ++i) markers.push_back({.type = "break", .timeSec = i * 100.0});
    const LaneMarkers lanes(markers);
    EXPECT_EQ(lanes.at(Lane::breaks, kLane, {900, 50}), &markers.front());
}

TEST(LaneMarkers, has_none_without_a_day_or_a_width) {
    EXPECT_TRUE(LaneMarkers().exposed(Lane::vt, kLane, {0, 1000}).empty());
    const std::vector<Marker> markers{{.type = "vt"}};
    EXPECT_TRUE(LaneMarkers(markers).exposed(Lane::vt, {0, 100}, {0, 1000}).empty());
}

}  // namespace
}  // namespace sonavault::testing
