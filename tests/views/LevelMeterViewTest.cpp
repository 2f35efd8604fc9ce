#include "views/LevelMeterView.h"

#include <gtest/gtest.h>

#include <QImage>

#include "views/PaintCounter.h"

namespace sonavault::testing {
namespace {

constexpr QColor kIdleMain{76, 92, 107};
constexpr QColor kIdleWarn{110, 99, 89};
constexpr QColor kIdleHot{107, 99, 128};
constexpr QColor kLitMain{96, 137, 171};
constexpr QColor kLitWarn{168, 144, 120};
constexpr QColor kLitHot{152, 134, 197};

/// A meter 12 wide and 101 high, whose inner part is 100 high and ends at 100.5.
class LevelMeterTest : public ::testing::Test {
  protected:
    LevelMeterTest() { meter_.resize(12, 101); }

    /// The colour in the middle of the bar, that share of its height above the foot.
    QColor at(double fraction) {
        const QImage image = meter_.grab().toImage();
        return image.pixelColor(6, qRound(100.5 - 100 * fraction - 0.5));
    }

    LevelMeterView meter_{QStringLiteral("left channel"), nullptr};
};

TEST_F(LevelMeterTest, begins_silent) {
    EXPECT_EQ(meter_.level(), -160);
    EXPECT_EQ(meter_.accessibleName(), QStringLiteral("left channel"));
    EXPECT_EQ(at(0.1), kIdleMain);
    EXPECT_EQ(at(0.65), kIdleWarn);
    EXPECT_EQ(at(0.9), kIdleHot);
}

TEST_F(LevelMeterTest, lights_up_to_the_level) {
    meter_.setLevel(-30);
    EXPECT_EQ(at(0.47), kLitMain);
    EXPECT_EQ(at(0.53), kIdleMain);
}

TEST_F(LevelMeterTest, lights_the_lowest_zone_fully_at_minus_24) {
    meter_.setLevel(-24);
    EXPECT_EQ(at(0.58), kLitMain);
    EXPECT_EQ(at(0.62), kIdleWarn);
    EXPECT_EQ(at(0.72), kIdleHot);
}

TEST_F(LevelMeterTest, lights_the_middle_zone_fully_at_minus_18) {
    meter_.setLevel(-18);
    EXPECT_EQ(at(0.58), kLitMain);
    EXPECT_EQ(at(0.68), kLitWarn);
    EXPECT_EQ(at(0.72), kIdleHot);
}

TEST_F(LevelMeterTest, is_all_lit_at_full_scale_and_above) {
    for (const float level : {0.0F, 3.0F}) {
        meter_.setLevel(level);
        EXPECT_EQ(at(0.3), kLitMain);
        EXPECT_EQ(at(0.65), kLitWarn);
        EXPECT_EQ(at(0.97), kLitHot);
    }
}

TEST_F(LevelMeterTest, is_unlit_at_the_foot_of_the_scale_and_below) {
    meter_.setLevel(0);
    for (const float level : {-60.0F, -120.0F}) {
        meter_.setLevel(level);
        EXPECT_EQ(at(0.03), kIdleMain);
    }
}

TEST_F(LevelMeterTest, has_no_gap_between_its_zones) {
    meter_.setLevel(0);
    const QImage image = meter_.grab().toImage();
    for (int y = 4; y < 97; ++y) {
        const QColor colour = image.pixelColor(6, y);
        EXPECT_TRUE(colour == kLitMain || colour == kLitWarn || colour == kLitHot) << y;
    }
}

TEST_F(LevelMeterTest, is_round_at_both_ends) {
    QImage image(12, 101, QImage::Format_ARGB32);
    image.fill(Qt::white);
    meter_.render(&image, {}, {}, QWidget::DrawChildren);
    for (const QPoint corner : {QPoint(0, 0), QPoint(11, 0), QPoint(0, 100), QPoint(11, 100)})
        EXPECT_EQ(image.pixelColor(corner), QColor(Qt::white)) << corner.x() << "," << corner.y();
    EXPECT_EQ(image.pixelColor(6, 50), kIdleMain);
}

TEST_F(LevelMeterTest, has_a_dark_outline_over_its_edge) {
    QImage image(12, 101, QImage::Format_ARGB32);
    image.fill(Qt::white);
    meter_.render(&image, {}, {}, QWidget::DrawChildren);
    EXPECT_LT(image.pixelColor(0, 50).lightness(), 90);
    EXPECT_EQ(image.pixelColor(0, 50), image.pixelColor(11, 50));
}

TEST_F(LevelMeterTest, draws_anew_only_for_what_can_be_seen) {
    meter_.setLevel(-20.00F);
    meter_.show();
    PaintCounter paints(meter_);
    meter_.setLevel(-20.04F);
    EXPECT_EQ(paints.take(), 0);
    EXPECT_EQ(meter_.level(), -20.04F);
    meter_.setLevel(-20.06F);
    EXPECT_EQ(paints.take(), 1);
}

TEST_F(LevelMeterTest, shows_the_level_of_the_moment_at_which_it_is_drawn) {
    // So high that a change too small for any real meter is several points of it.
    meter_.resize(12, 6001);
    meter_.setLevel(-30);
    const auto highestLit = [this] {
        const QImage image = meter_.grab().toImage();
        int y = 0;
        while (y < image.height() && image.pixelColor(6, y) != kLitMain) ++y;
        return y;
    };
    const int before = highestLit();
    meter_.setLevel(-30.04F);
    EXPECT_EQ(highestLit(), before + 4);
}

TEST_F(LevelMeterTest, does_not_miss_a_slow_fade) {
    meter_.setLevel(-20);
    meter_.show();
    PaintCounter paints(meter_);
    for (int step = 1; step <= 10; ++step) meter_.setLevel(-20 - 0.04F * static_cast<float>(step));
    EXPECT_EQ(paints.take(), 1);
}

}  // namespace
}  // namespace sonavault::testing
