#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "review/TimelineZoomHost.h"
#include "store/RecordingModel.h"

namespace sonavault {

inline constexpr double kZoomMultMin = 1;
inline constexpr double kZoomMultMax = 720;

/// A button that sets the zoom.
struct ZoomPreset {
    std::string_view title;
    double factor;
    std::string_view identifier;
    std::string_view hint;  ///< the hover text
};

/// The presets in the order of their buttons. At the last a window shows two minutes: that is the
/// limit of the zoom.
inline constexpr std::array<ZoomPreset, 5> kZoomPresets{{
    {"Day", 1, "1", "Show the whole 24-hour day at once."},
    {"6 hr", 4, "4", "Show six hours of the day at once."},
    {"1 hr", 24, "24", "Show one hour of the day at once."},
    {"10 min", 144, "144", "Show ten minutes of the day at once."},
    {"1 min", 720, "720", "Show one minute of the day at once — for precise editing."},
}};

/// The factor after a vertical swipe of `deltaY` points at factor `current`, upwards zooming in;
/// nothing when that is no change, as at the ends of the range.
std::optional<double> zoomedBySwipe(double current, double deltaY);

/// The index of the preset whose factor `zoomMult` is, to a hundredth.
std::optional<std::size_t> presetAt(double zoomMult);

/// The scroll position at which the moment `anchor` stands `anchorScreenX` points from the left
/// edge of what is seen, as far as the ends of the content allow.
double scrollXKeeping(DaySeconds anchor, double anchorScreenX, const ZoomExtent& extent);

/// The zoom of the timeline. Another day keeps it; it is not stored.
///
/// Thread: main.
class TimelineZoom {
  public:
    /// `host` outlives this object.
    explicit TimelineZoom(TimelineZoomHost& host) : host_(host) {}

    /// How many times wider than the window the day is. Range: kZoomMultMin to kZoomMultMax
    double zoomMult() const { return zoomMult_; }

    /// The preset whose button is on.
    std::optional<std::size_t> activePreset() const { return activePreset_; }

    /// A vertical swipe of `deltaY` points with the pointer at `x` of the content. The moment under
    /// the pointer stays there, except where the content's ends stop it.
    void performZoom(double deltaY, double x);

    /// A preset's button was clicked: the playhead goes to the middle of what is seen.
    void zoomPresetClicked(std::size_t preset);

  private:
    void setPreset(std::optional<std::size_t> preset);

    TimelineZoomHost& host_;
    double zoomMult_ = kZoomMultMin;
    std::optional<std::size_t> activePreset_ = 0;
};

}  // namespace sonavault
