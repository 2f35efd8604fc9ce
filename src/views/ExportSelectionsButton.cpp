#include "views/ExportSelectionsButton.h"

#include <QPainter>

#include "views/ButtonLook.h"
#include "views/Theme.h"

namespace sonavault {
namespace {

constexpr double kRadius = 8;

// How far the shadow reaches beyond the button on every side.
constexpr int kShadowReach = 6;

const QColor kColorExportGold = QColor::fromRgbF(0.97F, 0.78F, 0.2F);
const QColor kColorExportGoldDark = QColor::fromRgbF(0.78F, 0.55F, 0.1F);

// A view of its own below the button, because a view cannot paint beyond its frame, and the
// button's frame is what can be clicked.
class ButtonShadow final : public QWidget {
  public:
    explicit ButtonShadow(QWidget* parent) : QWidget(parent) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        hide();
    }

  protected:
    // Many faint layers, each smaller than the last, add up to a soft edge.
    void paintEvent(QPaintEvent*) override {
        constexpr double kOpacity = 0.18;
        constexpr double kBlur = 3;
        constexpr double kDown = 1;
        constexpr int kLayers = 8;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor::fromRgbF(0, 0, 0, static_cast<float>(kOpacity / kLayers)));
        const QRectF button =
            QRectF(rect())
                .adjusted(kShadowReach, kShadowReach, -kShadowReach, -kShadowReach)
                .translated(0, kDown);
        for (int i = 0; i < kLayers; ++i) {
            const double out = kBlur - 2 * kBlur * i / (kLayers - 1);
            painter.drawRoundedRect(button.adjusted(-out, -out, out, out), kRadius + out,
                                    kRadius + out);
        }
    }
};

QColor ground(const QAbstractButton& button) {
    if (button.isDown()) return QColor::fromRgbF(0.9F, 0.69F, 0.14F);
    return isHovered(button) ? QColor::fromRgbF(0.99F, 0.83F, 0.33F) : kColorExportGold;
}

}  // namespace

ExportSelectionsButton::ExportSelectionsButton(QWidget* parent)
    : PlainButton(QStringLiteral("Export selections to file"), parent),
      shadow_(new ButtonShadow(parent)) {
    setText(accessibleName());
    setFont(interfaceFont(14, QFont::DemiBold));
    hide();
}

void ExportSelectionsButton::raiseWithShadow() {
    raise();
    shadow_->stackUnder(this);
}

void ExportSelectionsButton::paintEvent(QPaintEvent*) {
    paintTitleButton(*this, {ground(*this), kColorExportGoldDark, whiteLevel(0.15)}, kRadius - 0.5);
}

void ExportSelectionsButton::placeShadow() {
    shadow_->setGeometry(
        geometry().adjusted(-kShadowReach, -kShadowReach, kShadowReach, kShadowReach));
}

void ExportSelectionsButton::moveEvent(QMoveEvent*) {
    placeShadow();
}

void ExportSelectionsButton::resizeEvent(QResizeEvent* event) {
    PlainButton::resizeEvent(event);
    placeShadow();
}

void ExportSelectionsButton::setVisible(bool visible) {
    PlainButton::setVisible(visible);
    shadow_->setVisible(visible);
}

}  // namespace sonavault
