#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "store/RecordingModel.h"

namespace sonavault {

/// A stretch of the day that markers tell of. Both its ends belong to it.
struct MarkedSegment {
    std::string type;  ///< "vt", "break" or "mic"
    double startSec;   ///< Units: seconds of the day
    double endSec;
    std::string label;
};

/// The segments of a day: the markers of type "vt", "break" and "mic" themselves, and the pairs of
/// a start with the end that follows it. A start without an end tells of none.
std::vector<MarkedSegment> markedSegments(const std::vector<Marker>& markers);

/// "Now playing: {word} — {label}", or what a station plays where nothing is marked.
std::string nowPlayingText(const MarkedSegment* segment);

/// In which marked segment the playhead stands, asked twenty times a second.
///
/// Thread: main.
class NowPlaying {
  public:
    NowPlaying() = default;

    /// The day's markers as they are now. To be made afresh when they have changed.
    explicit NowPlaying(const std::vector<Marker>& markers);

    /// The segment that began last of those that hold `playhead`; null for none.
    const MarkedSegment* at(DaySeconds playhead) const;

  private:
    std::vector<MarkedSegment> segments_;  ///< in the order of their starts
    std::vector<double> reach_;            ///< how far each and those before it reach
};

}  // namespace sonavault
