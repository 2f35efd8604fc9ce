#include "views/OverlayScrollBar.h"

#include <gtest/gtest.h>

#include <QtTest/qtestspontaneevent.h>
#include <QApplication>
#include <QHoverEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

#include "support/ManualTimers.h"
#include "views/Pointer.h"

namespace sonavault::testing {
namespace {

/// 200 points of 800 are seen, so the thumb is a quarter of the area.
class OverlayScrollBarTest : public ::testing::TestWithParam<Qt::Orientation> {
  protected:
    OverlayScrollBarTest() {
        area_.setFrameShape(QFrame::NoFrame);
        area_.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        area_.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        area_.setWidget(content_);
        content_->resize(isVertical() ? QSize(200, 800) : QSize(800, 200));
        area_.resize(200, 200);
        area_.show();
        QCoreApplication::processEvents();
        takePointerAway();  // it may lie where the window has appeared
        timers_.pass(1);
    }

    /// To a place over the content, whose view is told of it.
    void movePointer(QPoint to) { Pointer(*content_).move(content_->mapFromParent(to)); }
    void takePointerAway() {
        QHoverEvent leave(QEvent::HoverLeave, {-1, -1}, {-1, -1}, {5, 5});
        QCoreApplication::sendEvent(area_.viewport(), &leave);
    }

    bool isVertical() const { return GetParam() == Qt::Vertical; }
    QScrollBar& bar() {
        return isVertical() ? *area_.verticalScrollBar() : *area_.horizontalScrollBar();
    }

    /// The point that far along the scroll bar and that far from its edge.
    QPoint point(int along, int across) const {
        return isVertical() ? QPoint(200 - across, along) : QPoint(along, 200 - across);
    }

    ManualClock clock_{WallTime{}};
    ManualTimers timers_{clock_};
    QScrollArea area_;
    QWidget* content_ = new QWidget;
    OverlayScrollBar& thumb_ = *new OverlayScrollBar(area_, GetParam(), timers_.make());
};

INSTANTIATE_TEST_SUITE_P(Both, OverlayScrollBarTest,
                         ::testing::Values(Qt::Vertical, Qt::Horizontal));

TEST_P(OverlayScrollBarTest, takes_no_room) {
    EXPECT_EQ(area_.viewport()->size(), QSize(200, 200));
}

TEST_P(OverlayScrollBarTest, shows_while_the_content_scrolls_and_then_goes) {
    EXPECT_FALSE(thumb_.isVisible());
    bar().setValue(300);
    EXPECT_TRUE(thumb_.isVisible());
    EXPECT_EQ(thumb_.geometry(), isVertical() ? QRect(188, 75, 12, 50) : QRect(75, 188, 50, 12));
    timers_.pass(0.8);
    EXPECT_TRUE(thumb_.isVisible());
    timers_.pass(0.1);
    EXPECT_FALSE(thumb_.isVisible());
}

TEST_P(OverlayScrollBarTest, stays_while_the_pointer_is_near_its_edge) {
    movePointer(point(100, 30));
    EXPECT_FALSE(thumb_.isVisible());
    movePointer(point(100, 20));
    EXPECT_TRUE(thumb_.isVisible());
    timers_.pass(5);
    EXPECT_TRUE(thumb_.isVisible());

    movePointer(point(100, 30));
    EXPECT_TRUE(thumb_.isVisible());
    timers_.pass(1);
    EXPECT_FALSE(thumb_.isVisible());
}

TEST_P(OverlayScrollBarTest, goes_when_the_pointer_leaves_the_view_from_its_edge) {
    movePointer(point(100, 5));
    ASSERT_TRUE(thumb_.isVisible());
    takePointerAway();
    timers_.pass(1);
    EXPECT_FALSE(thumb_.isVisible());
}

TEST_P(OverlayScrollBarTest, stays_while_the_pointer_is_on_it) {
    bar().setValue(300);
    Pointer(thumb_).move({6, 6});
    timers_.pass(5);
    EXPECT_TRUE(thumb_.isVisible());
}

TEST_P(OverlayScrollBarTest, shows_that_there_is_more_than_is_seen) {
    content_->resize(200, 200);
    ASSERT_FALSE(thumb_.isVisible());
    content_->resize(isVertical() ? QSize(200, 300) : QSize(300, 200));
    EXPECT_TRUE(thumb_.isVisible());
}

TEST_P(OverlayScrollBarTest, leaves_the_corner_free_when_the_other_one_has_something_to_scroll) {
    bar().setValue(600);
    content_->resize(800, 800);
    const QRect place = thumb_.geometry();
    EXPECT_EQ(isVertical() ? place.bottom() : place.right(), 187);
}

TEST_P(OverlayScrollBarTest, lets_go_when_the_release_went_elsewhere) {
    bar().setValue(1);
    Pointer pointer(thumb_);
    pointer.press({6, 6});
    pointer.loseRelease();
    QEnterEvent enter({6, 6}, {6, 6}, {6, 6});
    QCoreApplication::sendEvent(&thumb_, &enter);
    pointer.move(isVertical() ? QPointF(6, 100) : QPointF(100, 6));
    EXPECT_EQ(bar().value(), 1);
}

TEST_P(OverlayScrollBarTest, lets_the_wheel_through) {
    bar().setValue(300);
    const QPoint angle = isVertical() ? QPoint(0, -120) : QPoint(-120, 0);
    QWheelEvent event({6, 6}, thumb_.mapToGlobal(QPointF(6, 6)), {}, angle, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(&thumb_, &event);
    EXPECT_GT(bar().value(), 300);
}

TEST_P(OverlayScrollBarTest, is_absent_when_all_is_seen) {
    content_->resize(100, 100);
    movePointer(point(100, 5));
    bar().setValue(0);
    EXPECT_FALSE(thumb_.isVisible());
}

TEST_P(OverlayScrollBarTest, goes_when_the_content_becomes_short) {
    bar().setValue(300);
    ASSERT_TRUE(thumb_.isVisible());
    content_->resize(100, 100);
    EXPECT_FALSE(thumb_.isVisible());
}

TEST_P(OverlayScrollBarTest, keeps_to_the_edge_when_the_area_changes) {
    bar().setValue(600);
    area_.resize(400, 400);
    QCoreApplication::processEvents();
    const QRect place = thumb_.geometry();
    EXPECT_EQ(isVertical() ? place.right() : place.bottom(), 399);
    EXPECT_EQ(isVertical() ? place.bottom() : place.right(), 399);
}

TEST_P(OverlayScrollBarTest, drags_the_content_along) {
    bar().setValue(1);
    bar().setValue(0);
    const QPoint inThumb = isVertical() ? QPoint(6, 10) : QPoint(10, 6);
    QTest::mousePress(&thumb_, Qt::LeftButton, {}, inThumb);
    QTest::mouseMove(&thumb_, thumb_.mapFrom(&area_, point(85, 6)));
    EXPECT_EQ(bar().value(), 300);
    QTest::mouseMove(&thumb_, thumb_.mapFrom(&area_, point(1000, 6)));
    EXPECT_EQ(bar().value(), 600);
    timers_.pass(5);
    EXPECT_TRUE(thumb_.isVisible());
    QTest::mouseRelease(&thumb_, Qt::LeftButton, {}, inThumb);
    QTest::mouseMove(&thumb_, thumb_.mapFrom(&area_, point(10, 6)));
    EXPECT_EQ(bar().value(), 600);
    takePointerAway();
    timers_.pass(1);
    EXPECT_FALSE(thumb_.isVisible());
}

TEST_P(OverlayScrollBarTest, leaves_what_is_beside_its_thumb_to_the_content) {
    bar().setValue(300);
    ASSERT_TRUE(thumb_.isVisible());
    EXPECT_EQ(area_.childAt(point(100, 6)), &thumb_);
    EXPECT_EQ(area_.childAt(point(30, 6)), content_);
    EXPECT_EQ(area_.childAt(point(100, 20)), content_);
}

TEST_P(OverlayScrollBarTest, is_seen_on_light_and_on_dark_content) {
    for (const auto& ground : {QColor(248, 248, 247), QColor(60, 60, 60)}) {
        QPalette palette;
        palette.setColor(QPalette::Window, ground);
        content_->setPalette(palette);
        bar().setValue(0);
        bar().setValue(300);
        const QImage image = area_.grab().toImage();
        const auto difference =
            std::abs(image.pixelColor(point(100, 3)).lightness() - ground.lightness());
        EXPECT_GT(difference, 15) << ground.lightness();
        EXPECT_EQ(image.pixelColor(point(30, 6)), ground);
    }
}

}  // namespace
}  // namespace sonavault::testing
