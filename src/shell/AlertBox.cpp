#include "shell/AlertBox.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>

#include "shell/ApplicationIcon.h"
#include "views/Theme.h"

namespace sonavault {
namespace {

constexpr int kIconSize = 64;
constexpr int kMargin = 20;
constexpr int kLeastTextWidth = 340;

void showIcon(QMessageBox& box, const Alert& alert) {
    if (alert.style == Alert::warning && !alert.showsApplicationIcon)
        box.setIcon(QMessageBox::Warning);
    else
        box.setIconPixmap(applicationIcon().pixmap(kIconSize, kIconSize));
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

QWidget* windowForDialogs() {
    if (QWidget* active = QApplication::activeWindow()) return active;
    for (QWidget* each : QApplication::topLevelWidgets())
        if (qobject_cast<QMainWindow*>(each) && each->isVisible()) return each;
    return nullptr;
}

AlertBox::AlertBox(const Alert& alert) : QMessageBox(windowForDialogs()) {
    showIcon(*this, alert);
    setWindowTitle(QStringLiteral("Sonavault"));
    // What is quoted in a message, such as a file's name, must not be taken for markup.
    setTextFormat(Qt::PlainText);
    setText(alert.message);
    setInformativeText(alert.information);
    for (auto* label : findChildren<QLabel*>()) label->setTextFormat(Qt::PlainText);
    setType(*this);
    for (const auto& title : alert.buttons)
        buttons_.append(addButton(title, QMessageBox::ActionRole));
    setDefaultButton(buttons_.first());
    setEscapeButton(buttons_.last());
}

void AlertBox::addAccessory(QWidget* view) {
    auto* rows = qobject_cast<QGridLayout*>(layout());
    auto* buttons = findChild<QDialogButtonBox*>();
    if (!rows || !buttons) {
        // A box of another make: below everything the view can still be seen and used.
        view->setParent(this);
        if (layout()) layout()->addWidget(view);
        return;
    }
    rows->removeWidget(buttons);
    const int row = rows->rowCount();
    rows->addWidget(view, row, 0, 1, rows->columnCount(), Qt::AlignHCenter);
    rows->addWidget(buttons, row + 1, 0, 1, rows->columnCount());
}

int AlertBox::showModally() {
    exec();
    for (int index = 0; index < buttons_.size(); ++index)
        if (buttons_[index] == clickedButton()) return index;
    return static_cast<int>(buttons_.size()) - 1;
}

}  // namespace sonavault
