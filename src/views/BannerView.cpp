#include "views/BannerView.h"

#include <QPainter>

#include "review/WindowLayout.h"
#include "store/Version.h"
#include "views/FlatButton.h"
#include "views/Hints.h"
#include "views/Painting.h"
#include "views/PixelGrid.h"
#include "views/Theme.h"

namespace sonavault {
namespace {

constexpr QColor kColorBannerBG{235, 235, 239};
constexpr QColor kColorBannerStroke = kColorPanelStroke;

}  // namespace

BannerView::BannerView(QWidget* parent)
    : QWidget(parent),
      logo_(new LogoView(this)),
      title_(new TextView(QStringLiteral("Sonavault"), interfaceFont(36, QFont::Bold), kColorTitle,
                          this)),
      slogan_(new TextView(QStringLiteral("Your Station's Air Archive"),
                           interfaceFont(16, QFont::Medium), kColorSlogan, this)),
      helpButton_(new FlatButton(QStringLiteral("?"), interfaceFont(13), this)) {
    setSvHint(*logo_, QStringLiteral("Sonavault — your station's 24-hour air archive."));
    setSvHint(*title_, QStringLiteral("Sonavault %1 — Calderwave Systems.").arg(kSonavaultVersion));
    setSvHint(*slogan_, QStringLiteral("Sonavault records your on-air signal 24 hours a day."));
    setSvHint(*helpButton_, QStringLiteral("Open the Sonavault help page in your browser."));
    helpButton_->setAccessibleName(QStringLiteral("Help"));
    helpButton_->setObjectName(QStringLiteral("helpButton"));
    QObject::connect(helpButton_, &QAbstractButton::clicked, this, [this] {
        if (onHelpClicked) onHelpClicked();
    });
}

void BannerView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), kColorBannerBG);
    const QRectF stroke = toQRectF(layOutBanner(width()).stroke);
    painter.fillRect(PixelGrid(painter).snapped(stroke), kColorBannerStroke);
}

void BannerView::resizeEvent(QResizeEvent*) {
    const BannerLayout layout = layOutBanner(width());
    logo_->setGeometry(toQRect(layout.logo));
    title_->setGeometry(toQRect(layout.title));
    slogan_->setGeometry(toQRect(layout.slogan));
    helpButton_->setGeometry(toQRect(layout.helpButton));
}

}  // namespace sonavault
