#include "shell/StatusBarView.h"

#include "views/Theme.h"

namespace sonavault {
namespace {

constexpr int kTextLeft = 16;
constexpr int kTextHeight = 20;
constexpr int kDotSize = 12;
constexpr int kDotFromRight = 24;
constexpr int kTextToDot = 16;

}  // namespace

StatusBarView::StatusBarView(QWidget* parent)
    : QWidget(parent),
      text_(new TextView(QString(), interfaceFont(14), whiteLevel(0.78), this)),
      dot_(new DotView(kDotSize, kColorSystemRed, this)) {
    setFixedHeight(kStatusBarHeight);
    setAutoFillBackground(true);
    setPalette(QPalette(Qt::black));
    text_->setObjectName(QStringLiteral("statusBarText"));
    dot_->setObjectName(QStringLiteral("statusBarConnectionDot"));
}

void StatusBarView::resizeEvent(QResizeEvent*) {
    const int dotLeft = width() - kDotFromRight;
    dot_->move(dotLeft, (height() - kDotSize) / 2);
    text_->setGeometry(kTextLeft, (height() - kTextHeight) / 2, dotLeft - kTextToDot - kTextLeft,
                       kTextHeight);
}

}  // namespace sonavault
