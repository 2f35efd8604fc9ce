#include "views/Hints.h"

#include <gtest/gtest.h>

namespace sonavault {
namespace {

TEST(Hints, any_view_may_bear_one_and_a_screen_reader_tells_it) {
    QWidget view;
    EXPECT_TRUE(svHint(view).isEmpty());

    setSvHint(view, QStringLiteral("Click to seek."));

    EXPECT_EQ(svHint(view), QStringLiteral("Click to seek."));
    EXPECT_EQ(view.accessibleDescription(), QStringLiteral("Click to seek."));
}

}  // namespace
}  // namespace sonavault
