#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pastdays/Piece.h"

namespace sonavault::pastdays {

/// A stretch without sound. Units: seconds of the day
struct Outage {
    double from = 0;
    double to = 0;
    /// Whether the automation went on, silent, and told of it; otherwise nothing ran that could
    /// have sent or logged a marker.
    bool told = true;
};

/// What a day is to be like.
struct DayOutline {
    double startSec = 0;          ///< the moment of frame 0. Units: seconds since midnight
    double endSec = 86400;        ///< Range: above startSec, up to 86400
    std::vector<Outage> outages;  ///< in order, apart, within the day
    bool onlyHourMarks = false;
    unsigned seed = 0;
};

/// What is known of a piece when a day is planned.
struct PieceShape {
    PieceKind kind = PieceKind::silence;
    std::int64_t frames = 0;
};

/// The first frames of a piece.
struct PieceUse {
    std::size_t piece = 0;
    std::int64_t frames = 0;
};

/// A row of the day's marker log.
struct LoggedMarker {
    int second = 0;  ///< of the day
    std::string type;
    std::string label;
    double durationSec = 0;

    bool operator==(const LoggedMarker&) const = default;
};

/// What is on the air from the first frame to the last, and the markers that belong to it, in order
/// of time.
struct DayPlan {
    std::vector<PieceUse> uses;
    std::vector<LoggedMarker> markers;
    std::int64_t frames = 0;  ///< as many as end before the day's end
};

/// A running order with the hours of a station: many open microphones in the morning and the
/// afternoon, voicetracks in the evening, quiet songs at night; each hour begins on its second. The
/// same arguments give the same plan.
///
/// Range of `pieces`: at least one of each kind; of silence only the first frame is used.
DayPlan planDay(const DayOutline& outline, const std::vector<PieceShape>& pieces, double frameSec);

std::vector<PieceShape> shapesOf(const std::vector<Piece>& pieces);

}  // namespace sonavault::pastdays
