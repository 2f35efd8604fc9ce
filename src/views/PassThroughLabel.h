#pragma once

#include <QLabel>

namespace sonavault {

/// A text in up to two lines over something else, which goes on taking the pointer's events.
///
/// Thread: main.
class PassThroughLabel final : public QLabel {
  public:
    PassThroughLabel(const QFont& font, const QColor& colour, QWidget* parent);

    /// Without a text it is hidden.
    void showText(const QString& text);
};

}  // namespace sonavault
