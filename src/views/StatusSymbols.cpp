#include "views/StatusSymbols.h"

#include <QPainterPath>
#include <cmath>
#include <numbers>

namespace sonavault {
namespace {

// Both are drawn in a field of this side and scaled from there.
constexpr double kField = 24;

constexpr int kTeeth = 8;
constexpr double kToothTip = 10.8;
constexpr double kToothFoot = 8.4;
constexpr double kHole = 3.7;

/// Lets the field lie centred in `box`, `size` high.
void enterField(QPainter& painter, const QRectF& box, double size) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.translate(box.center());
    painter.scale(size / kField, size / kField);
}

QPainterPath speakerBody() {
    QPainterPath path;
    path.moveTo(-10.5, -3.4);
    path.lineTo(-6.6, -3.4);
    path.lineTo(-0.8, -8.6);
    path.lineTo(-0.8, 8.6);
    path.lineTo(-6.6, 3.4);
    path.lineTo(-10.5, 3.4);
    path.closeSubpath();
    return path;
}

void drawWaves(QPainter& painter, const QColor& colour) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colour, 1.9, Qt::SolidLine, Qt::RoundCap));
    for (const double radius : {4.6, 8.6}) {
        painter.drawArc(QRectF(-1.6 - radius, -radius, 2 * radius, 2 * radius), -45 * 16, 90 * 16);
    }
    painter.setPen(Qt::NoPen);
}

void drawBadge(QPainter& painter, const QColor& colour, const QColor& ground) {
    const QPointF centre(6.2, 5.6);
    painter.setBrush(ground);
    painter.drawEllipse(centre, 6.9, 6.9);
    painter.setBrush(colour);
    painter.drawEllipse(centre, 5.4, 5.4);
    painter.setBrush(ground);
    painter.drawRoundedRect(QRectF(centre.x() - 0.85, centre.y() - 3.4, 1.7, 4.2), 0.8, 0.8);
    painter.drawEllipse(centre + QPointF(0, 2.5), 1, 1);
}

// One tooth: up its flank, along its tip, down again, along the foot to the next.
QPainterPath gearShape() {
    QPainterPath path;
    constexpr double kPitch = 2 * std::numbers::pi / kTeeth;
    const auto at = [](double radius, double angle) {
        return QPointF(radius * std::sin(angle), -radius * std::cos(angle));
    };
    for (int tooth = 0; tooth < kTeeth; ++tooth) {
        const double middle = tooth * kPitch;
        const QPointF start = at(kToothFoot, middle - 0.29 * kPitch);
        if (tooth == 0)
            path.moveTo(start);
        else
            path.lineTo(start);
        path.lineTo(at(kToothTip, middle - 0.17 * kPitch));
        path.lineTo(at(kToothTip, middle + 0.17 * kPitch));
        path.lineTo(at(kToothFoot, middle + 0.29 * kPitch));
    }
    path.closeSubpath();
    path.addEllipse(QPointF(0, 0), kHole, kHole);
    path.setFillRule(Qt::OddEvenFill);
    return path;
}

}  // namespace

void paintSpeakerSymbol(QPainter& painter, const QRectF& box, double size, const QColor& colour,
                        const QColor& ground) {
    painter.save();
    enterField(painter, box, size);
    painter.setPen(QPen(colour, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(colour);
    painter.drawPath(speakerBody());
    drawWaves(painter, colour);
    drawBadge(painter, colour, ground);
    painter.restore();
}

void paintGearSymbol(QPainter& painter, const QRectF& box, double size, const QColor& colour) {
    painter.save();
    enterField(painter, box, size);
    painter.setPen(QPen(colour, 0.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(colour);
    painter.drawPath(gearShape());
    painter.restore();
}

}  // namespace sonavault
