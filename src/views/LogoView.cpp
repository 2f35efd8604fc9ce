#include "views/LogoView.h"

#include <QEvent>
#include <QIcon>
#include <QLinearGradient>
#include <QPainter>
#include <array>

namespace sonavault {
namespace {

// All sizes of the emblem are shares of its side.
constexpr double kMastWidth = 0.05;
constexpr double kMastTop = 0.42;
constexpr double kMastFoot = 0.78;
constexpr double kBulb = 0.07;
constexpr double kWaveWidth = 0.045;
constexpr std::array kWaves{0.15, 0.25};
constexpr int kWaveDegrees = 80;

// A mast that sends waves to both sides.
void drawMast(QPainter& painter, double side) {
    const QPointF top(side / 2, kMastTop * side);
    const QPointF foot(side / 2, kMastFoot * side);
    painter.setPen(QPen(Qt::white, kMastWidth * side, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(top, foot);

    painter.setPen(QPen(Qt::white, kWaveWidth * side, Qt::SolidLine, Qt::RoundCap));
    for (const double wave : kWaves) {
        const double radius = wave * side;
        const QRectF circle(top - QPointF(radius, radius), QSizeF(2 * radius, 2 * radius));
        painter.drawArc(circle, -kWaveDegrees * 8, kWaveDegrees * 16);
        painter.drawArc(circle, (180 - kWaveDegrees / 2) * 16, kWaveDegrees * 16);
    }

    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawEllipse(top, kBulb * side, kBulb * side);
}

void drawEmblem(QPainter& painter, const QRectF& box) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(box.topLeft());
    QLinearGradient ground(0, 0, 0, box.height());
    ground.setColorAt(0, QColor(106, 154, 196));
    ground.setColorAt(1, QColor(38, 68, 102));
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawEllipse(QRectF(QPointF(0, 0), box.size()));
    drawMast(painter, box.width());
    painter.restore();
}

}  // namespace

LogoView::LogoView(QWidget* parent) : QWidget(parent) {
    setAccessibleName(QStringLiteral("Sonavault"));
}

void LogoView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QIcon icon = windowIcon();
    if (icon.isNull()) return drawEmblem(painter, rect());
    icon.paint(&painter, rect());
}

void LogoView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::WindowIconChange) update();
    QWidget::changeEvent(event);
}

}  // namespace sonavault
