#include "review/ScrollAxis.h"

#include <cmath>

namespace sonavault {

namespace {

ScrollMode judged(const ScrollEvent& event) {
    return std::abs(event.deltaX) > std::abs(event.deltaY) ? ScrollMode::pan : ScrollMode::zoom;
}

bool goesSomewhere(const ScrollEvent& event) {
    return event.deltaX != 0 || event.deltaY != 0;
}

/// Whether nothing more of the gesture will come.
bool isLastOf(const ScrollEvent& event) {
    if (event.momentumPhase == ScrollPhase::ended) return true;
    return event.phase == ScrollPhase::ended && event.momentumPhase == ScrollPhase::none;
}

}  // namespace

ScrollMode ScrollAxis::modeOf(const ScrollEvent& event) {
    if (event.phase == ScrollPhase::began) {
        lockedScrollMode_.reset();
        owesJudgement_ = true;
    }
    // Where the beginning is told as an event of its own, it has no direction yet.
    if (owesJudgement_ && goesSomewhere(event)) {
        lockedScrollMode_ = judged(event);
        owesJudgement_ = false;
    }
    const ScrollMode mode = lockedScrollMode_.value_or(judged(event));
    if (isLastOf(event)) {
        lockedScrollMode_.reset();
        owesJudgement_ = false;
    }
    return mode;
}

}  // namespace sonavault
