#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "review/Lanes.h"
#include "store/RecordingModel.h"

namespace sonavault {

/// "1 of {n} voicetracks", n being the voicetracks that the day's markers tell of. The 1 is part of
/// the text.
std::string voicetrackCount(const std::vector<Marker>& markers);

/// What the filters ask of the program around them.
///
/// Thread: main.
class LaneFiltersHost {
  public:
    virtual ~LaneFiltersHost() = default;

    virtual const std::vector<Marker>& allMarkers() const = 0;

    /// Sets a lane's checkbox as if by hand, but without filterChanged().
    virtual void setFilterCheckbox(Lane lane, bool on) = 0;

    /// Shows "Voicetracks Only Mode" on, with its counter, or off without one.
    virtual void showVoicetracksOnly(bool on, const std::optional<std::string>& counter) = 0;

    /// Lays the timeline out anew.
    virtual void layOutLogsTab() = 0;
};

/// Which lanes are shown. Another day changes nothing about it.
///
/// Thread: main.
class LaneFilters {
  public:
    /// `host` outlives this object.
    explicit LaneFilters(LaneFiltersHost& host) : host_(host) {}

    const LaneSet& visibleLanes() const { return visibleLanes_; }
    bool voicetracksOnly() const { return voicetracksOnly_; }

    /// The person ticked a checkbox or took its tick away; a key that no lane bears does nothing.
    void filterChanged(std::string_view key, bool on);

    /// Hides all but hours and voicetracks, or shows all again. The checkboxes stay usable.
    void voicetracksOnlyClicked();

  private:
    LaneFiltersHost& host_;
    LaneSet visibleLanes_ = allLanes();
    bool voicetracksOnly_ = false;
};

}  // namespace sonavault
