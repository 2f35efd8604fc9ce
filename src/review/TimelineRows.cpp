#include "review/TimelineRows.h"

#include <algorithm>
#include <cmath>

#include "review/TimelineMapping.h"

namespace sonavault {

double laneHeight(std::size_t visible, double totalH, double actionBarH) {
    if (visible == 0) return kLaneHeight;
    const double available = totalH - actionBarH - kTimeAxisHeight;
    return std::max(kLaneHeight, available / static_cast<double>(visible));
}

TimelineRows layOutRows(const LaneSet& visible, const RowRoom& room) {
    TimelineRows rows;
    rows.timelineWidth = std::max(0.0, room.width - room.rightInset);
    rows.laneH = laneHeight(visible.size(), room.totalH, room.actionBarH);
    double y = 0;
    for (const Lane lane : visible) {
        rows.lanes.push_back({lane, {0, y, rows.timelineWidth, rows.laneH}});
        y += rows.laneH;
    }
    rows.summaryBar = {0, y, room.width, room.actionBarH};
    y += room.actionBarH;
    rows.timeAxis = {0, y, rows.timelineWidth, kTimeAxisHeight};
    y += kTimeAxisHeight;
    rows.content = {room.width, y};
    return rows;
}

double contentWidth(double clipWidth, double zoomMult) {
    return std::max(clipWidth, clipWidth * zoomMult);
}

Box playheadFrame(DaySeconds playhead, double timelineWidth, double height) {
    constexpr double kHalf = kPlayheadWidth / 2;
    const double x = xAt(playhead, timelineWidth);
    // A damaged manifest may put the day's beginning anywhere, where no pixel is any more.
    const double onAxis = std::isfinite(x) ? std::clamp(x - kHalf, -kHalf, timelineWidth) : -kHalf;
    return {onAxis, 0, kPlayheadWidth, height};
}

std::vector<LaneLabelCell> layOutLaneLabels(const LaneSet& visible, double columnWidth,
                                            double totalH, double actionBarH) {
    constexpr double kMargin = 8;
    constexpr double kTwoLines = 30;
    const double laneH = laneHeight(visible.size(), totalH, actionBarH);
    const double h = std::min(laneH, kTwoLines);
    std::vector<LaneLabelCell> cells;
    double y = 0;
    for (const Lane lane : visible) {
        cells.push_back(
            {lane,
             {0, y, columnWidth, laneH},
             {kMargin, y + (laneH - h) / 2, std::max(0.0, columnWidth - 2 * kMargin), h}});
        y += laneH;
    }
    return cells;
}

std::optional<double> ActionBarResize::heightAt(double windowY, double height) const {
    constexpr double kWorthALayout = 0.1;
    const double wanted = std::clamp(dragStartHeight_ + (windowY - dragStartWindowY_),
                                     kSummaryBarHeight, kSummaryBarHeightMax);
    if (!(std::abs(wanted - height) > kWorthALayout)) return std::nullopt;
    return wanted;
}

}  // namespace sonavault
