#include "help/SonavaultHelpWindow.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QTest>
#include <QWebEnginePage>
#include <memory>

#include "support/ExpectedQtWarnings.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

constexpr int kPatience = 60'000;  // Units: milliseconds

// Nobody listens there, so that a connection is refused at once.
const QUrl kRefused(QStringLiteral("http://127.0.0.1:1/sonavault"));

class SonavaultHelpWindowTest : public ::testing::Test {
  protected:
    SonavaultHelpWindow& open(const QUrl& address) {
        window_ = std::make_unique<SonavaultHelpWindow>();
        window_->bringToFront();
        window_->load(address);
        return *window_;
    }

    QString text() {
        auto answer = std::make_shared<std::optional<QString>>();
        window_->helpWebView().page()->toPlainText(
            [answer](const QString& found) { *answer = found; });
        EXPECT_TRUE(QTest::qWaitFor([&] { return answer->has_value(); }, kPatience));
        return answer->value_or(QString());
    }

    bool waitForText(const QString& part) {
        return QTest::qWaitFor([&] { return text().contains(part); }, kPatience);
    }

    /// A page that gives way to another may never answer for its text.
    bool waitForTitle(const QString& title) {
        return QTest::qWaitFor([&] { return window_->helpWebView().title() == title; }, kPatience);
    }

    /// To the page, which has the keyboard.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
        QWidget* page = window_->helpWebView().focusProxy();
        QTest::keyClick(page ? page : &window_->helpWebView(), key, modifiers);
    }

    QUrl localPage() {
        writeFile(folder_ / "page.html", "<title>A</title><p>How to record</p>");
        return QUrl::fromLocalFile(QString::fromStdString((folder_ / "page.html").string()));
    }

    // There is neither a window manager nor a graphics card.
    const ExpectedQtWarnings raise_{"This plugin does not support raise()"};
    const ExpectedQtWarnings graphics_{"OpenGL context creation failed"};
    const ExpectedQtWarnings backend_{"No suitable graphics backend found"};
    TempFolder folder_;
    std::unique_ptr<SonavaultHelpWindow> window_;
};

TEST_F(SonavaultHelpWindowTest, is_a_window_filled_with_the_page) {
    auto& window = open(localPage());
    EXPECT_EQ(window.windowTitle(), "Sonavault Help");
    EXPECT_EQ(window.size(), QSize(880, 660));
    EXPECT_TRUE(waitForText("How to record"));
    EXPECT_EQ(window.helpWebView().geometry(), QRect(0, 0, 880, 660));
    window.resize(500, 400);
    EXPECT_EQ(window.helpWebView().geometry(), QRect(0, 0, 500, 400));
    EXPECT_EQ(window.windowTitle(), "Sonavault Help");
}

TEST_F(SonavaultHelpWindowTest, shows_its_own_page_when_the_load_fails) {
    auto& window = open(kRefused);
    ASSERT_TRUE(waitForText("Help is currently unavailable"));
    const QString shown = text();
    EXPECT_TRUE(shown.contains("Sonavault couldn't load the help documentation from 127.0.0.1."))
        << shown.toStdString();
    EXPECT_TRUE(shown.contains("Please check your connection and try again."));
    EXPECT_TRUE(shown.contains("ERR_")) << shown.toStdString();
    EXPECT_EQ(window.helpWebView().title(), "Sonavault Help");
    EXPECT_TRUE(window.isVisible());
}

TEST_F(SonavaultHelpWindowTest, shows_its_own_page_at_each_load_that_fails) {
    auto& window = open(kRefused);
    ASSERT_TRUE(waitForTitle("Sonavault Help"));
    // As a link in a page does, and not as a click on the help button.
    window.helpWebView().load(localPage());
    ASSERT_TRUE(waitForTitle("A"));
    window.helpWebView().load(kRefused);
    ASSERT_TRUE(waitForTitle("Sonavault Help"));
    EXPECT_TRUE(waitForText("Help is currently unavailable"));
}

TEST_F(SonavaultHelpWindowTest, zooms_with_the_command_key) {
    auto& window = open(localPage());
    ASSERT_TRUE(waitForText("How to record"));
    press(Qt::Key_Equal, Qt::ControlModifier);
    EXPECT_EQ(window.zoomLevel(), 1.1);
    EXPECT_DOUBLE_EQ(window.helpWebView().zoomFactor(), 1.1);
    press(Qt::Key_Plus, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_DOUBLE_EQ(window.zoomLevel(), 1.2);
    press(Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(window.zoomLevel(), 1.0);
    press(Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_EQ(window.zoomLevel(), 0.9);
    EXPECT_DOUBLE_EQ(window.helpWebView().zoomFactor(), 0.9);
}

TEST_F(SonavaultHelpWindowTest, does_not_zoom_without_the_command_key) {
    auto& window = open(localPage());
    ASSERT_TRUE(waitForText("How to record"));
    press(Qt::Key_Plus, Qt::NoModifier);
    press(Qt::Key_Minus, Qt::AltModifier);
    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(window.zoomLevel(), 1.0);
}

TEST_F(SonavaultHelpWindowTest, keeps_its_zoom_when_the_page_changes) {
    auto& window = open(kRefused);
    press(Qt::Key_Plus, Qt::ControlModifier);
    ASSERT_TRUE(waitForText("Help is currently unavailable"));
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return qFuzzyCompare(window.helpWebView().zoomFactor(), 1.1); }, kPatience));
}

TEST_F(SonavaultHelpWindowTest, a_new_one_starts_at_one) {
    open(localPage());
    press(Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_EQ(open(localPage()).zoomLevel(), 1.0);
    EXPECT_DOUBLE_EQ(window_->helpWebView().zoomFactor(), 1.0);
}

/// The program itself, as it is started.
class SonavaultHelpProgramTest : public ::testing::Test {
  protected:
    SonavaultHelpProgramTest() {
        process_.setStandardErrorFile(QProcess::nullDevice());
        process_.start(QStringLiteral(SONAVAULT_HELP_PROGRAM),
                       {QStringLiteral("--attached"), kRefused.toString()});
    }
    ~SonavaultHelpProgramTest() override {
        process_.kill();
        process_.waitForFinished();
    }

    QProcess process_;
};

TEST_F(SonavaultHelpProgramTest, says_when_it_is_shown_and_ends_with_whoever_started_it) {
    ASSERT_TRUE(process_.waitForReadyRead(kPatience)) << process_.errorString().toStdString();
    EXPECT_EQ(process_.readAllStandardOutput(), "shown\n");
    process_.write("whatever\nraise\n");
    ASSERT_TRUE(process_.waitForReadyRead(kPatience)) << process_.errorString().toStdString();
    EXPECT_EQ(process_.readAllStandardOutput(), "raised\n");
    EXPECT_EQ(process_.state(), QProcess::Running);
    process_.write("whatever\n");
    process_.closeWriteChannel();
    ASSERT_TRUE(process_.waitForFinished(kPatience));
    EXPECT_EQ(process_.readAllStandardOutput(), "") << "it answers to nothing else";
    EXPECT_EQ(process_.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process_.exitCode(), 0);
}

}  // namespace
}  // namespace sonavault::testing
