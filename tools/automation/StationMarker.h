#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/Clock.h"

namespace sonavault::automation {

/// An event of the station's day, as the automation tells the recorder of it.
struct StationMarker {
    std::string type;
    std::string label;                  ///< UTF-8; an empty one is left out of the message
    std::optional<double> durationSec;  ///< Range: finite
    std::string clockTime;              ///< "HH:MM:SS"; empty: the local time of the event
    std::string file;                   ///< what is played; an empty one is left out
    bool testMode = false;

    bool operator==(const StationMarker&) const = default;
};

/// The message of a marker: one line of JSON in UTF-8. `event` is when it happened, `emission` when
/// it is told.
std::string markerPayload(const StationMarker& marker, WallTime event, WallTime emission);

/// A message behind its length, as it goes over the wire.
std::vector<std::uint8_t> markerFrame(std::span<const char> payload, bool bigEndian);

}  // namespace sonavault::automation
