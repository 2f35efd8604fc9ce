#include "shell/Alerts.h"

#include <QApplication>
#include <QLabel>
#include <QLayout>
#include <QMessageBox>
#include <QPushButton>

#include "shell/ApplicationIcon.h"
#include "views/Theme.h"

namespace sonavault {
namespace {

constexpr int kIconSize = 64;
constexpr int kMargin = 20;
constexpr int kLeastTextWidth = 340;

void setIcon(QMessageBox& box, const Alert& alert) {
    if (alert.showsApplicationIcon)
        box.setIconPixmap(applicationIcon().pixmap(kIconSize, kIconSize));
    else
        box.setIcon(alert.style == Alert::warning ? QMessageBox::Warning
                                                  : QMessageBox::Information);
}

/// The message stands out from what is said about it.
void setType(QMessageBox& box) {
    if (auto* message = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))) {
        message->setFont(interfaceFont(14, QFont::DemiBold));
        message->setMinimumWidth(kLeastTextWidth);
    }
    box.layout()->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
}

}  // namespace

int MessageBoxAlerts::showModally(const Alert& alert) {
    QMessageBox box(QApplication::activeWindow());
    setIcon(box, alert);
    box.setWindowTitle(QStringLiteral("Sonavault"));
    // What is quoted in a message, such as a file's name, must not be taken for markup.
    box.setTextFormat(Qt::PlainText);
    box.setText(alert.message);
    box.setInformativeText(alert.information);
    setType(box);
    QList<QAbstractButton*> buttons;
    for (const auto& title : alert.buttons)
        buttons.append(box.addButton(title, QMessageBox::ActionRole));
    box.setDefaultButton(static_cast<QPushButton*>(buttons.first()));
    box.setEscapeButton(buttons.last());
    box.exec();
    return static_cast<int>(buttons.indexOf(box.clickedButton()));
}

}  // namespace sonavault
