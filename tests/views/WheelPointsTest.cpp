#include "views/WheelPoints.h"

#include <gtest/gtest.h>

namespace sonavault::testing {
namespace {

QPointF pointsOf(QPoint pixels, QPoint angle) {
    return wheelPoints(
        QWheelEvent({}, {}, pixels, angle, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false));
}

TEST(WheelPoints, are_forty_for_each_notch_of_a_wheel) {
    EXPECT_EQ(pointsOf({}, {0, 120}), QPointF(0, 40));
    EXPECT_EQ(pointsOf({}, {-240, 0}), QPointF(-80, 0));
    EXPECT_EQ(pointsOf({}, {0, 15}), QPointF(0, 5));
}

TEST(WheelPoints, are_a_touch_pads_own_measure) {
    EXPECT_EQ(pointsOf({3, -7}, {0, 120}), QPointF(3, -7));
}

TEST(WholePoints, lose_no_part_of_a_point) {
    WholePoints points;
    EXPECT_EQ(points.take(0.75), 0);
    EXPECT_EQ(points.take(0.75), 1);
    EXPECT_EQ(points.take(0.5), 1);
    EXPECT_EQ(points.take(-2.5), -2);
    EXPECT_EQ(points.take(-0.5), -1);
}

}  // namespace
}  // namespace sonavault::testing
