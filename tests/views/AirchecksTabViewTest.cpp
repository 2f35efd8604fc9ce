#include "views/AirchecksTabView.h"

#include <gmock/gmock.h>

#include <QtTest/qtestspontaneevent.h>
#include <QApplication>
#include <QPointer>
#include <QScrollBar>
#include <QWheelEvent>

#include "views/AirchecksFixture.h"
#include "views/ViewProbe.h"

namespace sonavault::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using AirchecksTabViewTest = AirchecksFixture;

TEST_F(AirchecksTabViewTest, has_one_blank_card_when_none_is_stored) {
    auto& tab = open();
    ASSERT_EQ(tab.cardViews().size(), 1u);
    ASSERT_EQ(cards_.size(), 1u);
    EXPECT_EQ(cards_[0].label, "New aircheck");
    EXPECT_EQ(card(0).titleField->text(), "New aircheck");
    EXPECT_THAT(storedLabels(), IsEmpty());
}

TEST_F(AirchecksTabViewTest, stacks_the_stored_cards_from_the_top) {
    store({namedCard("One"), namedCard("Two"), namedCard("Three")});
    auto& tab = open();
    ASSERT_EQ(tab.cardViews().size(), 3u);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(card(static_cast<std::size_t>(i)).geometry(), QRect(18, 18 + 318 * i, 570, 300));
    EXPECT_EQ(card(2).titleField->text(), "Three");
}

TEST_F(AirchecksTabViewTest, lays_out_its_head_and_gives_the_rest_to_the_cards) {
    auto& tab = open({1100, 428});
    EXPECT_EQ(tab.airchecksScrollView().geometry(), QRect(12, 80, 1076, 348));
    const auto labels = allOf<TextView>(tab, Qt::FindDirectChildrenOnly);
    ASSERT_EQ(labels.size(), 2u);
    EXPECT_EQ(labels[0]->text(), "Scheduled Airchecks");
    EXPECT_EQ(labels[0]->geometry(), QRect(16, 12, 400, 32));
    EXPECT_EQ(labels[1]->text(),
              "Cards run automatically at the end of each scheduled window. "
              "Output: ~/Logs/Airchecks/");
    EXPECT_EQ(labels[1]->geometry(), QRect(16, 46, 700, 22));
    for (const auto* each : labels) EXPECT_LE(each->sizeHint().width(), each->width());
}

TEST_F(AirchecksTabViewTest, makes_the_document_as_high_as_the_cards_or_the_view) {
    store({namedCard("One")});
    auto& tab = open({1480, 748});
    EXPECT_EQ(tab.airchecksScrollView().widget()->height(), 668);
    EXPECT_EQ(tab.airchecksScrollView().verticalScrollBar()->maximum(), 0);
    click(card(0).addBtn);
    click(card(0).addBtn);
    EXPECT_EQ(tab.airchecksScrollView().widget()->height(), 18 + 3 * 318);
    EXPECT_EQ(tab.airchecksScrollView().verticalScrollBar()->maximum(), 18 + 3 * 318 - 668);
}

TEST_F(AirchecksTabViewTest, stores_every_change_at_once) {
    store({namedCard("One"), namedCard("Two")});
    open();
    click(card(1).activeCheck);
    EXPECT_TRUE(schedule_.loadScheduledAirchecks().at(1).active);
    EXPECT_FALSE(schedule_.loadScheduledAirchecks().at(0).active);
}

TEST_F(AirchecksTabViewTest, keeps_the_keyboard_in_a_text_field_while_its_text_is_taken) {
    open();
    auto* field = card(0).titleField;
    click(field);
    field->selectAll();
    QTest::keyClicks(field, "Drive");
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_THAT(storedLabels(), ElementsAre("Drive"));
    EXPECT_EQ(QApplication::focusWidget(), field);
    EXPECT_EQ(card(0).titleField, field) << "the views were made anew";
}

TEST_F(AirchecksTabViewTest, adds_a_draft_below_a_card) {
    store({namedCard("One"), namedCard("Two")});
    open();
    click(card(0).addBtn);
    EXPECT_THAT(storedLabels(), ElementsAre("One", "New aircheck", "Two"));
    ASSERT_EQ(tab_->cardViews().size(), 3u);
    EXPECT_EQ(card(2).titleField->text(), "Two");
}

TEST_F(AirchecksTabViewTest, adding_below_the_last_card_appends_at_the_end_and_brings_it_in_sight) {
    store({namedCard("One"), namedCard("Two"), namedCard("Three")});
    auto& tab = open({1100, 428});
    click(card(2).addBtn);
    EXPECT_THAT(storedLabels(), ElementsAre("One", "Two", "Three", "New aircheck"));
    EXPECT_EQ(card(3).visibleRegion().boundingRect().size(), QSize(570, 300));
    EXPECT_TRUE(tab.rect().contains(QRect(card(3).mapTo(&tab, QPoint()), card(3).size())));
}

TEST_F(AirchecksTabViewTest, removes_a_card) {
    store({namedCard("One"), namedCard("Two"), namedCard("Three")});
    open();
    click(card(1).removeBtn);
    EXPECT_THAT(storedLabels(), ElementsAre("One", "Three"));
    ASSERT_EQ(tab_->cardViews().size(), 2u);
    EXPECT_EQ(card(1).titleField->text(), "Three");
    EXPECT_EQ(card(1).geometry().top(), 18 + 318);
}

TEST_F(AirchecksTabViewTest, removing_the_only_card_leaves_a_blank_one) {
    auto rich = namedCard("One");
    rich.active = true;
    rich.daysOfWeek = {1, 2};
    store({rich});
    open();
    click(card(0).removeBtn);
    ASSERT_EQ(tab_->cardViews().size(), 1u);
    const auto stored = schedule_.loadScheduledAirchecks();
    ASSERT_EQ(stored.size(), 1u);
    EXPECT_EQ(stored[0].label, "New aircheck");
    EXPECT_FALSE(stored[0].active);
    EXPECT_THAT(stored[0].daysOfWeek, IsEmpty());
    EXPECT_NE(stored[0].id, rich.id);
    EXPECT_EQ(card(0).titleField->text(), "New aircheck");
}

TEST_F(AirchecksTabViewTest, lets_the_card_live_whose_button_is_being_clicked) {
    store({namedCard("One"), namedCard("Two")});
    open();
    const QPointer<QWidget> clicked = &card(0);
    bool aliveAfterwards = false;
    QObject::connect(card(0).removeBtn, &QAbstractButton::clicked, tab_.get(),
                     [&] { aliveAfterwards = !clicked.isNull() && clicked->isHidden(); });
    click(card(0).removeBtn);
    EXPECT_TRUE(aliveAfterwards);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(clicked.isNull());
}

TEST_F(AirchecksTabViewTest, takes_a_typed_name_before_the_cards_are_made_anew) {
    store({namedCard("One"), namedCard("Two")});
    open();
    click(card(0).titleField);
    card(0).titleField->selectAll();
    QTest::keyClicks(card(0).titleField, "Breakfast");
    click(card(1).addBtn);
    EXPECT_THAT(storedLabels(), ElementsAre("Breakfast", "Two", "New aircheck"));
    EXPECT_EQ(card(0).titleField->text(), "Breakfast");
}

TEST_F(AirchecksTabViewTest, takes_a_typed_name_when_the_tab_is_hidden) {
    store({namedCard("One")});
    open();
    click(card(0).titleField);
    QTest::keyClicks(card(0).titleField, "!");
    tab_->hide();
    EXPECT_THAT(storedLabels(), ElementsAre("One!"));
}

TEST_F(AirchecksTabViewTest, a_click_beside_the_controls_leaves_the_text_field) {
    store({namedCard("One")});
    open();
    click(card(0).titleField);
    QTest::keyClicks(card(0).titleField, "!");
    EXPECT_THAT(storedLabels(), ElementsAre("One"));
    QTest::mouseClick(&card(0), Qt::LeftButton, {}, QPoint(400, 60));
    EXPECT_THAT(storedLabels(), ElementsAre("One!"));
    EXPECT_FALSE(card(0).titleField->hasFocus());
}

TEST_F(AirchecksTabViewTest, keeps_whoever_works_with_the_keyboard_at_the_new_card) {
    store({namedCard("One"), namedCard("Two")});
    open();
    card(0).addBtn->setFocus(Qt::TabFocusReason);
    QTest::keyClick(card(0).addBtn, Qt::Key_Space);
    EXPECT_EQ(QApplication::focusWidget(), card(1).titleField);
    card(2).removeBtn->setFocus(Qt::TabFocusReason);
    QTest::keyClick(card(2).removeBtn, Qt::Key_Space);
    EXPECT_EQ(QApplication::focusWidget(), card(1).removeBtn);
}

TEST_F(AirchecksTabViewTest, clicks_do_not_take_the_keyboard) {
    open();
    QWidget::setTabOrder(tab_.get(), card(0).titleField);
    if (QWidget* before = QApplication::focusWidget()) before->clearFocus();
    for (QWidget* each : std::initializer_list<QWidget*>{card(0).activeCheck, card(0).dayChecks[3],
                                                         card(0).vtRadio, card(0).addBtn}) {
        click(each);
        EXPECT_EQ(QApplication::focusWidget(), nullptr);
    }
}

TEST_F(AirchecksTabViewTest, shows_runs_since_the_tab_was_last_in_sight) {
    store({namedCard("One")});
    auto& tab = open();
    cards_[0].lastRunDate = "2026-05-08";
    EXPECT_EQ(card(0).lastRunLabel->text(), "Has not run yet.");
    tab.refresh();
    EXPECT_EQ(card(0).lastRunLabel->text(), "Last exported: 2026-05-08");
    tab.hide();
    cards_[0].lastRunDate = "2026-05-09";
    tab.show();
    EXPECT_EQ(card(0).lastRunLabel->text(), "Last exported: 2026-05-09");
}

TEST_F(AirchecksTabViewTest, a_change_does_not_forget_that_the_card_has_run_since) {
    store({namedCard("One")});
    open();
    cards_[0].lastRunDate = "2026-05-08";
    click(card(0).activeCheck);
    EXPECT_EQ(schedule_.loadScheduledAirchecks().at(0).lastRunDate, "2026-05-08");
    EXPECT_TRUE(schedule_.loadScheduledAirchecks().at(0).active);
}

TEST_F(AirchecksTabViewTest, keeps_a_stored_hour_off_the_clock_until_the_control_is_touched) {
    auto odd = namedCard("Odd");
    odd.startHour = 30;
    store({odd});
    open();
    EXPECT_EQ(card(0).startHourPop->currentText(), "23:00");
    click(card(0).activeCheck);
    EXPECT_EQ(schedule_.loadScheduledAirchecks().at(0).startHour, 30);
    card(0).startHourPop->setFocus(Qt::TabFocusReason);
    QTest::keyClick(card(0).startHourPop, Qt::Key_Up);
    EXPECT_EQ(schedule_.loadScheduledAirchecks().at(0).startHour, 22);
}

/// A notch of the wheel over the middle of a view.
void wheel(QWidget& view, QPoint pixels, int angle) {
    const QPointF point(view.rect().center());
    QWheelEvent event(point, view.mapToGlobal(point), pixels, QPoint(0, angle), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    // As a window system tells it: to whatever lies uppermost, and on from there.
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(&view, &event);
}

TEST_F(AirchecksTabViewTest, scrolls_by_forty_points_a_notch_and_by_a_touch_pads_own_measure) {
    store({namedCard("One"), namedCard("Two"), namedCard("Three"), namedCard("Four")});
    auto& tab = open();
    auto* bar = tab.airchecksScrollView().verticalScrollBar();
    wheel(*tab.airchecksScrollView().viewport(), {}, -120);
    EXPECT_EQ(bar->value(), 40);
    wheel(*tab.airchecksScrollView().viewport(), QPoint(0, -7), -120);
    EXPECT_EQ(bar->value(), 47);
}

TEST_F(AirchecksTabViewTest, the_wheel_over_a_pop_up_scrolls_and_chooses_nothing) {
    store({namedCard("One"), namedCard("Two"), namedCard("Three"), namedCard("Four")});
    auto& tab = open();
    const int before = card(0).endHourPop->currentIndex();
    wheel(*card(0).endHourPop, {}, -120);
    EXPECT_EQ(card(0).endHourPop->currentIndex(), before);
    EXPECT_EQ(tab.airchecksScrollView().verticalScrollBar()->value(), 40);
}

TEST_F(AirchecksTabViewTest, the_scroll_bar_at_its_edge_is_dragged) {
    store({namedCard("One"), namedCard("Two"), namedCard("Three"), namedCard("Four")});
    auto& view = open().airchecksScrollView();
    view.verticalScrollBar()->setValue(1);
    auto* thumb = view.viewport()->childAt(view.viewport()->width() - 6, 6);
    ASSERT_EQ(thumb->accessibleName(), "Vertical scroll bar");
    QTest::mousePress(thumb, Qt::LeftButton, {}, QPoint(6, 10));
    QTest::mouseMove(thumb, QPoint(6, 2010));
    EXPECT_EQ(view.verticalScrollBar()->value(), view.verticalScrollBar()->maximum());
    QTest::mouseRelease(thumb, Qt::LeftButton, {}, QPoint(6, 10));
}

TEST_F(AirchecksTabViewTest, stands_on_its_own_ground) {
    auto& tab = open();
    const QImage seen = tab.grab().toImage();
    EXPECT_EQ(seen.pixelColor(4, 300), QColor(224, 224, 229));
    EXPECT_EQ(seen.pixelColor(1200, 300), QColor(224, 224, 229));
    EXPECT_EQ(seen.pixelColor(12 + 18 + 285, 80 + 18 + 150), QColor(Qt::white));
}

}  // namespace
}  // namespace sonavault::testing
