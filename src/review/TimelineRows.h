#pragma once

#include <optional>
#include <vector>

#include "review/Geometry.h"
#include "review/Lanes.h"
#include "store/RecordingModel.h"

namespace sonavault {

// How the rows of the timeline stand below each other: the lanes that are shown, the summary bar,
// the time axis. Units: points

inline constexpr double kLaneHeight = 32;  ///< the least height of a lane
inline constexpr double kTimeAxisHeight = 32;
inline constexpr double kSummaryBarHeight = 50;  ///< the least height of the summary bar
inline constexpr double kSummaryBarHeightMax = 180;
inline constexpr double kActionBarHandleH = 8;  ///< height of the handle that resizes it
inline constexpr double kPlayheadWidth = 2;

inline constexpr Colour kColorPlayhead = rgb(229, 57, 43);

/// The room that the rows are given.
struct RowRoom {
    double width = 0;   ///< of the whole content, which at a high zoom is wider than what is seen
    double totalH = 0;  ///< the height that is seen
    double rightInset = 0;
    double actionBarH = kSummaryBarHeight;
};

struct LaneRow {
    Lane lane;
    Box frame;
};

struct TimelineRows {
    double timelineWidth = 0;
    double laneH = 0;
    std::vector<LaneRow> lanes;  ///< the visible ones, from the top
    Box summaryBar;
    Box timeAxis;
    Size content;
};

/// The height of each of `visible` lanes: they share what the bars below leave, but are never lower
/// than kLaneHeight, so that the content may be higher than the room.
double laneHeight(std::size_t visible, double totalH, double actionBarH);

TimelineRows layOutRows(const LaneSet& visible, const RowRoom& room);

/// The width of the content at a zoom factor: never less than what is seen.
double contentWidth(double clipWidth, double zoomMult);

/// The playhead's line on an axis of `timelineWidth`, through rows of `height`. Beside the axis it
/// stands at the nearer end of it, and for what is no number at midnight.
Box playheadFrame(DaySeconds playhead, double timelineWidth, double height);

/// A lane's cell in the column of labels.
struct LaneLabelCell {
    Lane lane;
    Box backing;
    Box label;
};

/// The labels of the visible lanes, at the lanes' heights.
std::vector<LaneLabelCell> layOutLaneLabels(const LaneSet& visible, double columnWidth,
                                            double totalH, double actionBarH);

/// The dragging of the summary bar's upper edge.
class ActionBarResize {
  public:
    /// `windowY` grows upwards, so that dragging up enlarges the bar.
    ActionBarResize(double windowY, double height)
        : dragStartWindowY_(windowY), dragStartHeight_(height) {}

    /// The bar's new height; nothing when that is `height` already, to a tenth of a point.
    std::optional<double> heightAt(double windowY, double height) const;

  private:
    double dragStartWindowY_;
    double dragStartHeight_;
};

}  // namespace sonavault
