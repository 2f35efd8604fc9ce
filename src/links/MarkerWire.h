#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "platform/Result.h"

namespace sonavault {

/// One event of the automation's day, as the automation told it. The wire is described in
/// docs/formats/marker-link.md.
struct MarkerWire {
    std::string type;              ///< an open vocabulary
    std::string clockTime;         ///< the automation's local time of the event, "HH:MM:SS"
    std::string wallClockIso8601;  ///< its wall clock when it sent this, with fractional seconds
    std::optional<std::string> label;
    std::optional<double> durationSec;  ///< how long the event lasts. Units: seconds
    std::optional<std::string> file;
    std::optional<bool> testMode;  ///< the event is a test

    bool operator==(const MarkerWire&) const = default;
};

/// The message in a frame's payload. Errors: words, when it is no JSON object, lacks a required
/// key, or has a known key of a wrong type. A null counts as absent; unknown keys are passed over.
Result<MarkerWire> decodeMarkerWire(std::span<const std::uint8_t> payload);

}  // namespace sonavault
