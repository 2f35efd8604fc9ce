#pragma once

#include <functional>
#include <memory>
#include <string>

#include "review/DayNavigation.h"
#include "review/LaneFilters.h"
#include "review/LaneMarkers.h"
#include "review/PlayheadDisplay.h"
#include "review/Selections.h"
#include "review/TimelineZoom.h"
#include "shell/ReviewDesk.h"
#include "shell/ReviewScreen.h"
#include "shell/ShellServices.h"
#include "views/DateListView.h"
#include "views/KeyResponderView.h"
#include "views/LogsTabView.h"
#include "views/TimelineHost.h"

namespace sonavault {

/// What the tab of the days needs of the recording half.
struct RecordingFacts {
    std::function<const SVRecorder*()> recorder;  ///< null until there is one
    std::function<bool()> isRecording;
    std::function<float()> inputDb;  ///< what the recorder hears. Units: dBFS
    std::function<void()> toggleRecording;
};

/// The day on the screen: how it is zoomed, filtered and selected, and the views that show it, with
/// the reviewing half behind them.
///
/// Thread: main.
class TimelineDesk final : private ReviewScreen,
                           private TimelineHost,
                           private DateListHost,
                           private SelectionsHost,
                           private TimelineZoomHost,
                           private LaneFiltersHost,
                           private PlayheadDisplayHost,
                           private DayNavigationHost {
  public:
    /// Makes the tab's view, as a child of `root`. `root` and what `services` name outlive the
    /// desk.
    TimelineDesk(ShellServices& services, KeyResponderView& root, RecordingFacts recording);

    LogsTabView& view() { return *view_; }

    ReviewDesk& review() { return review_; }
    const ReviewDesk& review() const { return review_; }
    Selections& selections() override { return selections_; }
    const Selections& selections() const { return selections_; }
    TimelineZoom& zoom() { return zoom_; }
    LaneFilters& filters() { return filters_; }
    DayNavigation& navigation() { return navigation_; }
    double actionBarHeight() const override { return actionBarHeight_; }

    /// The person pressed one of the two export buttons.
    std::function<void()> onExportSelections;

    /// Draws the timeline anew.
    void renderTimeline() override;

    /// Brings what moves by itself up to date: playhead, meters, live rows. Called at each tick.
    void tickPlayhead() { review_.playback().advancePlayhead(); }
    void tickMeters();
    void tickLiveRows() { view_->dateList().refreshLiveRows(); }

  private:
    TransportActions transportActions();
    void connectBars();

    // ReviewScreen
    void renderDateList(const std::vector<DailyRecording>& days,
                        const std::string& selectedDate) override;
    void updateRow(const DailyRecording& row) override { view_->dateList().updateLive(row); }
    void showEmptyState(const std::string& text) override { view_->showEmptyState(text); }
    void updatePlayheadVisuals() override { playhead_.updatePlayheadVisuals(); }
    void setPlayButtonTitle(const std::string& title) override {
        view_->transport().setPlayButtonTitle(title);
    }
    void setStatusBarText(const std::string& text) override;

    // TimelineHost
    double zoomMult() const override { return zoom_.zoomMult(); }
    const LaneSet& visibleLanes() const override { return filters_.visibleLanes(); }
    const LaneMarkers& laneMarkers() const override { return laneMarkers_; }
    SummaryScene summaryScene() const override;
    std::unique_ptr<MainTimer> makeMainTimer() override {
        return services_.recorder.makeMainTimer();
    }
    void performZoom(double deltaY, double x) override { zoom_.performZoom(deltaY, x); }
    void resizeActionBar(double height) override;
    void keepActionBarHeight() override;

    // DateListHost
    bool isRecording() const override { return recording_.isRecording(); }
    float recordingInputDb() const override { return recording_.inputDb(); }
    std::string todayDateString() const override;
    void selectAndLoadRecording(const std::string& date) override {
        review_.day().selectAndLoadRecording(date);
    }
    void toggleRecordingFromMenu() override { recording_.toggleRecording(); }
    void deleteRecording(const DailyRecording& recording) override {
        review_.days().deleteRecording(recording);
    }

    // SelectionsHost
    void rebuildSummaryBarCursors() override { inner().rebuildSummaryBarCursors(); }
    void showSelectionInfo(const std::string& text, bool canExport) override {
        view_->transport().showSelectionInfo(text, canExport);
    }
    void showExportSelectionsButton(const std::optional<std::string>& title) override {
        view_->showExportSelectionsButton(title);
    }

    // TimelineZoomHost
    ZoomExtent zoomExtent() const override { return view_->lanesScroll().extent(); }
    double scrollX() const override { return view_->lanesScroll().scrollX(); }
    void scrollTo(double x) override { view_->lanesScroll().scrollTo(x); }
    void showZoomPreset(std::optional<std::size_t> preset) override {
        view_->zoomBar().showZoomPreset(preset);
    }

    // LaneFiltersHost
    void setFilterCheckbox(Lane lane, bool on) override {
        view_->filterBar().setFilterCheckbox(lane, on);
    }
    void showVoicetracksOnly(bool on, const std::optional<std::string>& counter) override {
        view_->filterBar().showVoicetracksOnly(on, counter);
    }

    // PlayheadDisplayHost
    std::optional<Size> timelineSize() const override;
    void setPlayheadFrame(const Box& frame) override { inner().setPlayheadFrame(frame); }
    void setTransportTime(const std::string& text) override {
        view_->transport().setTransportTime(text);
    }
    void setNowPlaying(const std::string& text) override { view_->transport().setNowPlaying(text); }

    // Several of them
    DaySeconds playheadSec() const override { return {review_.day().playheadSec()}; }
    const std::vector<Marker>& allMarkers() const override { return review_.day().allMarkers(); }
    void jumpTo(DaySeconds position) override { review_.playback().jumpTo(position); }
    void layOutLogsTab() override { view_->layOutLogsTab(); }
    void redrawSummaryBar() override { inner().redrawSummaryBar(); }

    LanesInnerView& inner() { return view_->lanesScroll().lanesInnerView(); }

    ShellServices& services_;
    KeyResponderView& root_;
    const RecordingFacts recording_;
    double actionBarHeight_;
    LaneMarkers laneMarkers_;
    bool hadDay_ = false;  // when the timeline was last drawn anew

    ReviewDesk review_;
    Selections selections_;
    TimelineZoom zoom_;
    LaneFilters filters_;
    PlayheadDisplay playhead_;
    DayNavigation navigation_;

    LogsTabView* view_;  // Owns: the root view
};

}  // namespace sonavault
