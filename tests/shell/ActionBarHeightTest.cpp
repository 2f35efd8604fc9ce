#include <gtest/gtest.h>

#include "shell/ShellServices.h"
#include "support/TempFolder.h"

namespace sonavault {
namespace {

class ActionBarHeight : public ::testing::Test {
  protected:
    double restoredFrom(const std::string& stored) {
        preferences_.setText(kActionBarHeightKey, stored);
        return restoredActionBarHeight(preferences_);
    }

    testing::TempFolder temp_;
    Preferences preferences_{temp_ / "standard.conf"};
};

TEST_F(ActionBarHeight, is_50_until_a_person_resized_the_bar) {
    EXPECT_EQ(restoredActionBarHeight(preferences_), 50);
    for (const auto* never : {"0", "-80", "tall", "nan"}) EXPECT_EQ(restoredFrom(never), 50);
}

TEST_F(ActionBarHeight, is_what_they_made_it_within_50_and_180) {
    EXPECT_EQ(restoredFrom("96.5"), 96.5);
    EXPECT_EQ(restoredFrom("500"), 180);
    EXPECT_EQ(restoredFrom("10"), 50);
}

}  // namespace
}  // namespace sonavault
