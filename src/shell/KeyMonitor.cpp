#include "shell/KeyMonitor.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QLineEdit>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace sonavault {
namespace {

/// Of a key that is known neither by its place nor by a character.
constexpr std::uint16_t kOtherKeyCode = 0xFFFF;

std::uint16_t keyCodeOf(int key) {
    switch (key) {
        case Qt::Key_Space:
            return kSpaceKeyCode;
        case Qt::Key_Left:
            return kLeftArrowKeyCode;
        case Qt::Key_Right:
            return kRightArrowKeyCode;
        default:
            return kOtherKeyCode;
    }
}

/// With Control held, a key's text is no letter any more; the key itself still is.
std::optional<std::string> characterOf(int key) {
    if (key <= Qt::Key_Space || key > Qt::Key_AsciiTilde) return std::nullopt;
    return std::string(1, static_cast<char>(key));
}

bool editsText() {
    const QWidget* focus = QApplication::focusWidget();
    return qobject_cast<const QLineEdit*>(focus) || qobject_cast<const QTextEdit*>(focus) ||
           qobject_cast<const QPlainTextEdit*>(focus) ||
           qobject_cast<const QAbstractSpinBox*>(focus);
}

/// The keyboard is in the menu bar, or in a list that is open before the window.
bool choosesFromMenu() {
    return QApplication::activePopupWidget() ||
           qobject_cast<const QMenuBar*>(QApplication::focusWidget());
}

/// Held down, an arrow goes on and on; anything else happens once.
bool repeats(KeyCommand command) {
    using enum KeyCommand;
    switch (command) {
        case previousHour:
        case nextHour:
        case tenSecondsBack:
        case tenSecondsOn:
        case previousMarker:
        case nextMarker:
        case undoLastChange:
            return true;
        default:
            return false;
    }
}

}  // namespace

KeyEvent keyEventOf(const QKeyEvent& event) {
    KeyEvent known{.keyCode = keyCodeOf(event.key()),
                   .charactersIgnoringModifiers = characterOf(event.key())};
    if (event.modifiers() & Qt::ShiftModifier) known.modifierFlags |= kShiftKeyMask;
    if (event.modifiers() & Qt::ControlModifier) known.modifierFlags |= kCommandKeyMask;
    return known;
}

KeyMonitor::KeyMonitor(const KeyResponderView& root, KeyCommandHost& host)
    : root_(root), host_(host) {
    QApplication::instance()->installEventFilter(this);
}

bool KeyMonitor::eventFilter(QObject* receiver, QEvent* event) {
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::ShortcutOverride)
        return false;
    const auto& key = *static_cast<QKeyEvent*>(event);
    const auto command = commandOf(receiver, key);
    if (!command) return false;
    event->accept();
    // Accepted here, the key is no menu's shortcut; it comes again as a plain press.
    if (event->type() == QEvent::KeyPress && (!key.isAutoRepeat() || repeats(*command)))
        perform(*command, host_);
    return true;
}

std::optional<KeyCommand> KeyMonitor::commandOf(QObject* receiver, const QKeyEvent& event) const {
    // A key goes to the system's window first, and from there to a widget.
    const auto* widget = qobject_cast<const QWidget*>(receiver);
    if (!widget || choosesFromMenu()) return std::nullopt;
    // An open menu hands the arrows on to the menu bar, which stands in the window.
    if (qobject_cast<const QMenuBar*>(widget)) return std::nullopt;
    return keyCommand(keyEventOf(event), {.editsText = editsText(),
                                          .activeTab = root_.activeTab(),
                                          .inMainWindow = widget->window() == root_.window()});
}

}  // namespace sonavault
