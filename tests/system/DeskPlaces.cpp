#include "system/DeskPlaces.h"

#include <stdexcept>

#include "review/LogsTabLayout.h"
#include "review/TimelineMapping.h"
#include "review/TimelineZoom.h"
#include "review/WindowLayout.h"

namespace sonavault::testing {
namespace {

constexpr std::size_t kTabs = 2;

Box movedBy(const Box& box, const Box& parent) {
    return {parent.x + box.x, parent.y + box.y, box.width, box.height};
}

Size sizeOf(const Box& box) {
    return {box.width, box.height};
}

}  // namespace

Point middleOf(const Box& box) {
    return {box.x + box.width / 2, box.y + box.height / 2};
}

Point DeskPlaces::onScreen(Point inContent) const {
    return {content_.x + inContent.x, content_.y + inContent.y};
}

Box DeskPlaces::onScreen(const Box& inContent) const {
    return movedBy(inContent, content_);
}

Box DeskPlaces::tabBox() const {
    return layOutWindow(sizeOf(content_)).tab;
}

Box DeskPlaces::inLogsTab(const Box& box) const {
    return onScreen(movedBy(box, tabBox()));
}

// Banner and status bar

Point DeskPlaces::helpButton() const {
    return onScreen(middleOf(layOutBanner(content_.width).helpButton));
}

Point DeskPlaces::tab(std::size_t index) const {
    const Box bar = layOutWindow(sizeOf(content_)).tabBar;
    return onScreen(middleOf(movedBy(tabFrames(bar.width, kTabs).at(index), bar)));
}

Box DeskPlaces::statusText() const {
    const Box bar = layOutWindow(sizeOf(content_)).statusBar;
    return onScreen(movedBy(layOutStatusBar(bar.width).text, bar));
}

Point DeskPlaces::settingsButton() const {
    const Box bar = layOutWindow(sizeOf(content_)).statusBar;
    return onScreen(middleOf(movedBy(layOutStatusBar(bar.width).settings, bar)));
}

Box DeskPlaces::connectionDot() const {
    const Box bar = layOutWindow(sizeOf(content_)).statusBar;
    return onScreen(movedBy(layOutStatusBar(bar.width).connectionDot, bar));
}

Box DeskPlaces::dateList() const {
    return inLogsTab(logsTabFrames(sizeOf(tabBox())).dateListScroll);
}

// The bars

Point DeskPlaces::zoomPreset(std::size_t index) const {
    const Box bar = logsTabFrames(sizeOf(tabBox())).zoomBar;
    const Box button = zoomBarFrames(bar.width, kZoomPresets.size()).presets.at(index);
    return middleOf(inLogsTab(movedBy(button, bar)));
}

Point DeskPlaces::zoomPresetGround(std::size_t index) const {
    constexpr double kClearOfTheTitle = 30;
    const Point middle = zoomPreset(index);
    return {middle.x - kClearOfTheTitle, middle.y};
}

Point DeskPlaces::shuttle(std::size_t index) const {
    const Box bar = logsTabFrames(sizeOf(tabBox())).transport;
    return middleOf(inLogsTab(movedBy(transportFrames(bar.width, 0).shuttle.at(index), bar)));
}

Point DeskPlaces::exportButton() const {
    return middleOf(inLogsTab(logsTabFrames(sizeOf(tabBox())).exportSelectionsButton));
}

// The timeline

Box DeskPlaces::lanes() const {
    return inLogsTab(logsTabFrames(sizeOf(tabBox())).lanesScroll);
}

TimelineRows DeskPlaces::rows() const {
    const Box clip = lanes();
    return layOutRows(allLanes(), {clip.width, clip.height, 0, actionBarHeight_});
}

Box DeskPlaces::summaryBar() const {
    return movedBy(rows().summaryBar, lanes());
}

Box DeskPlaces::axis() const {
    return movedBy(rows().timeAxis, lanes());
}

Point DeskPlaces::resizeHandle() const {
    const Box bar = summaryBar();
    return {bar.x + bar.width / 2, bar.y};
}

Point DeskPlaces::onLane(Lane lane, double second) const {
    const TimelineRows made = rows();
    for (const LaneRow& each : made.lanes)
        if (each.lane == lane)
            return {lanes().x + xAt({second}, made.timelineWidth),
                    lanes().y + each.frame.y + each.frame.height / 2};
    throw std::runtime_error("there is no such lane");
}

Point DeskPlaces::onSummaryBar(double second) const {
    const Box bar = summaryBar();
    return {bar.x + xAt({second}, rows().timelineWidth), middleOf(bar).y};
}

Point DeskPlaces::onPlayhead(double second) const {
    constexpr double kAboveTheFoot = 5;
    return {onSummaryBar(second).x, summaryBar().bottom() - kAboveTheFoot};
}

// The airchecks

Point DeskPlaces::inCard(std::size_t index, double x, double y) const {
    constexpr double kSide = 12;
    constexpr double kHead = 80;
    constexpr double kInset = 18;
    constexpr double kHeight = 300;
    constexpr double kStep = 318;
    const Box tab = tabBox();
    return onScreen(
        Point{tab.x + kSide + kInset + x,
              tab.y + kHead + kInset + static_cast<double>(index) * kStep + kHeight - y});
}

}  // namespace sonavault::testing
