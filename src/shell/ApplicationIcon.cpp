#include "shell/ApplicationIcon.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPixmap>
#include <array>

namespace sonavault {
namespace {

constexpr std::array kSizes{16, 24, 32, 48, 64, 128, 256};

// The bars of the wave, as shares of the badge's height.
constexpr std::array kBars{0.18, 0.38, 0.56, 0.30, 0.46, 0.24};
constexpr double kBarWidth = 0.065;
constexpr double kBarStep = 0.105;

void drawBadge(QPainter& painter, double size) {
    QLinearGradient ground(0, 0, 0, size);
    ground.setColorAt(0, QColor(106, 154, 196));
    ground.setColorAt(1, QColor(38, 68, 102));
    painter.setBrush(ground);
    painter.drawEllipse(
        QRectF(0, 0, size, size).adjusted(size / 64, size / 64, -size / 64, -size / 64));
}

void drawWave(QPainter& painter, double size) {
    painter.setBrush(Qt::white);
    const double width = kBarWidth * size;
    double x = (size - (kBarStep * (kBars.size() - 1) * size + width)) / 2;
    for (const double share : kBars) {
        const double height = share * size;
        painter.drawRoundedRect(QRectF(x, (size - height) / 2, width, height), width / 2,
                                width / 2);
        x += kBarStep * size;
    }
}

QPixmap drawn(int size) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    drawBadge(painter, size);
    drawWave(painter, size);
    return pixmap;
}

}  // namespace

QIcon applicationIcon() {
    QIcon icon;
    for (const int size : kSizes) icon.addPixmap(drawn(size));
    return icon;
}

}  // namespace sonavault
