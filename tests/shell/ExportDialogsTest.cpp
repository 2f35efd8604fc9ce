#include "shell/ExportDialogs.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <functional>
#include <vector>

#include "export/AircheckExport.h"
#include "support/ExpectedQtWarnings.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

/// A person who answers one dialog after the other.
class ExportDialogsTest : public ::testing::Test {
  protected:
    using Answer = std::function<void(QWidget&)>;

    void willAnswer(std::vector<Answer> answers) {
        answers_ = std::move(answers);
        poll_.start(5);
    }

    static QPushButton& button(QWidget& dialog, const QString& title) {
        for (auto* each : dialog.findChildren<QPushButton*>())
            if (each->text().remove('&') == title) return *each;
        throw std::runtime_error("no button " + title.toStdString());
    }

    static void save(QWidget& dialog, const QString& name) {
        auto& panel = dynamic_cast<QFileDialog&>(dialog);
        panel.findChild<QLineEdit*>()->setText(name);
        // Later, for the dialog must be in its own loop when it ends.
        QTimer::singleShot(0, &panel, [&panel] { button(panel, "Save").click(); });
    }

    SavePanel panel() const {
        return {.title = "Save Selections",
                .message = "Save 2 selections into one MP3 file",
                .directory = folder_.path(),
                .nameField = "2026-05-08_selections.mp3"};
    }

    const ExpectedQtWarnings offscreen_{"This plugin does not support propagateSizeHints()"};
    TempFolder folder_;
    WindowExportDialogs dialogs_;
    std::vector<Answer> answers_;
    QTimer poll_;
    QWidget* answered_ = nullptr;

    ExportDialogsTest() {
        QObject::connect(&poll_, &QTimer::timeout, [this] {
            QWidget* dialog = QApplication::activeModalWidget();
            if (!dialog || !dialog->isVisible() || answers_.empty()) return;
            const Answer answer = answers_.front();
            answers_.erase(answers_.begin());
            answer(*dialog);
        });
    }
};

TEST_F(ExportDialogsTest, lay_the_choice_of_hours_out_as_designed) {
    willAnswer({[](QWidget& dialog) {
        const auto hours = dialog.findChildren<QComboBox*>();
        ASSERT_EQ(hours.size(), 2);
        const QWidget& view = *hours[0]->parentWidget();
        EXPECT_EQ(view.size(), QSize(360, 30));
        const auto labels = view.findChildren<QLabel*>(QString(), Qt::FindDirectChildrenOnly);
        ASSERT_EQ(labels.size(), 2);
        EXPECT_EQ(labels[0]->geometry(), QRect(0, 6, 95, 18));
        EXPECT_EQ(labels[0]->text(), "Starting with:");
        EXPECT_TRUE(labels[0]->alignment() & Qt::AlignRight);
        EXPECT_EQ(hours[0]->geometry(), QRect(100, 2, 70, 26));
        EXPECT_EQ(labels[1]->geometry(), QRect(180, 6, 90, 18));
        EXPECT_EQ(labels[1]->text(), "Ending with:");
        EXPECT_EQ(hours[1]->geometry(), QRect(275, 2, 70, 26));
        EXPECT_EQ(hours[0]->currentText(), "00:00");
        EXPECT_EQ(hours[1]->currentText(), "23:00");
        EXPECT_EQ(hours[0]->count(), 24);
        const auto& buttons = button(dialog, "Live DJ");
        EXPECT_GE(buttons.mapTo(&dialog, QPoint()).y(),
                  view.mapTo(&dialog, QPoint(0, view.height())).y())
            << "the buttons stand below it";
        button(dialog, "Cancel").click();
    }});
    const auto answer = dialogs_.askForAircheck(aircheckQuestion());
    EXPECT_EQ(answer.button, 2U);
    EXPECT_EQ(answer.startHour, 0);
    EXPECT_EQ(answer.endHour, 23);
}

TEST_F(ExportDialogsTest, give_the_hours_and_the_button_that_were_chosen) {
    willAnswer({[](QWidget& dialog) {
        const auto hours = dialog.findChildren<QComboBox*>();
        hours[0]->setCurrentIndex(14);
        hours[1]->setCurrentIndex(10);
        button(dialog, "Voicetracks").click();
    }});
    const auto answer = dialogs_.askForAircheck(aircheckQuestion());
    EXPECT_EQ(answer.button, 1U);
    EXPECT_EQ(answer.startHour, 14);
    EXPECT_EQ(answer.endHour, 10);
}

TEST_F(ExportDialogsTest, open_the_save_panel_as_they_are_told) {
    willAnswer({[this](QWidget& dialog) {
        auto& shown = dynamic_cast<QFileDialog&>(dialog);
        EXPECT_EQ(shown.windowTitle(), "Save Selections");
        EXPECT_EQ(shown.directory().absolutePath().toStdString(), folder_.path().string());
        EXPECT_EQ(shown.acceptMode(), QFileDialog::AcceptSave);
        EXPECT_EQ(shown.defaultSuffix(), "mp3");
        EXPECT_EQ(shown.nameFilters(), QStringList{"MP3 audio (*.mp3)"});
        EXPECT_EQ(shown.findChild<QLineEdit*>()->text(), "2026-05-08_selections.mp3");
        const auto* message = dynamic_cast<QLabel*>(shown.layout()->menuBar());
        ASSERT_NE(message, nullptr);
        EXPECT_EQ(message->text(), "Save 2 selections into one MP3 file");
        QTimer::singleShot(0, &shown, [&shown] { button(shown, "Save").click(); });
    }});
    EXPECT_EQ(dialogs_.chooseOutput(panel()), folder_ / "2026-05-08_selections.mp3");
}

TEST_F(ExportDialogsTest, give_nothing_when_the_save_panel_is_cancelled) {
    willAnswer({[](QWidget& dialog) { button(dialog, "Cancel").click(); }});
    EXPECT_EQ(dialogs_.chooseOutput(panel()), std::nullopt);
}

TEST_F(ExportDialogsTest, make_an_mp3_of_whatever_name_was_typed) {
    for (const auto& [typed, given] :
         {std::pair{"cut", "cut.mp3"}, {"cut.v2", "cut.v2.mp3"}, {"CUT.MP3", "CUT.MP3"}}) {
        willAnswer({[typed = typed](QWidget& dialog) { save(dialog, typed); }});
        EXPECT_EQ(dialogs_.chooseOutput(panel()), folder_ / given);
    }
}

TEST_F(ExportDialogsTest, ask_before_the_name_that_came_of_it_is_replaced) {
    writeFile(folder_ / "cut.v2.mp3", "earlier");
    int asked = 0;
    const auto answer = [&asked](const char* title) {
        return [&asked, title](QWidget& dialog) {
            ++asked;
            EXPECT_EQ(dynamic_cast<QMessageBox&>(dialog).text(), "cut.v2.mp3 exists already.");
            button(dialog, title).click();
        };
    };
    const auto type = [](QWidget& dialog) { save(dialog, "cut.v2"); };
    willAnswer({type, answer("Cancel"), type, answer("Replace")});
    EXPECT_EQ(dialogs_.chooseOutput(panel()), folder_ / "cut.v2.mp3");
    EXPECT_EQ(asked, 2);
}

TEST_F(ExportDialogsTest, put_the_message_into_the_title_where_there_is_no_other_place) {
    EXPECT_EQ(panelTitle(panel(), true), "Save Selections");
    EXPECT_EQ(panelTitle(panel(), false), "Save Selections — Save 2 selections into one MP3 file");
}

}  // namespace
}  // namespace sonavault::testing
