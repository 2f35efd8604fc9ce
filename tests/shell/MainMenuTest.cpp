#include "shell/MainMenu.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <memory>
#include <string>
#include <vector>

#include "links/StationPorts.h"
#include "recorder/SVRecorder.h"

namespace sonavault {
namespace {

/// A menu bar that counts what was chosen in it.
class MainMenuTest : public ::testing::Test {
  protected:
    MainMenuTest() : menu_(buildMainMenu(actions())), bar_(menu_.bar) {}

    MainMenuActions actions() {
        const auto note = [this](const char* name) {
            return [this, name] { chosen_.emplace_back(name); };
        };
        return {note("about"), note("quit"),    note("toggle"),     note("open"),
                note("line"),  note("cadenzo"), note("auto-resume")};
    }

    static std::string keyOf(const QAction& item) {
        return item.shortcut().toString().toStdString();
    }

    /// One line an item: its title, then its key in brackets; dashes for a separator, indented
    /// below a submenu.
    static void describe(const QMenu& menu, const std::string& indent,
                         std::vector<std::string>& lines) {
        for (const QAction* item : menu.actions()) {
            const std::string key = keyOf(*item);
            lines.push_back(indent + (item->isSeparator() ? "---" : item->text().toStdString()) +
                            (key.empty() ? "" : " [" + key + "]"));
            if (item->menu()) describe(*item->menu(), indent + "  ", lines);
        }
    }
    static std::vector<std::string> itemsOf(const QMenu& menu) {
        std::vector<std::string> lines;
        describe(menu, "", lines);
        return lines;
    }

    const QMenu& menuAt(int index) const { return *bar_->actions()[index]->menu(); }

    QAction& item(const std::string& title) const {
        for (QAction* each : bar_->findChildren<QAction*>())
            if (each->text().toStdString() == title && !each->menu()) return *each;
        throw std::runtime_error("no item " + title);
    }

    std::vector<std::string> chosen_;
    MainMenu menu_;
    std::unique_ptr<QMenuBar> bar_;
};

TEST_F(MainMenuTest, has_three_menus_with_the_programs_own_leftmost) {
    std::vector<std::string> titles;
    for (const QAction* each : bar_->actions()) titles.push_back(each->text().toStdString());
    EXPECT_EQ(titles, (std::vector<std::string>{"Sonavault", "Edit", "Recording"}));
}

TEST_F(MainMenuTest, has_about_and_quit_in_the_programs_menu) {
    EXPECT_EQ(itemsOf(menuAt(0)),
              (std::vector<std::string>{"About Sonavault", "---", "Quit Sonavault [Ctrl+Q]"}));
}

TEST_F(MainMenuTest, has_the_usual_edit_menu) {
    EXPECT_EQ(itemsOf(menuAt(1)), (std::vector<std::string>{
                                      "Undo [Ctrl+Z]", "Redo [Ctrl+Shift+Z]", "---", "Cut [Ctrl+X]",
                                      "Copy [Ctrl+C]", "Paste [Ctrl+V]", "Select All [Ctrl+A]"}));
}

TEST_F(MainMenuTest, has_the_recording_menu_with_its_sources) {
    EXPECT_EQ(itemsOf(menuAt(2)),
              (std::vector<std::string>{"Start / Stop Recording [Ctrl+R]", "Open Last Recording",
                                        "---", "Source", "  Line Input (default audio device)",
                                        "  Cadenzo TCP (port 9171)", "---",
                                        "Auto-resume Recording on Launch"}));
}

TEST_F(MainMenuTest, names_the_port_on_which_the_recorder_listens) {
    EXPECT_NE(menu_.sourceCadenzoTCPItem->text().indexOf(QString::number(kAudioPort)), -1);
}

TEST_F(MainMenuTest, gives_check_marks_to_the_sources_and_the_auto_resume_only) {
    std::vector<std::string> checkable;
    for (const QAction* each : bar_->findChildren<QAction*>())
        if (each->isCheckable()) checkable.push_back(each->text().toStdString());
    EXPECT_EQ(checkable, (std::vector<std::string>{"Line Input (default audio device)",
                                                   "Cadenzo TCP (port 9171)",
                                                   "Auto-resume Recording on Launch"}));
}

TEST_F(MainMenuTest, repeats_for_a_held_key_only_what_goes_back_and_forth) {
    std::vector<std::string> repeated;
    for (const QAction* each : bar_->findChildren<QAction*>())
        if (!each->shortcut().isEmpty() && each->autoRepeat())
            repeated.push_back(each->text().toStdString());
    EXPECT_EQ(repeated, (std::vector<std::string>{"Undo", "Redo"}));
}

TEST_F(MainMenuTest, sends_each_item_to_its_own_action) {
    for (const auto* title :
         {"About Sonavault", "Quit Sonavault", "Start / Stop Recording", "Open Last Recording"})
        item(title).trigger();
    menu_.sourceLineInputItem->trigger();
    menu_.sourceCadenzoTCPItem->trigger();
    menu_.autoResumeMenuItem->trigger();
    EXPECT_EQ(chosen_, (std::vector<std::string>{"about", "quit", "toggle", "open", "line",
                                                 "cadenzo", "auto-resume"}));
}

/// The menu over a window with a text field.
class EditMenuTest : public MainMenuTest {
  protected:
    EditMenuTest() {
        field_.setParent(&window_);
        bar_->setParent(&window_);
        window_.setFocusPolicy(Qt::StrongFocus);
        window_.show();
        QApplication::setActiveWindow(&window_);
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window_));
    }
    ~EditMenuTest() override { bar_->setParent(nullptr); }

    void typeAndSelect(const QString& text) {
        field_.setFocus();
        field_.insert(text);
        field_.selectAll();
    }

    QWidget window_;
    QLineEdit field_;
};

TEST_F(EditMenuTest, edits_the_field_that_has_the_focus) {
    typeAndSelect("Morning show");
    item("Cut").trigger();
    EXPECT_EQ(field_.text(), "");
    EXPECT_EQ(QApplication::clipboard()->text(), "Morning show");
    item("Paste").trigger();
    EXPECT_EQ(field_.text(), "Morning show");
    item("Select All").trigger();
    EXPECT_EQ(field_.selectedText(), "Morning show");
    QApplication::clipboard()->clear();
    item("Copy").trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), "Morning show");
}

TEST_F(EditMenuTest, undoes_and_redoes_in_the_field_that_has_the_focus) {
    typeAndSelect("Morning show");
    item("Undo").trigger();
    EXPECT_EQ(field_.text(), "");
    item("Redo").trigger();
    EXPECT_EQ(field_.text(), "Morning show");
}

TEST_F(EditMenuTest, does_nothing_where_the_focus_can_not_be_edited) {
    typeAndSelect("Morning show");
    window_.setFocus();
    ASSERT_EQ(QApplication::focusWidget(), &window_);
    for (const auto* title : {"Undo", "Redo", "Cut", "Copy", "Paste", "Select All"})
        item(title).trigger();
    EXPECT_EQ(field_.text(), "Morning show");
}

TEST_F(EditMenuTest, does_nothing_without_a_focus) {
    typeAndSelect("Morning show");
    field_.clearFocus();
    window_.clearFocus();
    ASSERT_EQ(QApplication::focusWidget(), nullptr);
    for (const auto* title : {"Undo", "Redo", "Cut", "Copy", "Paste", "Select All"})
        item(title).trigger();
    EXPECT_EQ(field_.text(), "Morning show");
}

}  // namespace
}  // namespace sonavault
