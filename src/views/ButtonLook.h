#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QPainter>

namespace sonavault {

// How the flat buttons of the bars look in each of their states. The desktop's style has no say.

/// What is on, and what matters most.
inline constexpr QColor kColorAccent{74, 112, 139};

struct ButtonLook {
    QColor ground;
    QColor border;
    QColor content;  ///< its text or symbol
};

/// As the pointer, the keyboard and the program leave it at the moment. `emphasised`: it is on, or
/// the one that matters most.
ButtonLook buttonLook(const QAbstractButton& button, bool emphasised);

/// Whether the person came to it with the keyboard and has to see where it is.
bool showsFocus(const QWidget& view);

/// Ground, border and, while it has the keyboard, a ring within `button`.
void paintButtonBody(QPainter& painter, const QAbstractButton& button, const ButtonLook& look,
                     double radius);

}  // namespace sonavault
