#include "views/TransportSymbol.h"

#include <QTransform>

namespace sonavault {
namespace {

QPainterPath rightwardTriangle(double left, double width, double height) {
    QPainterPath path;
    path.moveTo(left, -height / 2);
    path.lineTo(left + width, 0);
    path.lineTo(left, height / 2);
    path.closeSubpath();
    return path;
}

// A triangle looks centred when its centre of mass is nearly so.
QPainterPath play() {
    return rightwardTriangle(-5.5, 14, 17);
}

QPainterPath pause() {
    QPainterPath path;
    path.addRect(-6.5, -8, 4.5, 16);
    path.addRect(2, -8, 4.5, 16);
    return path;
}

QPainterPath next() {
    QPainterPath path = rightwardTriangle(-9, 8, 13);
    path.addPath(rightwardTriangle(-1, 8, 13));
    path.addRect(7, -6.5, 2.5, 13);
    return path;
}

QPainterPath leftBracket() {
    constexpr double kThick = 2.25;
    QPainterPath path;
    path.addRect(-3, -8.5, kThick, 17);
    path.addRect(-3 + kThick, -8.5, 6 - kThick, kThick);
    path.addRect(-3 + kThick, 8.5 - kThick, 6 - kThick, kThick);
    return path.simplified();
}

QPainterPath mirrored(const QPainterPath& path) {
    return QTransform::fromScale(-1, 1).map(path);
}

}  // namespace

QPainterPath transportSymbol(const QString& title) {
    if (title == QStringLiteral("⏮")) return mirrored(next());
    if (title == QStringLiteral("▶")) return play();
    if (title == QStringLiteral("⏸")) return pause();
    if (title == QStringLiteral("⏭")) return next();
    if (title == QStringLiteral("[")) return leftBracket();
    if (title == QStringLiteral("]")) return mirrored(leftBracket());
    return {};
}

}  // namespace sonavault
