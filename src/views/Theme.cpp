#include "views/Theme.h"

#include <cmath>

namespace sonavault {
namespace {

QFont font(const QStringList& families, QFont::StyleHint hint, int pixelSize,
           QFont::Weight weight) {
    QFont made;
    made.setFamilies(families);
    made.setStyleHint(hint);
    made.setPixelSize(pixelSize);
    made.setWeight(weight);
    return made;
}

}  // namespace

QColor whiteLevel(double white) {
    const int level = static_cast<int>(std::lround(white * 255));
    return {level, level, level};
}

QFont interfaceFont(int pixelSize, QFont::Weight weight) {
    return font({QStringLiteral("Inter"), QStringLiteral("sans-serif")}, QFont::SansSerif,
                pixelSize, weight);
}

QFont digitsFont(int pixelSize, QFont::Weight weight) {
    return font({QStringLiteral("JetBrains Mono"), QStringLiteral("monospace")}, QFont::Monospace,
                pixelSize, weight);
}

}  // namespace sonavault
