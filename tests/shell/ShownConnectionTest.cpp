#include "shell/ShownConnection.h"

#include <gtest/gtest.h>

namespace sonavault {
namespace {

constexpr auto kLine = SVRecorderSourceMode::lineInput;
constexpr auto kLink = SVRecorderSourceMode::cadenzoTCP;

TEST(ShownConnection, is_not_in_use_while_there_is_no_recorder) {
    EXPECT_EQ(shownConnection(std::nullopt, false), LinkState::notInUse);
}

TEST(ShownConnection, is_not_in_use_on_the_line_input_whatever_the_link_says) {
    EXPECT_EQ(shownConnection(kLine, false), LinkState::notInUse);
    EXPECT_EQ(shownConnection(kLine, true), LinkState::notInUse);
}

TEST(ShownConnection, is_that_of_the_link_when_the_link_is_the_source) {
    EXPECT_EQ(shownConnection(kLink, true), LinkState::connected);
    EXPECT_EQ(shownConnection(kLink, false), LinkState::notConnected);
}

}  // namespace
}  // namespace sonavault
