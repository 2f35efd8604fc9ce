#pragma once

#include <QLabel>

namespace sonavault {

/// A text in up to two lines over something else, which goes on taking the pointer's events. Where
/// two do not hold it the second ends in "…"; a screen reader has all of it.
///
/// Thread: main.
class PassThroughLabel final : public QLabel {
  public:
    PassThroughLabel(const QFont& font, const QColor& colour, QWidget* parent);

    /// Without a text it is hidden.
    void showText(const QString& text);

    /// What is seen of it at the present width.
    QStringList visibleLines() const;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace sonavault
