#pragma once

#include <QPointF>
#include <QWheelEvent>

namespace sonavault {

/// What the fingers or the wheel did: a touch pad's own measure, or 40 for each notch of a wheel.
/// Units: points
inline QPointF wheelPoints(const QWheelEvent& event) {
    constexpr double kNotch = 120;  // as Qt counts one
    constexpr double kPointsPerNotch = 40;
    if (!event.pixelDelta().isNull()) return event.pixelDelta();
    return QPointF(event.angleDelta()) / kNotch * kPointsPerNotch;
}

/// Makes whole points of parts of them, and loses none: a fine wheel gives few at a time.
class WholePoints {
  public:
    int take(double points) {
        rest_ += points;
        const int whole = static_cast<int>(rest_);
        rest_ -= whole;
        return whole;
    }

  private:
    double rest_ = 0;
};

}  // namespace sonavault
