#pragma once

#include <QLabel>

namespace sonavault {

/// One line of plain text in a face of its own, which reads the same to the eye and to a
/// screen reader.
class TextView final : public QLabel {
  public:
    TextView(const QString& text, const QFont& font, const QColor& colour, QWidget* parent);

    /// Does nothing when the text is the same, so that it may be set at every tick.
    void showText(const QString& text);

    /// Likewise.
    void setColour(const QColor& colour);
};

}  // namespace sonavault
