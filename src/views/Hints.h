#pragma once

#include <QPoint>
#include <QString>
#include <QWidget>

namespace sonavault {

/// The hover text that a view bears; the status line shows it while the pointer is over the view.
/// Kept beside the view, so that any may bear one. It is also what a screen reader tells of it.
/// Empty: none.
void setSvHint(QWidget& view, const QString& text);
QString svHint(const QWidget& view);

/// A view that draws things which bear hover texts of their own.
class HintedPlaces {
  public:
    virtual ~HintedPlaces() = default;

    /// The text of what lies at `point` of the view; empty where only the view's own holds.
    virtual QString hintAt(QPoint point) const = 0;
};

}  // namespace sonavault
