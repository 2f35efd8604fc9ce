#pragma once

#include <array>
#include <vector>

#include "platform/SampleMath.h"
#include "review/Colour.h"

namespace sonavault {

// The one scale of all level displays: the meters and the lights of today's row change their colour
// at the same two limits.

inline constexpr float kThresholdLow = -60;  ///< Units: dBFS
inline constexpr float kThresholdMed = -24;
inline constexpr float kThresholdHot = -18;

inline constexpr Colour kColorLEDLow = rgb(96, 137, 171);
inline constexpr Colour kColorLEDMed = rgb(168, 144, 120);
inline constexpr Colour kColorLEDHot = rgb(152, 134, 197);
inline constexpr Colour kColorLEDOff = whiteLevelColour(0.78);

/// The meter's scale, from its foot to its top.
struct MeterScale {
    static constexpr float floorDB = -60;  ///< Units: dBFS
    static constexpr float ceilDB = 0;

    static constexpr double zoneMain = 0.6;  ///< the lowest zone's share of the height
    static constexpr double zoneWarn = 0.1;  ///< the middle zone's; the top one has the rest

    static constexpr Colour idleMain = rgb(76, 92, 107);
    static constexpr Colour idleWarn = rgb(110, 99, 89);
    static constexpr Colour idleHot = rgb(107, 99, 128);
    static constexpr Colour litMain = kColorLEDLow;
    static constexpr Colour litWarn = kColorLEDMed;
    static constexpr Colour litHot = kColorLEDHot;
    static constexpr Colour outline = whiteLevelColour(0.1, 0.85);

    /// How far up the meter a level reaches. What is beyond the scale is at its nearer end, and
    /// what is no number at the foot. Range: 0 to 1. Units: dBFS
    static double fraction(float db);
};

/// A part of the meter in one colour. Range: 0, the foot, to 1, the top
struct MeterFill {
    double from = 0;
    double to = 0;
    Colour colour;
    bool operator==(const MeterFill&) const = default;
};

/// All that a meter is filled with, in the order of drawing: the three zones unlit, then as much of
/// them as the level lights.
std::vector<MeterFill> meterFills(float level);

/// Whether a meter that shows `shown` has to be drawn anew for `level`.
bool isVisibleChange(float shown, float level);

/// Which of the three lights of the input level are on, the lowest first.
using ClusterLights = std::array<bool, 3>;
ClusterLights clusterLights(float inputDb);

}  // namespace sonavault
