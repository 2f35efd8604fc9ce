// The summary bar's height, from one launch to the next.

#include "shell/ShellFixture.h"

namespace sonavault::testing {
namespace {

class StoredHeightTest : public ShellFixture {
  protected:
    double barHeight() {
        return controller()
            .timeline()
            .view()
            .lanesScroll()
            .lanesInnerView()
            .summaryBarFrame()
            .height;
    }
};

TEST_F(StoredHeightTest, is_limited_when_the_window_opens) {
    const std::pair<double, double> kLimited[] = {{500, 180}, {10, 50}, {96.5, 96.5}};
    for (const auto& [stored, shown] : kLimited) {
        preferences_.setReal(kActionBarHeightKey, stored);
        launch();
        EXPECT_EQ(barHeight(), shown) << stored;
        quit();
    }
}

}  // namespace
}  // namespace sonavault::testing
