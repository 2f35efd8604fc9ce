#include "review/TimelineZoom.h"

#include <algorithm>
#include <cmath>

#include "review/TimelineMapping.h"

namespace sonavault {

namespace {

double axisWidth(const ZoomExtent& extent) {
    return mappingWidth(extent.timelineWidth, extent.contentWidth);
}

}  // namespace

std::optional<double> zoomedBySwipe(double current, double deltaY) {
    constexpr double kFactorPerPoint = 0.005;
    constexpr double kNoChange = 0.0001;
    const double zoomed =
        std::clamp(current * std::exp(deltaY * kFactorPerPoint), kZoomMultMin, kZoomMultMax);
    // Asked this way round, a delta that is no number is no change either.
    if (!(std::abs(zoomed - current) >= kNoChange)) return std::nullopt;
    return zoomed;
}

std::optional<std::size_t> presetAt(double zoomMult) {
    constexpr double kSame = 0.01;
    for (std::size_t i = 0; i < kZoomPresets.size(); ++i)
        if (std::abs(kZoomPresets[i].factor - zoomMult) < kSame) return i;
    return std::nullopt;
}

double scrollXKeeping(DaySeconds anchor, double anchorScreenX, const ZoomExtent& extent) {
    const double maxScroll = std::max(0.0, extent.contentWidth - extent.clipWidth);
    return std::clamp(xAt(anchor, axisWidth(extent)) - anchorScreenX, 0.0, maxScroll);
}

void TimelineZoom::performZoom(double deltaY, double x) {
    const auto zoomed = zoomedBySwipe(zoomMult_, deltaY);
    if (!zoomed) return;
    const DaySeconds anchor = secAt(x, axisWidth(host_.zoomExtent()));
    const double anchorScreenX = x - host_.scrollX();
    zoomMult_ = *zoomed;
    host_.layOutLogsTab();
    host_.scrollTo(scrollXKeeping(anchor, anchorScreenX, host_.zoomExtent()));
    setPreset(presetAt(zoomMult_));
}

void TimelineZoom::zoomPresetClicked(std::size_t preset) {
    if (preset >= kZoomPresets.size()) return;
    setPreset(preset);
    zoomMult_ = kZoomPresets[preset].factor;
    host_.layOutLogsTab();
    const ZoomExtent extent = host_.zoomExtent();
    host_.scrollTo(scrollXKeeping(host_.playheadSec(), extent.clipWidth / 2, extent));
}

void TimelineZoom::setPreset(std::optional<std::size_t> preset) {
    activePreset_ = preset;
    host_.showZoomPreset(preset);
}

}  // namespace sonavault
