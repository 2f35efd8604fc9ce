#pragma once

#include <optional>
#include <vector>

#include "store/RecordingModel.h"

namespace sonavault {

/// A marker this near the playhead is where one stands already. Units: seconds
inline constexpr double kMarkerDeadZoneSec = 0.5;

/// The next marker after the playhead (`direction` above 0) or the one before it, of all lanes;
/// nothing when there is none. `markers` may stand in any order.
std::optional<DaySeconds> markerFrom(const std::vector<Marker>& markers, DaySeconds playhead,
                                     int direction);

/// The full hour `delta` hours from the one in which the playhead stands; may lie outside the day.
DaySeconds hourFrom(DaySeconds playhead, int delta);

/// What navigation needs of the program around it.
///
/// Thread: main.
class DayNavigationHost {
  public:
    virtual ~DayNavigationHost() = default;

    virtual DaySeconds playheadSec() const = 0;
    virtual const std::vector<Marker>& allMarkers() const = 0;

    /// Moves the playhead, limited to the day, and plays on there if it was playing.
    virtual void jumpTo(DaySeconds position) = 0;
};

/// The jumps that are told from where the playhead stands.
///
/// Thread: main.
class DayNavigation {
  public:
    /// `host` outlives this object.
    explicit DayNavigation(DayNavigationHost& host) : host_(host) {}

    /// To the next marker, above 0, or else the previous; nothing happens when there is none.
    void jumpToMarker(int direction);
    void jumpRelative(double seconds);
    void jumpRelativeHour(int delta);

  private:
    DayNavigationHost& host_;
};

}  // namespace sonavault
