#pragma once

#include <cstdint>
#include <optional>

namespace sonavault {

/// What a scroll gesture does to the timeline.
enum class ScrollMode : std::uint8_t { pan, zoom };

/// A stage of a gesture, or of its momentum after the fingers have left.
enum class ScrollPhase : std::uint8_t { none, began, changed, ended };

struct ScrollEvent {
    double deltaX = 0;  ///< Units: points
    double deltaY = 0;  ///< upwards is positive
    ScrollPhase phase = ScrollPhase::none;
    ScrollPhase momentumPhase = ScrollPhase::none;
};

/// Judges a gesture once, at its first movement, and keeps it on that axis however it goes on.
class ScrollAxis {
  public:
    /// What this event does. Events without phases, as of a mouse wheel, are judged each alone.
    ScrollMode modeOf(const ScrollEvent& event);

    const std::optional<ScrollMode>& lockedScrollMode() const { return lockedScrollMode_; }

  private:
    std::optional<ScrollMode> lockedScrollMode_;
    bool owesJudgement_ = false;  // a gesture has begun and not moved yet
};

}  // namespace sonavault
