#include "automation/MarkerOrder.h"

#include <gtest/gtest.h>

namespace sonavault::automation {
namespace {

TEST(MarkerOrder, needs_no_more_than_a_type) {
    EXPECT_EQ(parseMarkerOrder("marker hour"), MarkerOrder(StationMarker{"hour"}));
    EXPECT_EQ(parseMarkerOrder("  marker\teas \r"), MarkerOrder(StationMarker{"eas"}));
}

TEST(MarkerOrder, takes_its_settings_and_then_its_label) {
    EXPECT_EQ(
        parseMarkerOrder(
            "marker mic_start duration=12.5 clock=10:00:00 file=a.wav test Nora, at  the desk"),
        MarkerOrder(
            StationMarker{"mic_start", "Nora, at  the desk", 12.5, "10:00:00", "a.wav", true}));
}

TEST(MarkerOrder, has_a_label_from_the_first_word_that_is_no_setting) {
    EXPECT_EQ(parseMarkerOrder("marker note the duration=5 test"),
              MarkerOrder(StationMarker{"note", "the duration=5 test"}));
    EXPECT_EQ(parseMarkerOrder("marker note duration=long"),
              MarkerOrder(StationMarker{"note", "duration=long"}));
    EXPECT_EQ(parseMarkerOrder("marker note duration=nan"),
              MarkerOrder(StationMarker{"note", "duration=nan"}));
}

TEST(MarkerOrder, may_be_any_text_or_any_bytes) {
    EXPECT_EQ(parseMarkerOrder("marker-text {\"type\": 5}"),
              MarkerOrder(MarkerText{"{\"type\": 5}"}));
    EXPECT_EQ(parseMarkerOrder("marker-text"), MarkerOrder(MarkerText{}));
    EXPECT_EQ(parseMarkerOrder("marker-raw 00fF 10"), MarkerOrder(MarkerBytes{{0, 255, 16}}));
    EXPECT_EQ(parseMarkerOrder("marker-drop"), MarkerOrder(MarkerLinkDrop{}));
}

TEST(MarkerOrder, is_nothing_for_another_line) {
    for (const char* wrong : {"", "marker", "marker ", "markers hour", "Marker hour", "marker-raw",
                              "marker-raw 0", "marker-raw 0g", "marker-drop now", "drop"})
        EXPECT_FALSE(parseMarkerOrder(wrong)) << wrong;
}

TEST(MarkerScript, is_read_into_order_of_time) {
    const auto script =
        parseMarkerScript("# a test\n\n 3 marker eas\n0.5 marker hour Ten\n3 marker-drop\n");
    ASSERT_TRUE(script) << script.error();
    ASSERT_EQ(script.value().size(), 3U);
    EXPECT_EQ(script.value()[0].second, 0.5);
    EXPECT_EQ(script.value()[0].order, MarkerOrder(StationMarker{"hour", "Ten"}));
    EXPECT_EQ(script.value()[1].order, MarkerOrder(StationMarker{"eas"}));
    EXPECT_EQ(script.value()[2].order, MarkerOrder(MarkerLinkDrop{}));
}

TEST(MarkerScript, names_the_line_that_does_not_read) {
    for (const char* wrong : {"marker hour", "-1 marker hour", "1 drop", "x marker hour", "1"}) {
        const auto script = parseMarkerScript("0 marker hour\n" + std::string(wrong) + "\n");
        ASSERT_FALSE(script) << wrong;
        EXPECT_EQ(script.error(), "\"" + std::string(wrong) + "\" is no planned marker");
    }
}

}  // namespace
}  // namespace sonavault::automation
