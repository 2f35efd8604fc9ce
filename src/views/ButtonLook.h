#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QPainter>

namespace sonavault {

// How the window's buttons look in each of their states. The desktop's style has no say.

/// The ground of what is on, and of what matters most.
inline constexpr QColor kColorButtonOn{74, 112, 139};

struct ButtonLook {
    QColor ground;
    QColor border;
    QColor content;  ///< its text or symbol
};

/// Whether the pointer is on it and a click would do something.
bool isHovered(const QAbstractButton& button);

/// As the pointer, the keyboard and the program leave it at the moment. `emphasised`: it is on, or
/// the one that matters most.
ButtonLook buttonLook(const QAbstractButton& button, bool emphasised);

/// Whether the person came to it with the keyboard and has to see where it is.
bool showsFocus(const QWidget& view);

/// A ring within `box`, the view or a part of it, if showsFocus().
void paintFocusRing(QPainter& painter, const QWidget& view, const QRectF& box, double radius,
                    const QColor& colour);

/// Ground, border and, while it has the keyboard, a ring within `button`.
void paintButtonBody(QPainter& painter, const QAbstractButton& button, const ButtonLook& look,
                     double radius);

/// All of a button that has a title: its body, and the title in the middle.
void paintTitleButton(QAbstractButton& button, const ButtonLook& look, double radius);

}  // namespace sonavault
