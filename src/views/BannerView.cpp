#include "views/BannerView.h"

#include <QPainter>

#include "review/WindowLayout.h"
#include "store/Version.h"
#include "views/DevicePixels.h"
#include "views/Hints.h"
#include "views/Painting.h"
#include "views/PlainButton.h"
#include "views/Theme.h"

namespace sonavault {
namespace {

constexpr QColor kColorBannerBG{235, 235, 239};
constexpr QColor kColorBannerStroke = kColorPanelStroke;

constexpr double kCorner = 6;

class HelpButton final : public PlainButton {
  public:
    explicit HelpButton(QWidget* parent) : PlainButton(QStringLiteral("Help"), parent) {
        setText(QStringLiteral("?"));
        setFont(interfaceFont(13));
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(whiteLevel(0.74), hairline(painter)));
        painter.setBrush(ground());
        painter.drawRoundedRect(outlineInside(painter, rect()), kCorner, kCorner);
        paintFocus(painter, kCorner - 2, whiteLevel(0.45));
        painter.setPen(kColorTitle);
        painter.drawText(rect(), Qt::AlignCenter, text());
    }

  private:
    QColor ground() const {
        if (isDown()) return whiteLevel(0.84);
        return isHovered() ? whiteLevel(0.97) : QColor(Qt::white);
    }
};

}  // namespace

BannerView::BannerView(QWidget* parent)
    : QWidget(parent),
      logo_(new LogoView(this)),
      title_(new TextView(QStringLiteral("Sonavault"), interfaceFont(36, QFont::Bold), kColorTitle,
                          this)),
      slogan_(new TextView(QStringLiteral("Your Station's Air Archive"),
                           interfaceFont(16, QFont::Medium), kColorSlogan, this)),
      helpButton_(new HelpButton(this)) {
    setSvHint(*logo_, QStringLiteral("Sonavault — your station's 24-hour air archive."));
    setSvHint(*title_, QStringLiteral("Sonavault %1 — Calderwave Systems.").arg(kSonavaultVersion));
    setSvHint(*slogan_, QStringLiteral("Sonavault records your on-air signal 24 hours a day."));
    setSvHint(*helpButton_, QStringLiteral("Open the Sonavault help page in your browser."));
    helpButton_->setObjectName(QStringLiteral("helpButton"));
    QObject::connect(helpButton_, &QAbstractButton::clicked, this, [this] {
        if (onHelpClicked) onHelpClicked();
    });
}

void BannerView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), kColorBannerBG);
    const QRectF stroke = toQRectF(layOutBanner(width()).stroke);
    painter.fillRect(onDevicePixels(painter, stroke), kColorBannerStroke);
}

void BannerView::resizeEvent(QResizeEvent*) {
    const BannerLayout layout = layOutBanner(width());
    logo_->setGeometry(toQRect(layout.logo));
    title_->setGeometry(toQRect(layout.title));
    slogan_->setGeometry(toQRect(layout.slogan));
    helpButton_->setGeometry(toQRect(layout.helpButton));
}

}  // namespace sonavault
