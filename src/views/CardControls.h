#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>

namespace sonavault {

// The controls of a card, but for its buttons, which are those of the window. They paint
// themselves, so that they look the same on every desktop. A click never takes the keyboard from
// whatever has it, the text field's own excepted; who comes by the Tab key sees a ring around the
// control.

class CardCheckBox final : public QCheckBox {
  public:
    CardCheckBox(const QString& text, const QFont& font, QWidget* parent);

  protected:
    void paintEvent(QPaintEvent* event) override;
    bool hitButton(const QPoint& point) const override;
};

class CardRadioButton final : public QRadioButton {
  public:
    CardRadioButton(const QString& text, const QFont& font, QWidget* parent);

  protected:
    void paintEvent(QPaintEvent* event) override;
    bool hitButton(const QPoint& point) const override;
};

/// A list of which one item is chosen. The wheel is for scrolling past it.
class CardPopUp final : public QComboBox {
  public:
    CardPopUp(const QStringList& items, const QFont& font, QWidget* parent);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
};

class CardTextField final : public QLineEdit {
  public:
    CardTextField(const QString& placeholder, const QFont& font, QWidget* parent);
};

}  // namespace sonavault
