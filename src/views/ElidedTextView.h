#pragma once

#include <QLabel>

namespace sonavault {

/// One line of plain text that is cut off at its end, with a mark that it is, where it does not
/// fit. A screen reader tells the whole.
///
/// Thread: main.
class ElidedTextView final : public QLabel {
  public:
    ElidedTextView(const QString& text, const QFont& font, const QColor& colour, QWidget* parent);

    /// Does nothing when the text is the same, so that it may be set at every tick.
    void showText(const QString& text);

    /// The width at which nothing is cut off. Units: pixels
    int textWidth() const;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace sonavault
