#pragma once

#include <optional>

namespace sonavault {

/// A view upon a longer content, along one axis. Units: any, the same for all
struct ScrollRange {
    double visible = 0;  ///< the part of the content that is seen
    double hidden = 0;   ///< the rest: the greatest value that there is
    double value = 0;    ///< how much of the content lies before the part that is seen
};

/// The part of a scroll bar that moves. Units: points
struct ScrollThumb {
    double position = 0;
    double length = 0;
    bool operator==(const ScrollThumb&) const = default;
};

/// A thumb stays long enough to be caught, however long the content is. Units: points
inline constexpr double kLeastThumbLength = 36;

/// Where the thumb stands on a track of that length; nothing when all of the content is seen.
std::optional<ScrollThumb> scrollThumb(const ScrollRange& range, double track);

/// The value at which the thumb would stand at `position`, limited to what there is.
double scrollValueAt(double position, const ScrollRange& range, double track);

}  // namespace sonavault
