#include "review/LogsTabLayout.h"

#include <algorithm>

#include "review/TimelineRows.h"

namespace sonavault {
namespace {

// The numbers below count from the lower left corner, as the bars at the foot do not move when the
// window grows. Only here do they become places from the top.
Box fromBottom(const Box& box, double height) {
    return {box.x, height - box.y - box.height, box.width, box.height};
}

constexpr double kLanesY = kTransportHeight + kZoomBarHeight;

double lanesH(Size tab) {
    return tab.height - kFilterBarHeight - kLanesY;
}

Box lanesScroll(Size tab) {
    constexpr double kLeast = 60;
    constexpr double kGap = 12;
    const double room = tab.width - kDateListWidth - kLaneLabelsColumnWidth - kGap - kVUMeterWidth;
    return {kDateListWidth + kLaneLabelsColumnWidth, kLanesY, std::max(kLeast, room),
            std::max(kLeast, lanesH(tab))};
}

// The clear space between the lanes' area and what stands in it.
constexpr double kInset = 6;

Box meter(Size tab, double topY, double offset) {
    constexpr double kBarWidth = 12;
    constexpr double kLeastHeight = 40;
    const double y = topY + kInset;
    const double top = kLanesY + lanesH(tab) - kInset;
    return {tab.width - kVUMeterWidth - kInset + offset, y, kBarWidth,
            std::max(kLeastHeight, top - y)};
}

Box emptyState(Size tab, double topY) {
    constexpr double kMargins = 80;
    constexpr double kHeight = 64;
    const Box scroll = lanesScroll(tab);
    const double w = std::clamp(scroll.width - kMargins, 240.0, 640.0);
    const double bottom = topY + kInset;
    const double space = std::max(0.0, kLanesY + lanesH(tab) - kInset - bottom);
    return {scroll.x + (scroll.width - w) / 2, bottom + (space - kHeight) / 2, w, kHeight};
}

}  // namespace

LogsTabFrames logsTabFrames(Size tab) {
    constexpr double kExportFromRight = 18;
    constexpr double kExportAboveBars = 14;
    const double right = tab.width - kDateListWidth;
    const auto placed = [&](const Box& box) { return fromBottom(box, tab.height); };
    LogsTabFrames frames;
    frames.dateListScroll = placed({0, 0, kDateListWidth, tab.height});
    frames.filterBar =
        placed({kDateListWidth, tab.height - kFilterBarHeight, right, kFilterBarHeight});
    frames.transport = placed({kDateListWidth, 0, right, kTransportHeight});
    frames.zoomBar = placed({kDateListWidth, kTransportHeight, right, kZoomBarHeight});
    frames.lanesScroll = placed(lanesScroll(tab));
    frames.exportSelectionsButton =
        placed({tab.width - kExportButtonWidth - kExportFromRight, kLanesY + kExportAboveBars,
                kExportButtonWidth, kExportButtonHeight});
    return frames;
}

Box laneLabelsFrame(Size tab, double clipHeight) {
    const double h = clipHeight > 0 ? clipHeight : lanesScroll(tab).height;
    return fromBottom(
        {kDateListWidth, kLanesY + std::max(0.0, lanesH(tab) - h), kLaneLabelsColumnWidth, h},
        tab.height);
}

TimelineOverlays timelineOverlays(Size tab, double summaryBarTop) {
    constexpr double kSecondBar = 16;
    const double topY = tab.height - summaryBarTop;
    const auto placed = [&](const Box& box) { return fromBottom(box, tab.height); };
    return {placed(meter(tab, topY, 0)), placed(meter(tab, topY, kSecondBar)),
            placed({kDateListWidth, topY - kActionBarHandleH / 2, tab.width - kDateListWidth,
                    kActionBarHandleH}),
            placed(emptyState(tab, topY))};
}

ZoomBarFrames zoomBarFrames(double width, std::size_t presets) {
    constexpr double kLabelRoom = 68;
    constexpr double kButtonWidth = 76;
    constexpr double kGap = 4;
    const auto n = static_cast<double>(presets);
    const double total = kLabelRoom + n * kButtonWidth + std::max(0.0, n - 1) * kGap;
    const double start = (width - total) / 2;
    ZoomBarFrames frames;
    frames.label = fromBottom({start, 14, 60, 18}, kZoomBarHeight);
    for (std::size_t i = 0; i < presets; ++i) {
        const double x = start + kLabelRoom + static_cast<double>(i) * (kButtonWidth + kGap);
        frames.presets.push_back(fromBottom({x, 8, kButtonWidth, 28}, kZoomBarHeight));
    }
    return frames;
}

TransportFrames transportFrames(double width, double selectionTextWidth) {
    constexpr double kButton = 44;
    constexpr double kStep = 50;
    constexpr double kRow = 244;
    constexpr double kMargin = 16;
    constexpr double kTimeWidth = 200;
    constexpr double kInfoWidth = 320;
    constexpr double kBetweenTexts = 4;
    constexpr double kBetweenLongTexts = 16;
    const auto placed = [](const Box& box) { return fromBottom(box, kTransportHeight); };
    TransportFrames frames;
    frames.transportTimeLabel = placed({(width - kTimeWidth) / 2, 78, kTimeWidth, 28});
    const double firstX = (width - kRow) / 2;
    for (std::size_t i = 0; i < frames.shuttle.size(); ++i)
        frames.shuttle.at(i) =
            placed({firstX + static_cast<double>(i) * kStep, 26, kButton, kButton});
    const double infoWidth = std::max(kInfoWidth, selectionTextWidth);
    frames.selectionInfoLabel = placed({width - infoWidth - kMargin, 4, infoWidth, 20});
    const double gap = infoWidth > kInfoWidth ? kBetweenLongTexts : kBetweenTexts;
    const double nowPlaying = frames.selectionInfoLabel.x - gap - kMargin;
    frames.nowPlayingLabel = placed({kMargin, 4, std::max(0.0, nowPlaying), 20});
    return frames;
}

namespace {

constexpr double kFilterLeft = 16;
constexpr double kSwatchRoom = 18;
constexpr double kFilterGap = 20;
constexpr double kLeastFilterGap = 4;
constexpr double kClearOfFilters = 8;

double filtersWidth(const std::vector<Size>& checkboxes, double gap) {
    double width = 0;
    for (const Size& each : checkboxes) width += kSwatchRoom + each.width + gap;
    return checkboxes.empty() ? 0 : width - gap;
}

double filterGap(const std::vector<Size>& checkboxes, double room) {
    if (checkboxes.size() < 2) return kFilterGap;
    const double spare = room - filtersWidth(checkboxes, 0);
    return std::clamp(spare / static_cast<double>(checkboxes.size() - 1), kLeastFilterGap,
                      kFilterGap);
}

void placeFilters(FilterBarFrames& frames, const std::vector<Size>& checkboxes, double gap) {
    constexpr double kSwatch = 14;
    double x = kFilterLeft;
    for (const Size& each : checkboxes) {
        frames.swatches.push_back(fromBottom({x, 16, kSwatch, kSwatch}, kFilterBarHeight));
        frames.checkboxes.push_back(
            fromBottom({x + kSwatchRoom, 13, each.width, each.height}, kFilterBarHeight));
        x += kSwatchRoom + each.width + gap;
    }
}

}  // namespace

FilterBarFrames filterBarFrames(double width, const FilterBarContent& content) {
    constexpr double kButtonWidth = 180;
    const double buttonX = width - 200;
    const double counterX = width - 360;
    const double gap = filterGap(content.checkboxes, buttonX - kClearOfFilters - kFilterLeft);
    const double filtersEnd = kFilterLeft + filtersWidth(content.checkboxes, gap);
    FilterBarFrames frames;
    placeFilters(frames, content.checkboxes, gap);
    frames.counterBelowButton = content.counterShown && filtersEnd + kClearOfFilters > counterX;
    const auto placed = [](const Box& box) { return fromBottom(box, kFilterBarHeight); };
    if (frames.counterBelowButton) {
        frames.voicetracksOnlyButton = placed({buttonX, 19, kButtonWidth, 24});
        frames.vtCounterLabel = placed({buttonX, 2, kButtonWidth, 16});
    } else {
        frames.voicetracksOnlyButton = placed({buttonX, 9, kButtonWidth, 28});
        frames.vtCounterLabel = placed({counterX, 14, 150, 18});
    }
    return frames;
}

}  // namespace sonavault
