#include "review/ScrollThumb.h"

#include <gtest/gtest.h>

namespace sonavault::testing {
namespace {

TEST(ScrollThumb, is_as_long_as_the_part_that_is_seen) {
    EXPECT_EQ(scrollThumb({.visible = 100, .hidden = 300, .value = 0}, 200), (ScrollThumb{0, 50}));
}

TEST(ScrollThumb, ends_where_the_content_ends) {
    EXPECT_EQ(scrollThumb({.visible = 100, .hidden = 300, .value = 150}, 200),
              (ScrollThumb{75, 50}));
    EXPECT_EQ(scrollThumb({.visible = 100, .hidden = 300, .value = 300}, 200),
              (ScrollThumb{150, 50}));
}

TEST(ScrollThumb, can_be_caught_however_long_the_content) {
    EXPECT_EQ(scrollThumb({.visible = 100, .hidden = 1e6, .value = 1e6}, 100),
              (ScrollThumb{64, 36}));
}

TEST(ScrollThumb, is_never_longer_than_its_track) {
    EXPECT_EQ(scrollThumb({.visible = 10, .hidden = 90, .value = 45}, 20), (ScrollThumb{0, 20}));
}

TEST(ScrollThumb, is_absent_when_all_is_seen) {
    EXPECT_FALSE(scrollThumb({.visible = 100, .hidden = 0}, 100));
    EXPECT_FALSE(scrollThumb({.visible = 0, .hidden = 10}, 100));
    EXPECT_FALSE(scrollThumb({.visible = 100, .hidden = 10}, 0));
}

TEST(ScrollValue, is_the_one_that_puts_the_thumb_there) {
    const ScrollRange range{.visible = 100, .hidden = 300, .value = 0};
    EXPECT_EQ(scrollValueAt(75, range, 200), 150);
    EXPECT_EQ(scrollValueAt(-10, range, 200), 0);
    EXPECT_EQ(scrollValueAt(1000, range, 200), 300);
}

TEST(ScrollValue, stays_when_the_thumb_has_no_room) {
    EXPECT_EQ(scrollValueAt(5, {.visible = 10, .hidden = 90, .value = 45}, 20), 45);
    EXPECT_EQ(scrollValueAt(5, {.visible = 10, .hidden = 0, .value = 0}, 20), 0);
}

}  // namespace
}  // namespace sonavault::testing
