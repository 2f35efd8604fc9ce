#include "shell/ConnectionDot.h"

#include <gtest/gtest.h>

namespace sonavault {
namespace {

constexpr auto kLine = SVRecorderSourceMode::lineInput;
constexpr auto kLink = SVRecorderSourceMode::cadenzoTCP;
const QColor kGrey(89, 89, 89);

TEST(ConnectionDot, is_grey_while_there_is_no_recorder) {
    EXPECT_EQ(connectionDotColour(std::nullopt, false), kGrey);
}

TEST(ConnectionDot, is_grey_on_the_line_input_whatever_the_link_says) {
    EXPECT_EQ(connectionDotColour(kLine, false), kGrey);
    EXPECT_EQ(connectionDotColour(kLine, true), kGrey);
}

TEST(ConnectionDot, is_green_on_a_connected_link_and_red_on_any_other) {
    EXPECT_EQ(connectionDotColour(kLink, true), QColor(40, 205, 65));
    EXPECT_EQ(connectionDotColour(kLink, false), QColor(255, 59, 48));
}

}  // namespace
}  // namespace sonavault
