#pragma once

#include <string>
#include <vector>

#include "automation/StationMarker.h"
#include "platform/Clock.h"

namespace sonavault::automation {

/// What is on the air for a while.
enum class ItemKind {
    talk,  ///< somebody at the live microphone
    song,
    adBreak,
    voicetrack,  ///< somebody who spoke earlier
    alert
};

/// One item of an hour. Units: whole seconds, counted from the top of the hour
struct RundownItem {
    ItemKind kind = ItemKind::song;
    int start = 0;
    int length = 0;
    std::string label;

    int end() const { return start + length; }
};

/// A marker of the programme and the moment it belongs to.
struct Cue {
    WallTime at;
    StationMarker marker;
};

/// The programme's running order: what is on the air at each moment of any day, and the markers
/// that go with it. Hours are those of the local clock; the same seed gives the same hours.
class Rundown {
  public:
    explicit Rundown(unsigned seed) : seed_(seed) {}

    struct OnAir {
        ItemKind kind = ItemKind::song;
        WallTime end;
    };
    OnAir at(WallTime moment);

    /// The markers from `from` up to `to`, `to` excluded, in order of time.
    std::vector<Cue> cues(WallTime from, WallTime to);

  private:
    const std::vector<RundownItem>& itemsOf(WallTime topOfHour);

    const unsigned seed_;
    WallTime hour_;
    std::vector<RundownItem> items_;
};

/// The items of one hour, back to back from its first second to its last.
std::vector<RundownItem> makeHour(long long hoursSince1970, unsigned seed);

}  // namespace sonavault::automation
