#pragma once

#include <optional>
#include <string>
#include <vector>

#include "review/Geometry.h"
#include "review/NowPlaying.h"
#include "store/RecordingModel.h"

namespace sonavault {

/// What the playhead's place is shown on.
///
/// Thread: main.
class PlayheadDisplayHost {
  public:
    virtual ~PlayheadDisplayHost() = default;

    virtual DaySeconds playheadSec() const = 0;

    /// The size of the axis that the playhead runs on; nothing while there is no timeline.
    virtual std::optional<Size> timelineSize() const = 0;

    virtual void setPlayheadFrame(const Box& frame) = 0;
    virtual void setTransportTime(const std::string& text) = 0;
    virtual void setNowPlaying(const std::string& text) = 0;
};

/// Shows where the playhead stands: its line, the clock and what was on the air there. The view
/// does not follow the playhead.
///
/// Thread: main.
class PlayheadDisplay {
  public:
    /// `host` outlives this object.
    explicit PlayheadDisplay(PlayheadDisplayHost& host) : host_(host) {}

    /// The day's markers have changed.
    void setMarkers(const std::vector<Marker>& markers) { nowPlaying_ = NowPlaying(markers); }

    /// Shows the playhead's present place.
    void updatePlayheadVisuals();

    /// The day has gone: the clock is as at launch, and nothing is told of what was on the air.
    void showNoDay();

  private:
    PlayheadDisplayHost& host_;
    NowPlaying nowPlaying_;
};

}  // namespace sonavault
