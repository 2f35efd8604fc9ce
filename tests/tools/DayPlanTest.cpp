#include "pastdays/DayPlan.h"

#include <algorithm>
#include <map>
#include <set>

#include "store/RecordingModel.h"
#include "tools/PastDaysFixture.h"

namespace sonavault::pastdays {
namespace {

constexpr double kFrameSec = 0.036;

std::vector<PieceShape> shapes() {
    std::vector<PieceShape> all;
    for (const Recipe& recipe : standardRecipes(1))
        all.push_back({recipe.kind, static_cast<std::int64_t>(recipe.seconds / kFrameSec) + 2});
    return all;
}

DayPlan planned(const DayOutline& outline) {
    return planDay(outline, shapes(), kFrameSec);
}

std::map<std::string, int> countsOf(const DayPlan& plan) {
    std::map<std::string, int> counts;
    for (const LoggedMarker& marker : plan.markers) ++counts[marker.type];
    return counts;
}

/// The kind of what is on the air at each frame.
std::vector<PieceKind> airOf(const DayPlan& plan) {
    const auto all = shapes();
    std::vector<PieceKind> air;
    for (const PieceUse& use : plan.uses)
        air.insert(air.end(), static_cast<std::size_t>(use.frames), all[use.piece].kind);
    return air;
}

std::size_t frameAt(const DayOutline& outline, double second) {
    return static_cast<std::size_t>((second - outline.startSec) / kFrameSec);
}

TEST(DayPlan, fills_a_day_to_the_frame) {
    for (const PastDay& day : fiveDays(1)) {
        const DayPlan plan = planned(day.outline);
        std::int64_t frames = 0;
        for (const PieceUse& use : plan.uses) {
            ASSERT_GT(use.frames, 0);
            ASSERT_LE(use.frames, shapes()[use.piece].frames);
            frames += use.frames;
        }
        EXPECT_EQ(frames, plan.frames) << day.title;
        const double length = day.outline.endSec - day.outline.startSec;
        EXPECT_LE(static_cast<double>(frames) * kFrameSec, length + 1e-6) << day.title;
        EXPECT_GT(static_cast<double>(frames + 1) * kFrameSec, length) << day.title;
    }
    EXPECT_EQ(planned({}).frames, 2'400'000);
}

TEST(DayPlan, has_markers_of_all_kinds_on_every_day_but_that_of_hour_marks) {
    const std::set<std::string> all{
        "hour",     "break_start", "break_end", "break",         "vt_pre",     "vt_post",
        "vt_start", "vt_end",      "vt",        "mic_start",     "mic_end",    "mic",
        "eas",      "note",        "custom",    "silence_start", "silence_end"};
    for (const PastDay& day : fiveDays(1)) {
        std::set<std::string> found;
        for (const auto& [type, count] : countsOf(planned(day.outline))) found.insert(type);
        EXPECT_EQ(found, day.outline.onlyHourMarks ? std::set<std::string>{"hour"} : all)
            << day.title;
    }
}

TEST(DayPlan, keeps_its_markers_in_order_and_within_the_day) {
    for (const PastDay& day : fiveDays(1)) {
        const auto markers = planned(day.outline).markers;
        EXPECT_TRUE(
            std::is_sorted(markers.begin(), markers.end(),
                           [](const auto& a, const auto& b) { return a.second < b.second; }))
            << day.title;
        EXPECT_GE(markers.front().second, day.outline.startSec);
        EXPECT_LT(markers.back().second, day.outline.endSec);
    }
}

TEST(DayPlan, pairs_what_opens_with_what_closes) {
    const auto markers = planned({}).markers;
    for (const auto& [opening, closing] : {std::pair{"mic_start", "mic_end"},
                                           {"break_start", "break_end"},
                                           {"vt_start", "vt_end"},
                                           {"vt_pre", "vt_post"}}) {
        const LoggedMarker* open = nullptr;
        for (const LoggedMarker& marker : markers) {
            if (marker.type == opening) {
                EXPECT_EQ(open, nullptr);
                open = &marker;
            } else if (marker.type == closing) {
                ASSERT_NE(open, nullptr);
                EXPECT_EQ(open->label, marker.label);
                EXPECT_NEAR(open->second + open->durationSec, marker.second, 1.1);
                open = nullptr;
            }
        }
        EXPECT_EQ(open, nullptr);
    }
}

TEST(DayPlan, has_on_the_air_what_its_markers_say) {
    const DayOutline outline{.startSec = 1, .outages = {{30'000, 30'040}}};
    const DayPlan plan = planned(outline);
    const auto air = airOf(plan);
    const std::map<std::string, PieceKind> kinds{
        {"mic_start", PieceKind::talk},       {"mic", PieceKind::talk},
        {"vt", PieceKind::voicetrack},        {"vt_pre", PieceKind::voicetrack},
        {"break_start", PieceKind::adBreak},  {"eas", PieceKind::alert},
        {"silence_start", PieceKind::silence}};
    int looked = 0;
    for (const LoggedMarker& marker : plan.markers) {
        const auto kind = kinds.find(marker.type);
        if (kind == kinds.end()) continue;
        // A row's time is cut to the second.
        EXPECT_EQ(air[frameAt(outline, marker.second + 1.1)], kind->second) << marker.second;
        ++looked;
    }
    EXPECT_GT(looked, 300);
}

TEST(DayPlan, marks_every_hour_on_its_second_and_begins_it_with_a_jingle) {
    const DayOutline outline{.startSec = 6.5 * 3600};
    const DayPlan plan = planned(outline);
    const auto air = airOf(plan);
    int hour = 7;
    for (const LoggedMarker& marker : plan.markers) {
        if (marker.type != "hour") continue;
        EXPECT_EQ(marker.second, hour * 3600);
        EXPECT_EQ(air[frameAt(outline, marker.second + 0.1)], PieceKind::jingle);
        ++hour;
    }
    EXPECT_EQ(hour, 24);
}

TEST(DayPlan, is_silent_and_logs_nothing_while_nothing_ran) {
    const DayOutline outline{.outages = {{35'000, 40'000, false}}};
    const DayPlan plan = planned(outline);
    for (const LoggedMarker& marker : plan.markers)
        EXPECT_FALSE(marker.second >= 35'000 && marker.second < 40'000) << marker.type;
    EXPECT_EQ(countsOf(plan)["hour"], 22);
    EXPECT_EQ(countsOf(plan)["silence_start"], 0);
    const auto air = airOf(plan);
    for (double second = 35'000; second < 40'000; ++second)
        ASSERT_EQ(air[frameAt(outline, second + 0.04)], PieceKind::silence) << second;
    EXPECT_NE(air[frameAt(outline, 34'999.9)], PieceKind::silence);
    EXPECT_NE(air[frameAt(outline, 40'000.1)], PieceKind::silence);
}

TEST(DayPlan, tells_of_an_outage_that_the_automation_knew_of) {
    const auto markers = planned({.outages = {{35'000, 35'090}}}).markers;
    const LoggedMarker begun{35'000, "silence_start", "Cadenzo dead-air start — playlist empty", 0};
    const LoggedMarker ended{35'090, "silence_end", "Cadenzo dead-air recovered — 90.0s", 0};
    EXPECT_EQ(std::count(markers.begin(), markers.end(), begun), 1);
    EXPECT_EQ(std::count(markers.begin(), markers.end(), ended), 1);
}

TEST(DayPlan, has_more_open_microphones_by_day_than_by_night) {
    int night = 0;
    int morning = 0;
    for (const LoggedMarker& marker : planned({}).markers) {
        if (marker.type != "mic_start") continue;
        night += marker.second < 4 * 3600;
        morning += marker.second >= 6 * 3600 && marker.second < 10 * 3600;
    }
    EXPECT_GT(morning, 2 * night);
}

TEST(DayPlan, differs_from_seed_to_seed_only) {
    EXPECT_EQ(planned({.seed = 3}).markers, planned({.seed = 3}).markers);
    EXPECT_NE(planned({.seed = 3}).markers, planned({.seed = 4}).markers);
}

}  // namespace
}  // namespace sonavault::pastdays
