#include "shell/ExportDialogs.h"

#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLayout>

#include "platform/FileQueries.h"
#include "shell/AlertBox.h"
#include "views/Theme.h"

namespace sonavault {
namespace {

constexpr QSize kAccessorySize{360, 30};
constexpr int kPanelMargin = 12;

QString text(const std::string& utf8) {
    return QString::fromStdString(utf8);
}

void addLabel(QWidget& parent, const std::string& title, const QRect& frame) {
    auto* label = new QLabel(text(title), &parent);
    label->setGeometry(frame);
    label->setFont(interfaceFont(13));
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

QComboBox* addHours(QWidget& parent, const AircheckQuestion& question, const std::string& name,
                    int chosen, const QRect& frame) {
    auto* hours = new QComboBox(&parent);
    for (const auto& hour : question.hours) hours->addItem(text(hour));
    hours->setCurrentIndex(chosen);
    hours->setGeometry(frame);
    hours->setFont(interfaceFont(13));
    hours->setAccessibleName(text(name));
    return hours;
}

/// The two choices of an hour, side by side.
struct HourChoice {
    explicit HourChoice(const AircheckQuestion& question) : view(new QWidget) {
        view->setFixedSize(kAccessorySize);
        addLabel(*view, question.startLabel, {0, 6, 95, 18});
        start =
            addHours(*view, question, question.startLabel, question.startHour, {100, 2, 70, 26});
        addLabel(*view, question.endLabel, {180, 6, 90, 18});
        end = addHours(*view, question, question.endLabel, question.endHour, {275, 2, 70, 26});
    }

    QWidget* view;  // Owns: the alert that it is put into
    QComboBox* start;
    QComboBox* end;
};

/// What the panel is for stands above everything in it.
void showMessage(QFileDialog& dialog, const std::string& message) {
    if (!dialog.layout()) return;
    auto* label = new QLabel(text(message));
    label->setFont(interfaceFont(13, QFont::Medium));
    label->setMargin(kPanelMargin);
    dialog.layout()->setMenuBar(label);
}

std::filesystem::path withMp3Suffix(std::filesystem::path file) {
    const auto suffix = QString::fromStdString(file.extension().string()).toLower();
    if (suffix != QStringLiteral(".mp3")) file += ".mp3";
    return file;
}

/// The panel has asked for the name that was typed, not for the one that came of it.
bool mayReplace(const std::filesystem::path& file) {
    AlertBox box({.style = Alert::warning,
                  .message = text(file.filename().string()) + QStringLiteral(" exists already."),
                  .information = QStringLiteral("Replacing it loses what it holds now."),
                  .buttons = {QStringLiteral("Replace"), QStringLiteral("Cancel")}});
    return box.showModally() == 0;
}

}  // namespace

QString panelTitle(const SavePanel& panel, bool hasRoomForMessage) {
    if (hasRoomForMessage) return text(panel.title);
    return text(panel.title + " — " + panel.message);
}

AircheckAnswer WindowExportDialogs::askForAircheck(const AircheckQuestion& question) {
    Alert alert{.message = text(question.message), .information = text(question.information)};
    alert.buttons.clear();
    for (const auto& button : question.buttons) alert.buttons << text(button);
    AlertBox box(alert);
    const HourChoice hours(question);
    box.addAccessory(hours.view);
    const int button = box.showModally();
    return {.button = static_cast<std::size_t>(button),
            .startHour = hours.start->currentIndex(),
            .endHour = hours.end->currentIndex()};
}

std::optional<std::filesystem::path> WindowExportDialogs::chooseOutput(const SavePanel& panel) {
    QFileDialog dialog(windowForDialogs(), text(panel.title), text(panel.directory.string()),
                       QStringLiteral("MP3 audio (*.mp3)"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("mp3"));
    dialog.selectFile(text(panel.nameField));
    showMessage(dialog, panel.message);
    dialog.setWindowTitle(panelTitle(panel, dialog.layout() != nullptr));
    while (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty()) {
        const std::filesystem::path typed(dialog.selectedFiles().constFirst().toStdString());
        const auto chosen = withMp3Suffix(typed);
        if (chosen == typed || !pathExists(chosen) || mayReplace(chosen)) return chosen;
    }
    return std::nullopt;
}

}  // namespace sonavault
