#include "shell/TimelineDesk.h"

#include "review/TimelineMapping.h"

namespace sonavault {

TimelineDesk::TimelineDesk(ShellServices& services, KeyResponderView& root,
                           RecordingFacts recording)
    : services_(services),
      root_(root),
      recording_(std::move(recording)),
      actionBarHeight_(restoredActionBarHeight(services.preferences)),
      review_(services, *this, recording_.recorder),
      selections_(*this),
      zoom_(*this),
      filters_(*this),
      playhead_(*this),
      navigation_(*this),
      view_(new LogsTabView(*this, *this, transportActions(), &root)) {
    connectBars();
}

TransportActions TimelineDesk::transportActions() {
    return {.prevMarkerClicked = [this] { navigation_.jumpToMarker(-1); },
            .playButtonClicked = [this] { review_.playback().togglePlayback(); },
            .nextMarkerClicked = [this] { navigation_.jumpToMarker(1); },
            .inPointClicked = [this] { selections_.markSelectionStart(); },
            .outPointClicked = [this] { selections_.markSelectionEnd(); },
            .exportClicked = [this] { onExportSelections(); }};
}

void TimelineDesk::connectBars() {
    view_->onExportSelections = [this] { onExportSelections(); };
    view_->filterBar().onFilterChanged = [this](std::string_view key, bool on) {
        filters_.filterChanged(key, on);
    };
    view_->filterBar().onVoicetracksOnlyClicked = [this] { filters_.voicetracksOnlyClicked(); };
    view_->zoomBar().onPresetClicked = [this](std::size_t preset) {
        zoom_.zoomPresetClicked(preset);
    };
}

void TimelineDesk::renderDateList(const std::vector<DailyRecording>& days,
                                  const std::string& selectedDate) {
    view_->dateList().renderDateList(days, selectedDate);
}

void TimelineDesk::renderTimeline() {
    laneMarkers_ = LaneMarkers(allMarkers());
    playhead_.setMarkers(allMarkers());
    layOutLogsTab();
    view_->showEmptyState(emptyStateText(allMarkers()).value_or(""));
    // Without a day there is no place for the clock to tell; with one, its markers may be others.
    const bool hasDay = review_.day().loadedFileURL().has_value();
    if (hasDay)
        updatePlayheadVisuals();
    else if (hadDay_)
        playhead_.showNoDay();
    hadDay_ = hasDay;
}

void TimelineDesk::setStatusBarText(const std::string& text) {
    root_.statusBar().setStatusBarText(text);
}

void TimelineDesk::tickMeters() {
    view_->vuMeterL().setLevel(review_.playback().playbackLevelDbL());
    view_->vuMeterR().setLevel(review_.playback().playbackLevelDbR());
}

SummaryScene TimelineDesk::summaryScene() const {
    const auto& peaks = review_.peaks().peaksData();
    return {.audio = review_.audioExtent(),
            .peaksData = peaks ? &*peaks : nullptr,
            .currentRecordingOffset = review_.day().currentRecordingOffset(),
            .zoomMult = zoom_.zoomMult(),
            .selections = &selections_.selections(),
            .pendingStartSec = selections_.pendingStartSec()};
}

void TimelineDesk::resizeActionBar(double height) {
    actionBarHeight_ = height;
    layOutLogsTab();
}

void TimelineDesk::keepActionBarHeight() {
    services_.preferences.setReal(kActionBarHeightKey, actionBarHeight_);
}

std::string TimelineDesk::todayDateString() const {
    return sonavault::todayDateString(services_.recorder.clock);
}

std::optional<Size> TimelineDesk::timelineSize() const {
    const auto& inner = view_->lanesScroll().lanesInnerView();
    return Size{mappingWidth(inner.timelineWidth(), inner.width()),
                static_cast<double>(inner.height())};
}

}  // namespace sonavault
