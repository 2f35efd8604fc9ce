#include "views/StatusBarView.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "review/WindowLayout.h"
#include "views/ButtonLook.h"
#include "views/Hints.h"
#include "views/Painting.h"
#include "views/PixelGrid.h"
#include "views/PlainButton.h"
#include "views/StatusSymbols.h"
#include "views/Theme.h"

namespace sonavault {
namespace {

static_assert(StatusBarView::kStatusBarHeight == kStatusBarHeight);

constexpr QColor kGround{0, 0, 0};
constexpr double kSpeakerSize = 24;
constexpr double kGearSize = 22;
constexpr double kProgressHeight = 2;
constexpr QColor kColorProgress{247, 199, 51};

class SpeakerView final : public QWidget {
  public:
    explicit SpeakerView(QWidget* parent) : QWidget(parent) {
        setAccessibleName(QStringLiteral("Status messages"));
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        paintSpeakerSymbol(painter, rect(), kSpeakerSize, kColorWaiting, kGround);
    }
};

class SettingsButton final : public PlainButton {
  public:
    explicit SettingsButton(QWidget* parent) : PlainButton(QStringLiteral("Settings"), parent) {}

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        paintGearSymbol(painter, rect(), kGearSize, tint());
        paintFocusRing(painter, *this, QRectF(rect()).adjusted(2, 2, -2, -2), 6, whiteLevel(0.78));
    }

  private:
    QColor tint() const {
        if (isDown()) return whiteLevel(0.55);
        return isHovered(*this) ? QColor(Qt::white) : whiteLevel(0.78);
    }
};

QColor colourOf(LinkState state) {
    switch (state) {
        case LinkState::connected:
            return kColorSystemGreen;
        case LinkState::notConnected:
            return kColorSystemRed;
        case LinkState::notInUse:
            break;
    }
    return whiteLevel(0.35);
}

QString wordsFor(LinkState state) {
    switch (state) {
        case LinkState::connected:
            return QStringLiteral("Cadenzo audio link: connected");
        case LinkState::notConnected:
            return QStringLiteral("Cadenzo audio link: not connected");
        case LinkState::notInUse:
            break;
    }
    return QStringLiteral("Cadenzo audio link: not in use");
}

}  // namespace

StatusBarView::StatusBarView(QWidget* parent)
    : QWidget(parent),
      speaker_(new SpeakerView(this)),
      text_(new ElidedTextView(interfaceFont(14), whiteLevel(0.78), Qt::AlignLeft, this)),
      hint_(new ElidedTextView(digitsFont(15), whiteLevel(0.6), Qt::AlignRight, this)),
      settings_(new SettingsButton(this)),
      connectionDot_(new DotView(12, colourOf(linkState_), this)) {
    setFixedHeight(kStatusBarHeight);
    hint_->showText(
        QStringLiteral("Space play • ←→ marker • [ ] selection • C clear • ⌘Z undo • E export • "
                       "A aircheck"));
    connectionDot_->setAccessibleName(wordsFor(linkState_));
    setHints();
    speaker_->setObjectName(QStringLiteral("statusBarSpeaker"));
    text_->setObjectName(QStringLiteral("statusBarText"));
    hint_->setObjectName(QStringLiteral("statusBarHint"));
    settings_->setObjectName(QStringLiteral("statusBarSettings"));
    connectionDot_->setObjectName(QStringLiteral("statusBarConnectionDot"));
    QObject::connect(settings_, &QAbstractButton::clicked, this, [this] {
        if (onSettingsClicked) onSettingsClicked();
    });
}

void StatusBarView::setHints() {
    setSvHint(*speaker_, QStringLiteral("Status messages appear to the right of this icon."));
    setSvHint(*hint_, QStringLiteral("Quick keyboard reference for the timeline."));
    setSvHint(*settings_, QStringLiteral("Open Settings — pick the recording quality."));
    setSvHint(*connectionDot_,
              QStringLiteral("Cadenzo audio link — green when connected, red when not."));
}

void StatusBarView::setStatusBarText(const std::string& text) {
    text_->showText(toQString(text));
}

std::string StatusBarView::statusBarText() const {
    return text_->text().toStdString();
}

void StatusBarView::showProgress(std::optional<double> fraction) {
    const QRectF before = progressFrame();
    const bool hadProgress = progress_.has_value();
    progress_ = fraction;
    if (before == progressFrame() && hadProgress == progress_.has_value()) return;
    update(0, 0, width(), static_cast<int>(kProgressHeight));
}

QRectF StatusBarView::progressFrame() const {
    // In this order, so that a share of nothing, which is no number, counts as none.
    const double fraction = std::min(1.0, std::max(0.0, progress_.value_or(0)));
    return {0, 0, std::round(fraction * width()), kProgressHeight};
}

void StatusBarView::showLinkState(LinkState state) {
    if (state == linkState_) return;
    linkState_ = state;
    connectionDot_->setColour(colourOf(state));
    connectionDot_->setAccessibleName(wordsFor(state));
}

void StatusBarView::showHint(const std::string& text) {
    if (!hintSnapshot_) hintSnapshot_ = text_->text();
    text_->showText(toQString(text));
}

void StatusBarView::restoreStatus() {
    if (!hintSnapshot_) return;
    text_->showText(*hintSnapshot_);
    hintSnapshot_.reset();
}

void StatusBarView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), kGround);
    if (!progress_) return;
    const QRectF track(0, 0, width(), kProgressHeight);
    painter.fillRect(PixelGrid(painter).snapped(track), whiteLevel(0.25));
    painter.fillRect(PixelGrid(painter).snapped(progressFrame()), kColorProgress);
}

void StatusBarView::resizeEvent(QResizeEvent*) {
    const StatusBarLayout layout = layOutStatusBar(width());
    speaker_->setGeometry(toQRect(layout.speaker));
    text_->setGeometry(toQRect(layout.text));
    hint_->setGeometry(toQRect(layout.hint));
    settings_->setGeometry(toQRect(layout.settings));
    connectionDot_->setGeometry(toQRect(layout.connectionDot));
}

}  // namespace sonavault
