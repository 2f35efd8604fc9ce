#pragma once

#include <QColor>
#include <QRect>
#include <QRectF>
#include <QString>
#include <string_view>

#include "review/Colour.h"
#include "review/Geometry.h"

namespace sonavault {

// From the plain values of review to those of the window.

inline QColor toQColor(const Colour& colour) {
    return QColor::fromRgbF(static_cast<float>(colour.red), static_cast<float>(colour.green),
                            static_cast<float>(colour.blue), static_cast<float>(colour.alpha));
}

inline QRectF toQRectF(const Box& box) {
    return {box.x, box.y, box.width, box.height};
}

/// The whole pixels that a view of that frame takes: its edges stand on the nearest ones, so that
/// neighbours leave no gap and do not overlap.
inline QRect toQRect(const Box& box) {
    const int left = qRound(box.x);
    const int top = qRound(box.y);
    return {left, top, qRound(box.right()) - left, qRound(box.bottom()) - top};
}

inline QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace sonavault
