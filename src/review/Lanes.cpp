#include "review/Lanes.h"

namespace sonavault {

const LaneDescription& descriptionOf(Lane lane) {
    return laneOrder.at(static_cast<std::size_t>(lane));
}

std::optional<Lane> laneWithKey(std::string_view key) {
    for (const LaneDescription& each : laneOrder)
        if (each.key == key) return each.lane;
    return std::nullopt;
}

std::string_view laneHint(std::string_view key) {
    const auto lane = laneWithKey(key);
    return lane ? descriptionOf(*lane).hint : "Marker lane.";
}

LaneSet allLanes() {
    LaneSet all;
    for (const LaneDescription& each : laneOrder) all.insert(each.lane);
    return all;
}

}  // namespace sonavault
