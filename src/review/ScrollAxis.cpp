#include "review/ScrollAxis.h"

#include <cmath>

namespace sonavault {

namespace {

ScrollMode judged(const ScrollEvent& event) {
    return std::abs(event.deltaX) > std::abs(event.deltaY) ? ScrollMode::pan : ScrollMode::zoom;
}

/// Whether nothing more of the gesture will come.
bool isLastOf(const ScrollEvent& event) {
    if (event.momentumPhase == ScrollPhase::ended) return true;
    return event.phase == ScrollPhase::ended && event.momentumPhase == ScrollPhase::none;
}

}  // namespace

ScrollMode ScrollAxis::modeOf(const ScrollEvent& event) {
    if (event.phase == ScrollPhase::began) lockedScrollMode_ = judged(event);
    const ScrollMode mode = lockedScrollMode_.value_or(judged(event));
    if (isLastOf(event)) lockedScrollMode_.reset();
    return mode;
}

}  // namespace sonavault
