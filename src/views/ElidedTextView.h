#pragma once

#include <QLabel>

namespace sonavault {

/// One line of plain text that ends in "…" where it does not fit. A screen reader has all of it.
///
/// Thread: main.
class ElidedTextView final : public QLabel {
  public:
    ElidedTextView(const QFont& font, const QColor& colour, Qt::Alignment alignment,
                   QWidget* parent);

    /// Does nothing when the text is the same.
    void showText(const QString& text);

    /// What fits of it at the present width.
    QString visibleText() const;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace sonavault
