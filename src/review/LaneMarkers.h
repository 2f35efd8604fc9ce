#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "review/Geometry.h"
#include "store/RecordingModel.h"

namespace sonavault {

/// Finds the markers of a lane that lie in a part of it, so that drawing and pointing cost what is
/// seen and not what the day holds. It knows nothing of the zoom: one object serves a list of
/// markers for as long as the list stays.
///
/// Thread: main.
class LaneMarkers {
  public:
    LaneMarkers() = default;

    /// `markers` outlives this object, and stays as it is.
    explicit LaneMarkers(const std::vector<Marker>& markers);

    /// The markers whose frames reach into `exposed` of a lane of `size`, bottom first: a marker
    /// that stands later in the list lies on top.
    std::vector<const Marker*> exposed(Lane lane, Size size, Extent exposed) const;

    /// The uppermost marker whose frame holds `point` of a lane of `size`; null where there is
    /// none. The frame counts as a whole, with what is not painted of it.
    const Marker* at(Lane lane, Size size, Point point) const;

  private:
    /// A marker, and how far it and those before it in the lane reach.
    struct Entry {
        const Marker* marker;
        double reachesTo;  ///< Units: seconds
    };

    std::vector<Entry>& row(Lane lane) { return rows_.at(static_cast<std::size_t>(lane)); }

    std::array<std::vector<Entry>, 6> rows_;  ///< by lane, each in the order of time
};

}  // namespace sonavault
