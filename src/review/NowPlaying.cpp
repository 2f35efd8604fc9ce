#include "review/NowPlaying.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace sonavault {

namespace {

struct Pair {
    const char* start;
    const char* end;
    const char* kind;
};

constexpr std::array<Pair, 2> kPairs{
    {{"vt_start", "vt_end", "vt"}, {"mic_start", "mic_end", "mic"}}};

bool isSegmentType(const std::string& type) {
    return type == "vt" || type == "break" || type == "mic";
}

/// The markers of either type in the order of time.
std::vector<const Marker*> eventsOf(const Pair& pair, const std::vector<Marker>& markers) {
    std::vector<const Marker*> events;
    for (const Marker& each : markers)
        if ((each.type == pair.start || each.type == pair.end) && std::isfinite(each.timeSec))
            events.push_back(&each);
    std::stable_sort(events.begin(), events.end(),
                     [](const Marker* a, const Marker* b) { return a->timeSec < b->timeSec; });
    return events;
}

void addPairs(const Pair& pair, const std::vector<Marker>& markers,
              std::vector<MarkedSegment>& segments) {
    const Marker* open = nullptr;
    for (const Marker* each : eventsOf(pair, markers)) {
        if (each->type == pair.start) {
            open = each;
            continue;
        }
        if (open) segments.push_back({pair.kind, open->timeSec, each->timeSec, open->label});
        open = nullptr;
    }
}

}  // namespace

std::vector<MarkedSegment> markedSegments(const std::vector<Marker>& markers) {
    std::vector<MarkedSegment> segments;
    for (const Marker& each : markers)
        if (isSegmentType(each.type))
            segments.push_back(
                {each.type, each.timeSec, each.timeSec + each.durationSec, each.label});
    for (const Pair& pair : kPairs) addPairs(pair, markers, segments);
    return segments;
}

std::string nowPlayingText(const MarkedSegment* segment) {
    if (!segment) return "Now playing: music / programming";
    const char* word = "Voicetrack";
    if (segment->type == "break") word = "Stopset";
    if (segment->type == "mic") word = "Live mic";
    return std::string("Now playing: ") + word + " — " + segment->label;
}

NowPlaying::NowPlaying(const std::vector<Marker>& markers) : segments_(markedSegments(markers)) {
    // A segment that holds no moment, as one with a negative length, is never found.
    std::erase_if(segments_, [](const MarkedSegment& each) {
        return !(each.startSec <= each.endSec) || !std::isfinite(each.startSec);
    });
    std::stable_sort(
        segments_.begin(), segments_.end(),
        [](const MarkedSegment& a, const MarkedSegment& b) { return a.startSec < b.startSec; });
    double reach = -std::numeric_limits<double>::infinity();
    for (const MarkedSegment& each : segments_)
        reach_.push_back(reach = std::max(reach, each.endSec));
}

const MarkedSegment* NowPlaying::at(DaySeconds playhead) const {
    const auto begun = std::partition_point(
        segments_.begin(), segments_.end(),
        [playhead](const MarkedSegment& each) { return each.startSec <= playhead.value; });
    for (auto i = static_cast<std::size_t>(begun - segments_.begin());
         i > 0 && reach_[i - 1] >= playhead.value; --i)
        if (segments_[i - 1].endSec >= playhead.value) return &segments_[i - 1];
    return nullptr;
}

}  // namespace sonavault
