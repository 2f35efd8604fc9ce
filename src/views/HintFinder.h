#pragma once

#include <QPoint>
#include <QString>
#include <QWidget>

namespace sonavault {

/// A view and the hover text that it has at the place in question.
struct HintedView {
    const QWidget* view = nullptr;  ///< null: nothing there has one
    QString text;

    bool operator==(const HintedView&) const = default;
};

/// The innermost, frontmost view with a hover text at `point` of `view`, also among views that let
/// the mouse through. What is hidden has none.
HintedView findHinted(QPoint point, const QWidget& view);

}  // namespace sonavault
