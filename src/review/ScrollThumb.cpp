#include "review/ScrollThumb.h"

#include <algorithm>

namespace sonavault {
namespace {

double thumbLength(const ScrollRange& range, double track) {
    const double inProportion = track * range.visible / (range.visible + range.hidden);
    return std::min(track, std::max(kLeastThumbLength, inProportion));
}

}  // namespace

std::optional<ScrollThumb> scrollThumb(const ScrollRange& range, double track) {
    if (range.hidden <= 0 || range.visible <= 0 || track <= 0) return std::nullopt;
    const double length = thumbLength(range, track);
    const double share = std::clamp(range.value / range.hidden, 0.0, 1.0);
    return ScrollThumb{(track - length) * share, length};
}

double scrollValueAt(double position, const ScrollRange& range, double track) {
    const auto thumb = scrollThumb(range, track);
    if (!thumb) return 0;
    const double room = track - thumb->length;
    // Without room the thumb can't tell one value from another: it stays where it is.
    if (room <= 0) return range.value;
    return std::clamp(position / room, 0.0, 1.0) * range.hidden;
}

}  // namespace sonavault
