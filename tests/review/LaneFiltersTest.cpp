#include "review/LaneFilters.h"

#include <gtest/gtest.h>

#include <map>

namespace sonavault::testing {
namespace {

class FilterBar final : public LaneFiltersHost {
  public:
    const std::vector<Marker>& allMarkers() const override { return markers; }
    void setFilterCheckbox(Lane lane, bool on) override { checkboxes[lane] = on; }
    void showVoicetracksOnly(bool on, const std::optional<std::string>& text) override {
        buttonOn = on;
        counter = text;
    }
    void layOutLogsTab() override { ++layouts; }

    std::vector<Marker> markers;
    std::map<Lane, bool> checkboxes;
    bool buttonOn = false;
    std::optional<std::string> counter;
    int layouts = 0;
};

class LaneFiltersTest : public ::testing::Test {
  protected:
    FilterBar bar_;
    LaneFilters filters_{bar_};
};

TEST_F(LaneFiltersTest, show_all_lanes_at_first) {
    EXPECT_EQ(filters_.visibleLanes().size(), 6U);
    EXPECT_FALSE(filters_.voicetracksOnly());
}

TEST_F(LaneFiltersTest, hide_and_show_a_lane) {
    filters_.filterChanged("break", false);
    EXPECT_FALSE(filters_.visibleLanes().contains(Lane::breaks));
    filters_.filterChanged("break", true);
    EXPECT_TRUE(filters_.visibleLanes().contains(Lane::breaks));
    EXPECT_EQ(bar_.layouts, 2);
}

TEST_F(LaneFiltersTest, know_nothing_of_another_key) {
    filters_.filterChanged("", false);
    filters_.filterChanged("Hours", false);
    EXPECT_EQ(filters_.visibleLanes().size(), 6U);
    EXPECT_EQ(bar_.layouts, 0);
}

TEST_F(LaneFiltersTest, voicetracks_only_counts_starts_and_whole_voicetracks) {
    for (const auto* type : {"vt_start", "vt", "vt_end", "vt-pre", "vt-post", "mic", "vt_start"})
        bar_.markers.push_back({.type = type});
    filters_.voicetracksOnlyClicked();
    EXPECT_TRUE(filters_.voicetracksOnly());
    EXPECT_EQ(filters_.visibleLanes(), (LaneSet{Lane::hour, Lane::vt}));
    EXPECT_TRUE(bar_.buttonOn);
    EXPECT_EQ(bar_.counter, "1 of 3 voicetracks");
    EXPECT_EQ(bar_.checkboxes, (std::map<Lane, bool>{{Lane::hour, true},
                                                     {Lane::breaks, false},
                                                     {Lane::vt, true},
                                                     {Lane::mic, false},
                                                     {Lane::eas, false},
                                                     {Lane::custom, false}}));
    EXPECT_EQ(bar_.layouts, 1);
}

TEST_F(LaneFiltersTest, voicetracks_only_says_when_the_day_has_none) {
    filters_.voicetracksOnlyClicked();
    EXPECT_EQ(bar_.counter, "1 of 0 voicetracks");
}

TEST_F(LaneFiltersTest, voicetracks_only_shows_all_again_when_it_ends) {
    filters_.filterChanged("eas", false);
    filters_.voicetracksOnlyClicked();
    filters_.voicetracksOnlyClicked();
    EXPECT_EQ(filters_.visibleLanes(), allLanes());
    EXPECT_FALSE(bar_.buttonOn);
    EXPECT_EQ(bar_.counter, std::nullopt);
    for (const auto& [lane, on] : bar_.checkboxes) EXPECT_TRUE(on);
}

TEST_F(LaneFiltersTest, a_checkbox_leaves_the_mode_alone) {
    filters_.voicetracksOnlyClicked();
    filters_.filterChanged("mic", true);
    EXPECT_TRUE(filters_.voicetracksOnly());
    EXPECT_EQ(filters_.visibleLanes(), (LaneSet{Lane::hour, Lane::vt, Lane::mic}));
    EXPECT_TRUE(bar_.buttonOn);
}

TEST(Lanes, stand_in_the_order_of_their_values) {
    for (std::size_t i = 0; i < laneOrder.size(); ++i) {
        EXPECT_EQ(static_cast<std::size_t>(laneOrder.at(i).lane), i);
        EXPECT_EQ(laneWithKey(laneOrder.at(i).key), laneOrder.at(i).lane);
    }
}

TEST(Lanes, a_type_that_is_a_key_lies_in_its_lane) {
    for (const LaneDescription& each : laneOrder)
        EXPECT_EQ(laneFor(std::string(each.key)), each.lane) << each.key;
}

TEST(Lanes, have_a_hint_each_and_one_for_any_other) {
    EXPECT_EQ(laneHint("hour"), "Hours lane — vertical ticks at every hour boundary.");
    EXPECT_EQ(laneHint("custom"), "Notes lane — silence events and custom markers.");
    EXPECT_EQ(laneHint("other"), "Marker lane.");
}

}  // namespace
}  // namespace sonavault::testing
