#include "shell/AppDelegate.h"

#include <QAction>
#include <QApplication>
#include <QMenuBar>
#include <QTest>

#include "shell/ShellFixture.h"

namespace sonavault::testing {
namespace {

using AppDelegateTest = ShellFixture;

void pressStartStop(QWidget& window) {
    QApplication::setActiveWindow(&window);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&window, Qt::Key_R, Qt::ControlModifier);
}

TEST(FirstWindowFrame, holds_the_content_and_the_menu_bar_in_the_middle_of_the_screen) {
    const QRect frame = firstWindowFrame(QRect(0, 40, 1920, 1040), {1480, 920}, {1100, 600}, 24);
    EXPECT_EQ(frame.size(), QSize(1480, 944));
    EXPECT_EQ(frame.left(), 220);
    EXPECT_EQ(frame.top(), 88);
}

TEST(FirstWindowFrame, shrinks_to_a_screen_that_is_smaller) {
    EXPECT_EQ(firstWindowFrame(QRect(0, 30, 1366, 738), {1480, 920}, {1100, 600}, 24),
              QRect(0, 30, 1366, 738));
}

TEST(FirstWindowFrame, keeps_its_title_in_reach_where_nothing_fits) {
    EXPECT_EQ(firstWindowFrame(QRect(0, 0, 800, 800), {1480, 920}, {1100, 600}, 24),
              QRect(0, 0, 1480, 944));
}

TEST_F(AppDelegateTest, has_nothing_before_launch_and_survives_every_action) {
    AppDelegate delegate(services());
    EXPECT_EQ(delegate.window(), nullptr);
    EXPECT_EQ(delegate.viewController(), nullptr);
    EXPECT_EQ(delegate.sourceLineInputItem(), nullptr);
    EXPECT_EQ(delegate.sourceCadenzoTCPItem(), nullptr);
    EXPECT_EQ(delegate.autoResumeMenuItem(), nullptr);
    delegate.menuToggleRecording();
    delegate.menuOpenLastRecording();
    delegate.menuSetSourceLineInput();
    delegate.menuSetSourceCadenzoTCP();
    delegate.refreshSourceModeMenuChecks();
    EXPECT_TRUE(log_.lines().empty());
    EXPECT_FALSE(preferences_.contains(kSourceModeKey));
    EXPECT_TRUE(alerts_.shown.empty());
}

TEST_F(AppDelegateTest, opens_a_window_of_the_given_size_with_the_menu_bar_above_the_content) {
    launch();
    QMainWindow& window = *delegate().window();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(window.windowTitle(), "Sonavault 0.1.128");
    EXPECT_EQ(window.centralWidget(), &controller().rootView());
    EXPECT_EQ(controller().rootView().minimumSize(), QSize(1100, 600));
    EXPECT_EQ(controller().rootView().size(), QSize(1480, 920));
    EXPECT_EQ(window.menuBar()->mapTo(&window, QPoint()), QPoint(0, 0));
    EXPECT_EQ(controller().rootView().y(), window.menuBar()->height());
}

TEST_F(AppDelegateTest, lets_the_content_shrink_to_its_least_size_and_no_further) {
    launch();
    delegate().window()->resize(1, 1);
    EXPECT_EQ(controller().rootView().size(), QSize(1100, 600));
}

TEST_F(AppDelegateTest, gives_the_keys_to_the_content) {
    launch();
    QApplication::setActiveWindow(delegate().window());
    ASSERT_TRUE(QTest::qWaitForWindowActive(delegate().window()));
    EXPECT_EQ(QApplication::focusWidget(), &controller().rootView());
}

TEST_F(AppDelegateTest, starts_and_stops_recording_with_control_and_r) {
    launch();
    pressStartStop(*delegate().window());
    EXPECT_TRUE(recorder().isRecording());
    EXPECT_TRUE(std::filesystem::exists(dayFile()));
    pressStartStop(*delegate().window());
    EXPECT_FALSE(recorder().isRecording());
}

TEST_F(AppDelegateTest, checks_the_line_input_when_no_source_was_ever_chosen) {
    launch();
    EXPECT_TRUE(delegate().sourceLineInputItem()->isChecked());
    EXPECT_FALSE(delegate().sourceCadenzoTCPItem()->isChecked());
    EXPECT_FALSE(preferences_.contains(kSourceModeKey));
}

TEST_F(AppDelegateTest, checks_the_line_input_for_a_source_it_does_not_know_and_leaves_it_stored) {
    preferences_.setText(kSourceModeKey, "satellite_feed");
    launch();
    EXPECT_TRUE(delegate().sourceLineInputItem()->isChecked());
    EXPECT_FALSE(delegate().sourceCadenzoTCPItem()->isChecked());
    EXPECT_EQ(recorder().sourceMode(), SVRecorderSourceMode::lineInput);
    EXPECT_EQ(preferences_.text(kSourceModeKey), "satellite_feed");
}

TEST_F(AppDelegateTest, moves_the_check_mark_with_the_choice_and_keeps_it_over_a_restart) {
    launch();
    delegate().sourceCadenzoTCPItem()->trigger();
    EXPECT_EQ(preferences_.text(kSourceModeKey), "cadenzo_tcp");
    EXPECT_FALSE(delegate().sourceLineInputItem()->isChecked());
    EXPECT_TRUE(delegate().sourceCadenzoTCPItem()->isChecked());

    launch();
    EXPECT_TRUE(delegate().sourceCadenzoTCPItem()->isChecked());
    EXPECT_EQ(recorder().sourceMode(), SVRecorderSourceMode::cadenzoTCP);
    delegate().sourceLineInputItem()->trigger();
    EXPECT_EQ(preferences_.text(kSourceModeKey), "line_input");
    EXPECT_TRUE(delegate().sourceLineInputItem()->isChecked());
    EXPECT_FALSE(delegate().sourceCadenzoTCPItem()->isChecked());
}

TEST_F(AppDelegateTest, keeps_the_check_mark_of_a_source_that_is_chosen_again) {
    launch();
    delegate().sourceLineInputItem()->trigger();
    EXPECT_TRUE(delegate().sourceLineInputItem()->isChecked());
    EXPECT_EQ(preferences_.text(kSourceModeKey), "line_input");
}

TEST_F(AppDelegateTest, shows_the_stored_auto_resume_in_its_check_mark) {
    launch();
    EXPECT_FALSE(delegate().autoResumeMenuItem()->isChecked());
    preferences_.setBoolean(kAutoResumeOnLaunchKey, true);
    launch();
    EXPECT_TRUE(delegate().autoResumeMenuItem()->isChecked());
}

TEST_F(AppDelegateTest, switches_auto_resume_with_words_and_back) {
    launch();
    delegate().autoResumeMenuItem()->trigger();
    EXPECT_EQ(preferences_.boolean(kAutoResumeOnLaunchKey), true);
    EXPECT_TRUE(delegate().autoResumeMenuItem()->isChecked());
    EXPECT_EQ(statusText(), "Auto-resume on launch: ON");
    delegate().autoResumeMenuItem()->trigger();
    EXPECT_EQ(preferences_.boolean(kAutoResumeOnLaunchKey), false);
    EXPECT_FALSE(delegate().autoResumeMenuItem()->isChecked());
    EXPECT_EQ(statusText(), "Auto-resume on launch: OFF");
}

TEST_F(AppDelegateTest, does_not_begin_recording_when_auto_resume_is_switched_on) {
    launch();
    delegate().autoResumeMenuItem()->trigger();
    passSeconds(5);
    EXPECT_FALSE(recorder().isRecording());
    EXPECT_EQ(input_.starts, 0);
}

TEST_F(AppDelegateTest, shows_its_version_in_the_about_panel) {
    launch();
    delegate().showAbout();
    ASSERT_EQ(alerts_.shown.size(), 1U);
    const Alert& alert = alerts_.shown.front();
    EXPECT_EQ(alert.style, Alert::informational);
    EXPECT_EQ(alert.message, "Sonavault 0.1.128");
    EXPECT_EQ(alert.information, "Your Station's Air Archive\n\n");
    EXPECT_EQ(alert.buttons, QStringList{"OK"});
    EXPECT_TRUE(alert.showsApplicationIcon);
}

}  // namespace
}  // namespace sonavault::testing
