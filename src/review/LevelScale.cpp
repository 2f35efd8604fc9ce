#include "review/LevelScale.h"

#include <algorithm>
#include <cmath>

namespace sonavault {
namespace {

constexpr double kLeastVisibleDb = 0.05;

struct Zone {
    double from;
    double to;
    Colour idle;
    Colour lit;
};

constexpr double kMainEnd = MeterScale::zoneMain;
constexpr double kWarnEnd = MeterScale::zoneMain + MeterScale::zoneWarn;

constexpr std::array kZones{Zone{0, kMainEnd, MeterScale::idleMain, MeterScale::litMain},
                            Zone{kMainEnd, kWarnEnd, MeterScale::idleWarn, MeterScale::litWarn},
                            Zone{kWarnEnd, 1, MeterScale::idleHot, MeterScale::litHot}};

}  // namespace

double MeterScale::fraction(float db) {
    if (!(db > floorDB)) return 0;
    const double shown = std::min(db, ceilDB);
    return (shown - floorDB) / (ceilDB - floorDB);
}

std::vector<MeterFill> meterFills(float level) {
    const double top = MeterScale::fraction(level);
    std::vector<MeterFill> fills;
    fills.reserve(2 * kZones.size());
    for (const Zone& each : kZones) fills.push_back({each.from, each.to, each.idle});
    for (const Zone& each : kZones)
        if (top > each.from) fills.push_back({each.from, std::min(top, each.to), each.lit});
    return fills;
}

bool isVisibleChange(float shown, float level) {
    return std::abs(static_cast<double>(level) - shown) > kLeastVisibleDb;
}

ClusterLights clusterLights(float inputDb) {
    return {inputDb >= kThresholdLow, inputDb >= kThresholdMed, inputDb >= kThresholdHot};
}

}  // namespace sonavault
