#include "shell/HelpLauncher.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QScreen>
#include <QTest>
#include <filesystem>
#include <sstream>

#include "support/ExpectedQtWarnings.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr int kPatience = 30'000;  // Units: milliseconds
const std::string kAddress = "https://help.example/page";

/// A help program that writes down what becomes of it, and a browser that is the test.
class HelpLauncherTest : public ::testing::Test {
  protected:
    /// A program of these commands, beside those that write down its arguments.
    HelpServices help(const std::string& commands) {
        const auto file = folder_ / "fake-help";
        writeFile(file, "#!/bin/sh\necho \"start $*\" >> '" + told() + "'\n" + commands);
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
        return services(file.string());
    }

    HelpServices services(const std::string& program) {
        return {.program = QString::fromStdString(program),
                .address = QUrl(QString::fromStdString(kAddress)),
                .openInBrowser = [this](const QUrl& address) {
                    browsed_.push_back(address.toString().toStdString());
                    return hasBrowser_;
                }};
    }

    std::string hearing() const {
        return "echo shown\nwhile read -r line; do echo \"$line\" >> '" + told() +
               "'; echo raised; done\necho end >> '" + told() + "'\n";
    }

    std::string told() const { return (folder_ / "told").string(); }

    std::vector<std::string> lines() const {
        std::istringstream stream(readFile(folder_ / "told"));
        std::vector<std::string> all;
        for (std::string line; std::getline(stream, line);) all.push_back(line);
        return all;
    }

    bool waitForLines(std::size_t count) const {
        return QTest::qWaitFor([&] { return lines().size() >= count; }, kPatience);
    }

    static bool waitForEnd(const HelpLauncher& launcher) {
        return QTest::qWaitFor([&] { return !launcher.isRunning(); }, kPatience);
    }

    const std::string started_ = "start --attached " + kAddress;
    const ExpectedQtWarnings raise_{"This plugin does not support raise()"};
    TempFolder folder_;
    bool hasBrowser_ = true;
    std::vector<std::string> browsed_;
};

TEST_F(HelpLauncherTest, starts_the_help_once_and_brings_it_to_the_front_after_that) {
    HelpLauncher launcher(help(hearing()));
    launcher.helpClicked();
    ASSERT_TRUE(waitForLines(1));
    launcher.helpClicked();
    ASSERT_TRUE(waitForLines(2));
    launcher.helpClicked();
    ASSERT_TRUE(waitForLines(3));
    EXPECT_THAT(lines(), ElementsAre(started_, "raise", "raise"));
    EXPECT_THAT(browsed_, IsEmpty());
}

TEST_F(HelpLauncherTest, starts_it_anew_when_its_window_was_closed) {
    HelpLauncher launcher(help("echo shown\nread -r line\necho raised\n"));
    launcher.helpClicked();
    launcher.helpClicked();  // on which this one ends
    ASSERT_TRUE(waitForEnd(launcher));
    launcher.helpClicked();
    ASSERT_TRUE(waitForLines(2));
    EXPECT_THAT(lines(), ElementsAre(started_, started_));
    EXPECT_TRUE(launcher.isRunning());
    EXPECT_THAT(browsed_, IsEmpty());
}

TEST_F(HelpLauncherTest, starts_it_anew_when_it_was_asked_for_while_it_closed) {
    HelpLauncher launcher(help("echo shown\nread -r line\n"));
    launcher.helpClicked();
    launcher.helpClicked();  // which nobody answers
    ASSERT_TRUE(waitForLines(2));
    EXPECT_THAT(lines(), ElementsAre(started_, started_));
    EXPECT_TRUE(launcher.isRunning());
    EXPECT_THAT(browsed_, IsEmpty());
}

TEST_F(HelpLauncherTest, opens_the_browser_where_there_is_no_help_program) {
    HelpLauncher launcher(services(""));
    launcher.helpClicked();
    EXPECT_THAT(browsed_, ElementsAre(kAddress));
    EXPECT_EQ(launcher.offlinePage(), nullptr);
}

TEST_F(HelpLauncherTest, opens_the_browser_when_the_help_program_can_not_be_started) {
    HelpLauncher launcher(services((folder_ / "missing").string()));
    launcher.helpClicked();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !browsed_.empty(); }, kPatience));
    EXPECT_THAT(browsed_, ElementsAre(kAddress));
    EXPECT_FALSE(launcher.isRunning());
}

TEST_F(HelpLauncherTest, opens_the_browser_when_the_help_ends_before_it_was_shown) {
    HelpLauncher launcher(help("exit 1\n"));
    launcher.helpClicked();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !browsed_.empty(); }, kPatience));
    EXPECT_THAT(browsed_, ElementsAre(kAddress));
}

TEST_F(HelpLauncherTest, a_help_that_breaks_down_later_is_only_started_anew) {
    HelpLauncher launcher(help("echo shown\nread -r line\nkill -9 $$\n"));
    launcher.helpClicked();
    launcher.helpClicked();
    ASSERT_TRUE(waitForLines(2));
    EXPECT_THAT(browsed_, IsEmpty());
}

TEST_F(HelpLauncherTest, shows_the_offline_page_when_there_is_no_browser_either) {
    hasBrowser_ = false;
    HelpLauncher launcher(services(""));
    launcher.helpClicked();
    auto* page = launcher.offlinePage();
    ASSERT_NE(page, nullptr);
    EXPECT_TRUE(page->isVisible());
    EXPECT_EQ(page->windowTitle(), "Sonavault Help");
    EXPECT_EQ(page->size(), QSize(880, 660));
    const QPoint off =
        page->geometry().center() - QApplication::primaryScreen()->availableGeometry().center();
    EXPECT_LE(off.manhattanLength(), 8) << "it is centred, all but for the desktop's frame";
    const QString text = page->toPlainText();
    EXPECT_TRUE(text.startsWith("Help is currently unavailable")) << text.toStdString();
    EXPECT_TRUE(text.contains("from help.example."));
    launcher.helpClicked();
    EXPECT_EQ(launcher.offlinePage(), page) << "it is brought to the front";
    page->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(launcher.offlinePage(), nullptr);
}

TEST_F(HelpLauncherTest, the_offline_page_zooms_with_the_command_key) {
    hasBrowser_ = false;
    HelpLauncher launcher(services(""));
    launcher.helpClicked();
    auto& page = *launcher.offlinePage();
    const double height = page.document()->size().height();
    QTest::keyClick(&page, Qt::Key_Equal, Qt::ControlModifier);
    QTest::keyClick(&page, Qt::Key_Plus, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_DOUBLE_EQ(page.zoomLevel(), 1.2);
    EXPECT_GT(page.document()->size().height(), height);
    QTest::keyClick(&page, Qt::Key_Minus);
    EXPECT_DOUBLE_EQ(page.zoomLevel(), 1.2) << "without the command key it is a key like any";
    QTest::keyClick(&page, Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(page.zoomLevel(), 1.0);
    EXPECT_EQ(page.document()->size().height(), height);
}

TEST_F(HelpLauncherTest, does_not_keep_a_help_that_nobody_can_raise_any_more) {
    {
        HelpLauncher launcher(
            help("echo shown\necho $$ > '" + (folder_ / "pid").string() + "'\nexec sleep 1000\n"));
        launcher.helpClicked();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !readFile(folder_ / "pid").empty(); }, kPatience));
    }
    const std::string pid = readFile(folder_ / "pid");
    EXPECT_FALSE(std::filesystem::exists("/proc/" + pid.substr(0, pid.find('\n'))));
}

TEST_F(HelpLauncherTest, knows_the_address_of_this_machines_help) {
    const auto found = HelpServices::ofThisMachine();
    EXPECT_EQ(found.address.scheme(), "https");
    EXPECT_TRUE(found.openInBrowser);
}

}  // namespace
}  // namespace sonavault::testing
