#pragma once

#include <QJsonObject>
#include <optional>
#include <string>

namespace sonavault {

/// What the automation said of its playback: that it fell silent, was paused, plays again. Of a
/// text that is longer than what is shown of it, only the beginning is kept.
struct PlaybackEvent {
    std::string state;
    std::string cause;              ///< free text, may be empty
    std::optional<std::string> at;  ///< when it happened, ISO 8601, as the automation gave it
    std::string markerType;         ///< as it goes into the day's log
    std::string markerLabel;        ///< of at most kMostBytesOfForeignText

    /// Nothing when the payload names no state.
    static std::optional<PlaybackEvent> from(const QJsonObject& payload);
};

/// The line about a payload that names no state, fit to be printed.
std::string missingStateLine(const QJsonObject& payload);

/// The local wall clock "HH:MM:SS" of an ISO 8601 time, with or without fractional seconds, in
/// whatever zone it is told; nothing when it is none.
std::optional<std::string> hmsClockTimeFromIso(const std::string& text);

}  // namespace sonavault
