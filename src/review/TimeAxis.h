#pragma once

#include <optional>
#include <string>
#include <vector>

#include "review/Colour.h"
#include "review/Geometry.h"

namespace sonavault {

inline constexpr Colour kColorTimeAxisBG = rgb(244, 244, 242);
inline constexpr Colour kColorTimeAxisTick = rgb(200, 200, 197);
inline constexpr Colour kColorTimeAxisText = whiteLevelColour(0.35);
inline constexpr Colour kColorTimeAxisRule = {0, 0, 0, 0.1};  ///< along the axis's upper edge

/// From one tick to the next. Units: seconds
double tickStep(double zoomMult);

/// Labels grow as one zooms in. Units: points
double axisFontSize(double zoomMult);

/// The label of a tick at `second` in the form that belongs to a zoom factor, with seconds where
/// the ticks stand closer than a minute.
std::string axisLabelText(double second, double zoomMult);

struct AxisLabel {
    std::string text;
    Point at;  ///< its upper left corner
    bool operator==(const AxisLabel&) const = default;
};

struct AxisTick {
    Box line;
    std::optional<AxisLabel> label;  ///< none where it would run into its neighbour
};

/// The ticks to be drawn in `exposed`, and those whose labels reach into it. `labelWidth` is the
/// width of the label of 0 and stands for that of all.
std::vector<AxisTick> timeAxisTicks(double zoomMult, Size size, double labelWidth, Extent exposed);

}  // namespace sonavault
