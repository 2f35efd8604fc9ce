#include "shell/DisplayChoice.h"

#include <gtest/gtest.h>

#include <map>

namespace sonavault {
namespace {

std::optional<std::string> platformWith(const std::map<std::string, std::string>& environment) {
    return platformWithoutDisplay([&](const char* name) -> const char* {
        const auto found = environment.find(name);
        return found == environment.end() ? nullptr : found->second.c_str();
    });
}

TEST(DisplayChoice, goes_without_a_window_when_no_display_is_announced) {
    EXPECT_EQ(platformWith({}), "offscreen");
    EXPECT_EQ(platformWith({{"HOME", "/home/station"}}), "offscreen");
}

TEST(DisplayChoice, takes_an_empty_announcement_for_none) {
    EXPECT_EQ(platformWith({{"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}, {"QT_QPA_PLATFORM", ""}}),
              "offscreen");
}

TEST(DisplayChoice, leaves_the_choice_to_the_toolkit_on_any_display) {
    EXPECT_EQ(platformWith({{"DISPLAY", ":0"}}), std::nullopt);
    EXPECT_EQ(platformWith({{"WAYLAND_DISPLAY", "wayland-0"}}), std::nullopt);
}

TEST(DisplayChoice, leaves_a_platform_that_the_person_chose) {
    EXPECT_EQ(platformWith({{"QT_QPA_PLATFORM", "vnc"}}), std::nullopt);
}

}  // namespace
}  // namespace sonavault
