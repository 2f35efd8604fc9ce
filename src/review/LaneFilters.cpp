#include "review/LaneFilters.h"

#include <algorithm>

namespace sonavault {

std::string voicetrackCount(const std::vector<Marker>& markers) {
    const auto count = std::count_if(markers.begin(), markers.end(), [](const Marker& each) {
        return each.type == "vt_start" || each.type == "vt";
    });
    return "1 of " + std::to_string(count) + " voicetracks";
}

void LaneFilters::filterChanged(std::string_view key, bool on) {
    const auto lane = laneWithKey(key);
    if (!lane) return;
    if (on)
        visibleLanes_.insert(*lane);
    else
        visibleLanes_.erase(*lane);
    host_.layOutLogsTab();
}

void LaneFilters::voicetracksOnlyClicked() {
    voicetracksOnly_ = !voicetracksOnly_;
    visibleLanes_ = voicetracksOnly_ ? LaneSet{Lane::hour, Lane::vt} : allLanes();
    for (const LaneDescription& each : laneOrder)
        host_.setFilterCheckbox(each.lane, visibleLanes_.contains(each.lane));
    host_.showVoicetracksOnly(
        voicetracksOnly_,
        voicetracksOnly_ ? std::optional(voicetrackCount(host_.allMarkers())) : std::nullopt);
    host_.layOutLogsTab();
}

}  // namespace sonavault
