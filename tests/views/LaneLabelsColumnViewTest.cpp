#include "views/LaneLabelsColumnView.h"

#include <gtest/gtest.h>

#include <QImage>

#include "views/Painting.h"
#include "views/Theme.h"
#include "views/TimelineWindow.h"

namespace sonavault::testing {
namespace {

class LaneLabelsColumnViewTest : public ::testing::Test {
  protected:
    LaneLabelsColumnViewTest() {
        column_.resize(76, 682);
        column_.show();
        column_.relayout(682, 50);
    }

    QList<TextView*> shown() {
        QList<TextView*> labels;
        for (QObject* each : column_.children())
            if (auto* label = dynamic_cast<TextView*>(each); label && label->isVisible())
                labels.append(label);
        return labels;
    }

    TimelineWindow window_{QSize(1000, 682)};
    LaneLabelsColumnView column_{window_, nullptr};
};

TEST_F(LaneLabelsColumnViewTest, names_each_lane_at_its_height) {
    const auto labels = shown();
    ASSERT_EQ(labels.size(), 6);
    for (qsizetype i = 0; i < 6; ++i) {
        const auto& lane = laneOrder.at(static_cast<std::size_t>(i));
        EXPECT_EQ(labels[i]->text(), toQString(lane.displayName));
        EXPECT_EQ(labels[i]->geometry(), QRect(8, static_cast<int>(i) * 100 + 35, 60, 30));
        EXPECT_EQ(svHint(*labels[i]), toQString(lane.hint));
        EXPECT_EQ(labels[i]->font(), interfaceFont(11, QFont::DemiBold));
        EXPECT_EQ(labels[i]->palette().color(QPalette::WindowText), whiteLevel(0.4));
    }
    EXPECT_EQ(labels[2]->accessibleName(), QStringLiteral("VOICE TRACKS"));
}

TEST_F(LaneLabelsColumnViewTest, two_lines_fit_into_the_lowest_lane) {
    column_.relayout(0, 50);
    for (const TextView* each : shown()) {
        EXPECT_EQ(each->height(), 30);
        EXPECT_LE(each->sizeHint().height(), 30);
        EXPECT_LE(each->sizeHint().width(), each->width());
    }
}

TEST_F(LaneLabelsColumnViewTest, has_the_lanes_grounds_and_white_below) {
    const QImage seen = column_.grab().toImage();
    for (const LaneDescription& each : laneOrder) {
        const int top = static_cast<int>(each.lane) * 100;
        EXPECT_EQ(seen.pixelColor(70, top), toQColor(each.tint));
        EXPECT_EQ(seen.pixelColor(2, top + 99), toQColor(each.tint));
    }
    EXPECT_EQ(seen.pixelColor(2, 600), QColor(Qt::white));
}

TEST_F(LaneLabelsColumnViewTest, hides_the_names_of_hidden_lanes) {
    window_.lanes = {Lane::hour, Lane::eas};
    column_.relayout(682, 50);
    const auto labels = shown();
    ASSERT_EQ(labels.size(), 2);
    EXPECT_EQ(labels[0]->geometry(), QRect(8, 135, 60, 30));
    EXPECT_EQ(labels[1]->text(), QStringLiteral("EAS"));
    EXPECT_EQ(labels[1]->geometry(), QRect(8, 435, 60, 30));
}

TEST_F(LaneLabelsColumnViewTest, tells_of_a_lane_beside_its_name_too) {
    EXPECT_EQ(column_.hintAt({2, 399}), toQString(descriptionOf(Lane::mic).hint));
    EXPECT_EQ(column_.hintAt({2, 601}), QString());
}

TEST_F(LaneLabelsColumnViewTest, goes_along_when_the_lanes_are_scrolled) {
    column_.scrollToY(40);
    EXPECT_EQ(shown()[1]->y(), 95);
    EXPECT_EQ(column_.hintAt({2, 61}), toQString(descriptionOf(Lane::breaks).hint));
    EXPECT_EQ(column_.grab().toImage().pixelColor(70, 60), toQColor(kColorLaneTintBreak));
}

}  // namespace
}  // namespace sonavault::testing
