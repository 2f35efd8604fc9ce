#pragma once

#include <string>

#include "platform/Format.h"

namespace sonavault {

// What recordings take on disk, as the settings tell it. Units: megabytes of 1024 kilobytes

/// "1 hour ≈ 10.5 MB"
inline std::string hourEstimate(double oneHourMB) {
    return "1 hour ≈ " + fixedPoint(oneHourMB, 1) + " MB";
}

/// "1 day ≈ 253 MB", in gigabytes from 1024 on.
inline std::string dayEstimate(double oneHourMB) {
    const double dayMB = oneHourMB * 24;
    return dayMB >= 1024 ? "1 day ≈ " + fixedPoint(dayMB / 1024, 2) + " GB"
                         : "1 day ≈ " + fixedPoint(dayMB, 0) + " MB";
}

}  // namespace sonavault
