#pragma once

#include <optional>
#include <string>

#include "platform/Clock.h"

namespace sonavault {

/// Switches on the lines that time the road of a marker against the sound that it announces.
inline constexpr bool kVerboseTimingDiagnostics = true;

/// The level above which a buffer counts as not silent. Units: dBFS
inline constexpr float kNonSilentDbFS = -50.0F;

/// How long the watch waits for sound. Units: seconds
inline constexpr double kNonSilentWatchTimeout = 5.0;

/// After a live microphone was announced, waits for the first buffer that is not silent.
struct NonSilentWatch {
    WallTime armedAt;
    std::string emitClockTime;  ///< the sender's clock in the announcement
};

/// The line with which the watch ends at a buffer of level `db`, or nothing while it goes on.
std::optional<std::string> watchVerdict(const NonSilentWatch& watch, WallTime now, float db);

}  // namespace sonavault
