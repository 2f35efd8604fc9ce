#include "shell/Alerts.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <functional>

#include "support/ExpectedQtWarnings.h"

namespace sonavault::testing {
namespace {

/// A person who reads the alert on the screen and then answers it.
class AlertsTest : public ::testing::Test {
  protected:
    int show(const Alert& alert, const std::function<void(QMessageBox&)>& answer) {
        QTimer::singleShot(0, [&answer] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            answer(*box);
        });
        return MessageBoxAlerts().showModally(alert);
    }

    static QPushButton& button(QMessageBox& box, const QString& title) {
        for (auto* each : box.findChildren<QPushButton*>())
            if (each->text() == title) return *each;
        throw std::runtime_error("no button " + title.toStdString());
    }

    const ExpectedQtWarnings offscreen_{"This plugin does not support propagateSizeHints()"};
};

TEST_F(AlertsTest, shows_its_texts_as_they_are) {
    show({.style = Alert::warning,
          .message = "Cadenzo <b>1</b>",
          .information = "Make <i>sure</i> & wait."},
         [](QMessageBox& box) {
             EXPECT_EQ(box.text(), "Cadenzo <b>1</b>");
             EXPECT_EQ(box.informativeText(), "Make <i>sure</i> & wait.");
             for (const auto* label : box.findChildren<QLabel*>())
                 EXPECT_NE(label->textFormat(), Qt::AutoText) << label->text().toStdString();
             EXPECT_EQ(box.textFormat(), Qt::PlainText);
             EXPECT_EQ(box.icon(), QMessageBox::Warning);
             box.accept();
         });
}

TEST_F(AlertsTest, looks_harmless_when_it_only_informs) {
    show({.message = "No recording yet"}, [](QMessageBox& box) {
        EXPECT_EQ(box.icon(), QMessageBox::NoIcon);
        EXPECT_FALSE(box.iconPixmap().isNull()) << "the program's own";
        box.accept();
    });
}

TEST_F(AlertsTest, carries_the_programs_icon_when_asked) {
    show({.message = "Sonavault", .showsApplicationIcon = true}, [](QMessageBox& box) {
        EXPECT_EQ(box.icon(), QMessageBox::NoIcon);
        EXPECT_FALSE(box.iconPixmap().isNull());
        box.accept();
    });
}

TEST_F(AlertsTest, tells_which_button_was_pressed) {
    const Alert question{.message = "Delete this card?", .buttons = {"Delete", "Keep", "Cancel"}};
    EXPECT_EQ(show(question, [](QMessageBox& box) { button(box, "Delete").click(); }), 0);
    EXPECT_EQ(show(question, [](QMessageBox& box) { button(box, "Keep").click(); }), 1);
    EXPECT_EQ(show(question, [](QMessageBox& box) { button(box, "Cancel").click(); }), 2);
}

TEST_F(AlertsTest, takes_return_for_the_first_button_and_escape_for_the_last) {
    const Alert question{.message = "Delete this card?", .buttons = {"Delete", "Keep"}};
    EXPECT_EQ(show(question, [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); }), 0);
    EXPECT_EQ(show(question, [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); }), 1);
}

TEST_F(AlertsTest, takes_an_end_without_a_button_for_the_last) {
    const Alert question{.message = "Delete this card?", .buttons = {"Delete", "Keep", "Cancel"}};
    EXPECT_EQ(show(question, [](QMessageBox& box) { box.done(0); }), 2) << "as a quit ends it";
    EXPECT_EQ(show(question, [](QMessageBox& box) { box.close(); }), 2);
}

TEST_F(AlertsTest, needs_no_more_than_escape_when_there_is_one_button) {
    EXPECT_EQ(show({.message = "No recording yet"},
                   [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); }),
              0);
}

}  // namespace
}  // namespace sonavault::testing
