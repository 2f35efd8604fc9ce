#pragma once

#include <functional>
#include <optional>
#include <string>

#include "recorder/SVRecorder.h"
#include "review/LoadedDay.h"
#include "review/Playback.h"
#include "shell/KeyResponderView.h"
#include "shell/ShellServices.h"
#include "store/AudioLengthCache.h"
#include "store/DayList.h"
#include "store/PeaksCache.h"

namespace sonavault {

/// The reviewing half of the program: the list of days, the day under review, its waveform and its
/// sound, with each other, the recorder and the window.
///
/// Thread: main.
class ReviewDesk final : private DayListHost,
                         private PeaksHost,
                         private LoadedDayHost,
                         private PlaybackHost {
  public:
    /// `recorder` gives null until there is one. `view` and what `services` name outlive the desk.
    ReviewDesk(ShellServices& services, KeyResponderView& view,
               std::function<const SVRecorder*()> recorder);

    DayList& days() { return days_; }
    LoadedDay& day() { return day_; }
    PeaksCache& peaks() { return peaks_; }
    Playback& playback() { return playback_; }

    /// Shows the days as they were last read.
    void renderDateList() override;

  private:
    // DayListHost
    bool isRecording() const override;
    double currentRecordingDurationSec() const override;
    void loadRecording(const std::filesystem::path& audio, bool silent) override;
    void unloadRecording() override { day_.unload(); }
    void loadStartupRecording() override { day_.loadStartupRecording(); }
    void loadMarkersForLoadedRecording() override { day_.loadMarkersForLoadedRecording(); }
    void updateRow(const DailyRecording& row) override;
    std::size_t ask(const DayListWarning& warning) override;

    // PeaksHost
    void setStatusBarText(const std::string& text) override;

    // LoadedDayHost
    void stopPlayback() override { playback_.stopPlayback(); }
    void renderTimeline() override {}
    void showEmptyState(const std::string& text) override;
    void showWarning(const std::string& message, const std::string& information) override;

    // PlaybackHost
    void setPlayButtonTitle(const std::string&) override {}

    // Several of the four
    void updatePlayheadVisuals() override {}
    std::optional<std::filesystem::path> lastRecordingURL() const override;
    std::optional<std::filesystem::path> loadedFileURL() const override {
        return day_.loadedFileURL();
    }
    void redrawSummaryBar() override {}

    ShellServices& services_;
    KeyResponderView& view_;
    const std::function<const SVRecorder*()> recorder_;
    AudioLengthCache lengths_;
    DayList days_;
    PeaksCache peaks_;
    LoadedDay day_;
    Playback playback_;
};

}  // namespace sonavault
