#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "automation/StationMarker.h"
#include "platform/Result.h"

namespace sonavault::automation {

/// A message of any text, well-formed or not, behind its right length.
struct MarkerText {
    std::string payload;
    bool operator==(const MarkerText&) const = default;
};

/// Bytes as they are: a damaged frame, or a piece of one.
struct MarkerBytes {
    std::vector<std::uint8_t> bytes;
    bool operator==(const MarkerBytes&) const = default;
};

/// The marker link is closed, and opened again half a second later.
struct MarkerLinkDrop {
    bool operator==(const MarkerLinkDrop&) const = default;
};

/// Something to do on the marker link.
using MarkerOrder = std::variant<StationMarker, MarkerText, MarkerBytes, MarkerLinkDrop>;

/// Reads a line that a person types:
///
///   marker TYPE [duration=S] [clock=HH:MM:SS] [file=NAME] [test] [LABEL...]
///   marker-text TEXT      a message of just this text
///   marker-raw HEX...     these bytes and no length before them
///   marker-drop
///
/// The label is the rest of the line, as it stands, from the first word on that is no setting.
/// Nothing for any other line.
std::optional<MarkerOrder> parseMarkerOrder(const std::string& line);

/// An order and when it is due. Units: seconds since the program began.
struct TimedOrder {
    double second = 0;
    MarkerOrder order;
};

/// A plan of a marker order a line, each behind its second ("12.5 marker hour 14 o'clock"); empty
/// lines and lines that begin with # don't count. The result is in order of time. Errors: the first
/// line that does not read so.
Result<std::vector<TimedOrder>> parseMarkerScript(const std::string& text);

}  // namespace sonavault::automation
