#pragma once

#include <optional>
#include <string>
#include <vector>

#include "review/TimelineZoom.h"
#include "support/ManualTimers.h"
#include "views/LanesScrollView.h"
#include "views/TimelineHost.h"

namespace sonavault::testing {

/// A program around the timeline's views, and a scroll view in it. The playhead goes where it is
/// asked to go.
class TimelineWindow final : public TimelineHost, public TimelineZoomHost, public SelectionsHost {
  public:
    explicit TimelineWindow(QSize size) : view(*this, nullptr) {
        view.resize(size);
        view.show();
        layOutLogsTab();
    }

    void haveMarkers(std::vector<Marker> list) {
        markers = std::move(list);
        found = LaneMarkers(markers);
        layOutLogsTab();
    }
    void haveZoom(std::size_t preset) { zoom.zoomPresetClicked(preset); }
    LanesInnerView& inner() { return view.lanesInnerView(); }

    DaySeconds playheadSec() const override { return {playhead}; }
    double zoomMult() const override { return zoom.zoomMult(); }
    const LaneSet& visibleLanes() const override { return lanes; }
    double actionBarHeight() const override { return barHeight; }
    const LaneMarkers& laneMarkers() const override { return found; }
    SummaryScene summaryScene() const override {
        SummaryScene shown = scene;
        shown.zoomMult = zoom.zoomMult();
        shown.selections = &chosen.selections();
        shown.pendingStartSec = chosen.pendingStartSec();
        return shown;
    }
    Selections& selections() override { return chosen; }
    std::unique_ptr<MainTimer> makeMainTimer() override { return timers.make(); }
    void jumpTo(DaySeconds position) override {
        playhead = position.value;
        jumps.push_back(position.value);
    }
    void performZoom(double deltaY, double x) override { zoom.performZoom(deltaY, x); }
    void resizeActionBar(double height) override {
        barHeight = height;
        layOutLogsTab();
    }
    void keepActionBarHeight() override { keptHeights.push_back(barHeight); }

    ZoomExtent zoomExtent() const override { return view.extent(); }
    double scrollX() const override { return view.scrollX(); }
    void scrollTo(double x) override { view.scrollTo(x); }
    void layOutLogsTab() override {
        ++layouts;
        const Size clip = view.clipSize();
        inner().relayout({contentWidth(clip.width, zoomMult()), clip.height, 0, barHeight});
    }
    void showZoomPreset(std::optional<std::size_t>) override {}

    void redrawSummaryBar() override { inner().redrawSummaryBar(); }
    void rebuildSummaryBarCursors() override { inner().rebuildSummaryBarCursors(); }
    void showSelectionInfo(const std::string&, bool) override {}
    void showExportSelectionsButton(const std::optional<std::string>&) override {}

    std::vector<Marker> markers;
    LaneMarkers found;
    LaneSet lanes = allLanes();
    SummaryScene scene;
    double playhead = 0;
    double barHeight = kSummaryBarHeight;
    int layouts = 0;
    std::vector<double> jumps;
    std::vector<double> keptHeights;

    ManualClock clock{WallTime{}};
    ManualTimers timers{clock};
    Selections chosen{*this};
    TimelineZoom zoom{*this};
    LanesScrollView view;
};

}  // namespace sonavault::testing
