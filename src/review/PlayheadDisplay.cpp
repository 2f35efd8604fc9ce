#include "review/PlayheadDisplay.h"

#include "review/TimelineRows.h"

namespace sonavault {

void PlayheadDisplay::updatePlayheadVisuals() {
    const DaySeconds playhead = host_.playheadSec();
    if (const auto size = host_.timelineSize())
        host_.setPlayheadFrame(playheadFrame(playhead, size->width, size->height));
    host_.setTransportTime(formatTime(playhead.value));
    host_.setNowPlaying(nowPlayingText(nowPlaying_.at(playhead)));
}

void PlayheadDisplay::showNoDay() {
    host_.setTransportTime(formatTime(0));
    host_.setNowPlaying(nowPlayingText(nullptr));
}

}  // namespace sonavault
