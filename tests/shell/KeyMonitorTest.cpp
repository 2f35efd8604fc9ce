#include "shell/KeyMonitor.h"

#include <QAction>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QTest>

#include "shell/ShellFixture.h"

namespace sonavault::testing {
namespace {

class KeyMonitorTest : public ShellFixture {
  protected:
    KeyMonitorTest() {
        // 144 s from 10:00:00.
        haveDay("2026-03-01", {.frames = 4000, .startOffsetSec = 36'000});
        launch();
        root().setFocus();
        QApplication::setActiveWindow(delegate().window());
    }

    KeyResponderView& root() { return controller().rootView(); }
    double playhead() { return controller().review().day().playheadSec(); }
    const std::vector<Selection>& selections() {
        return controller().timeline().selections().selections();
    }
    void openAirchecks() {
        QTest::mouseClick(root().findChild<QWidget*>(QStringLiteral("tabBar")), Qt::LeftButton, {},
                          {220, 20});
        ASSERT_EQ(root().activeTab(), "airchecks");
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(&root(), key, modifiers);
    }
};

TEST(KeyEventOf, knows_space_and_arrows_by_their_place_and_the_rest_by_what_they_print) {
    const QKeyEvent left(QEvent::KeyPress, Qt::Key_Left, Qt::ControlModifier);
    EXPECT_EQ(keyEventOf(left).keyCode, kLeftArrowKeyCode);
    EXPECT_EQ(keyEventOf(left).modifierFlags, kCommandKeyMask);
    const QKeyEvent bracket(QEvent::KeyPress, Qt::Key_BracketLeft, Qt::ShiftModifier);
    EXPECT_EQ(keyEventOf(bracket).charactersIgnoringModifiers, "[");
    EXPECT_EQ(keyEventOf(bracket).modifierFlags, kShiftKeyMask);
    const QKeyEvent function(QEvent::KeyPress, Qt::Key_F1, Qt::NoModifier);
    EXPECT_FALSE(keyEventOf(function).charactersIgnoringModifiers);
}

TEST_F(KeyMonitorTest, moves_the_playhead) {
    press(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(playhead(), 36010);
    press(Qt::Key_Left, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(playhead(), 32400);
}

TEST_F(KeyMonitorTest, moves_the_playhead_by_hours_no_further_than_the_ends_of_the_day) {
    controller().review().playback().jumpTo({1800});
    for (int again = 0; again < 2; ++again) {
        press(Qt::Key_Left, Qt::ControlModifier);
        EXPECT_EQ(playhead(), 0);
    }
    controller().review().playback().jumpTo({23 * 3600 + 900});
    press(Qt::Key_Right, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(playhead(), 86'400 - 0.01);
}

TEST_F(KeyMonitorTest, plays_and_stops) {
    press(Qt::Key_Space);
    EXPECT_TRUE(controller().review().playback().isPlaying());
    press(Qt::Key_Space);
    EXPECT_FALSE(controller().review().playback().isPlaying());
}

TEST_F(KeyMonitorTest, marks_undoes_and_clears_ranges) {
    press(Qt::Key_BracketLeft);
    press(Qt::Key_Right, Qt::ShiftModifier);
    press(Qt::Key_BracketRight);
    ASSERT_EQ(selections().size(), 1U);
    EXPECT_EQ(selections().front().durationSec(), 10);
    press(Qt::Key_C);
    EXPECT_TRUE(selections().empty());
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(selections().size(), 1U);
}

TEST_F(KeyMonitorTest, marks_a_range_with_letters_and_asks_where_to_save_it) {
    press(Qt::Key_I);
    EXPECT_EQ(controller().timeline().selections().pendingStartSec(), 36000);
    press(Qt::Key_Right, Qt::ShiftModifier);
    press(Qt::Key_O);
    ASSERT_EQ(selections().size(), 1U);
    press(Qt::Key_E);
    ASSERT_EQ(alerts_.shown.size(), 1U);
    EXPECT_EQ(alerts_.shown[0].message, "Save 1 selection into a single file");
    EXPECT_EQ(dialogs_.panels.size(), 1U);
}

TEST_F(KeyMonitorTest, asks_which_aircheck_to_build) {
    press(Qt::Key_A);
    ASSERT_EQ(dialogs_.questions.size(), 1U);
    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(dialogs_.questions.size(), 1U);
}

/// A widget of the main window that counts how often the letter comes through to it.
class KeyCounter final : public QWidget {
  public:
    using QWidget::QWidget;
    int letters = 0;

  protected:
    void keyPressEvent(QKeyEvent* event) override { letters += event->key() == Qt::Key_Z; }
};

TEST_F(KeyMonitorTest, swallows_an_undo_of_nothing_and_passes_the_letter_alone) {
    KeyCounter below(&root());
    below.show();
    QTest::keyClick(&below, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(below.letters, 0);
    EXPECT_TRUE(selections().empty());
    QTest::keyClick(&below, Qt::Key_Z);
    EXPECT_EQ(below.letters, 1);
}

TEST_F(KeyMonitorTest, leaves_the_keys_to_a_menu_that_the_person_is_in) {
    const ExpectedQtWarnings raise{"This plugin does not support raise()"};
    const ExpectedQtWarnings grab{"This plugin does not support grabbing the keyboard"};
    auto* bar = delegate().window()->findChild<QMenuBar*>();
    ASSERT_NE(bar, nullptr);
    bar->setFocus(Qt::MenuBarFocusReason);
    ASSERT_EQ(QApplication::focusWidget(), bar);
    QTest::keyClick(bar, Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(playhead(), 36000);
    root().setFocus();
    QMenu menu(&root());
    menu.addAction("Open");
    menu.popup({10, 10});
    ASSERT_EQ(QApplication::activePopupWidget(), &menu);
    press(Qt::Key_Space);
    EXPECT_FALSE(controller().review().playback().isPlaying());
    menu.close();
    press(Qt::Key_Space);
    EXPECT_TRUE(controller().review().playback().isPlaying());
}

TEST_F(KeyMonitorTest, takes_the_recording_shortcut_before_the_menu_and_only_once) {
    press(Qt::Key_R, Qt::ControlModifier);
    EXPECT_TRUE(isRecording());
    press(Qt::Key_R, Qt::ControlModifier);
    EXPECT_FALSE(isRecording());
}

TEST_F(KeyMonitorTest, toggles_once_however_long_the_recording_shortcut_is_held) {
    for (const bool airchecks : {false, true}) {
        if (airchecks) openAirchecks();
        ASSERT_FALSE(isRecording());
        QTest::keyPress(&root(), Qt::Key_R, Qt::ControlModifier);
        EXPECT_TRUE(isRecording()) << airchecks;
        for (int again = 0; again < 3; ++again) {
            QTest::simulateEvent(&root(), true, Qt::Key_R, Qt::ControlModifier, "", true);
            EXPECT_TRUE(isRecording()) << airchecks;
        }
        QTest::keyRelease(&root(), Qt::Key_R, Qt::ControlModifier);
        press(Qt::Key_R, Qt::ControlModifier);
        EXPECT_FALSE(isRecording()) << airchecks;
    }
}

TEST_F(KeyMonitorTest, leaves_the_airchecks_tab_its_keys) {
    openAirchecks();
    press(Qt::Key_Space);
    EXPECT_FALSE(controller().review().playback().isPlaying());
}

TEST_F(KeyMonitorTest, leaves_a_text_that_is_edited_its_letters) {
    QLineEdit field(&root());
    field.show();
    field.setFocus();
    ASSERT_EQ(QApplication::focusWidget(), &field);
    QTest::keyClicks(&field, "[e]");
    EXPECT_EQ(field.text(), "[e]");
    EXPECT_FALSE(controller().timeline().selections().pendingStartSec());
}

TEST_F(KeyMonitorTest, leaves_other_windows_their_keys) {
    QWidget other;
    other.show();
    QApplication::setActiveWindow(&other);
    QTest::keyClick(&other, Qt::Key_Space);
    EXPECT_FALSE(controller().review().playback().isPlaying());
}

TEST_F(KeyMonitorTest, does_once_what_a_held_key_repeats_unless_it_moves) {
    QKeyEvent again(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, " ", true);
    QApplication::sendEvent(&root(), &again);
    EXPECT_FALSE(controller().review().playback().isPlaying());
    QKeyEvent on(QEvent::KeyPress, Qt::Key_Right, Qt::ShiftModifier, "", true);
    QApplication::sendEvent(&root(), &on);
    EXPECT_EQ(playhead(), 36010);
}

}  // namespace
}  // namespace sonavault::testing
