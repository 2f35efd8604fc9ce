#pragma once

#include <functional>
#include <optional>
#include <string>

#include "recorder/SVRecorder.h"
#include "review/LoadedDay.h"
#include "review/Playback.h"
#include "review/SummaryBar.h"
#include "shell/ReviewScreen.h"
#include "shell/ShellServices.h"
#include "store/AudioLengthCache.h"
#include "store/DayList.h"
#include "store/PeaksCache.h"

namespace sonavault {

/// The reviewing half of the program: the list of days, the day under review, its waveform and its
/// sound, with each other, the recorder and the screen.
///
/// Thread: main.
class ReviewDesk final : private DayListHost,
                         private PeaksHost,
                         private LoadedDayHost,
                         private PlaybackHost {
  public:
    /// `recorder` gives null until there is one. `screen` and what `services` name outlive the
    /// desk.
    ReviewDesk(ShellServices& services, ReviewScreen& screen,
               std::function<const SVRecorder*()> recorder);

    DayList& days() { return days_; }
    LoadedDay& day() { return day_; }
    const LoadedDay& day() const { return day_; }
    PeaksCache& peaks() { return peaks_; }
    const PeaksCache& peaks() const { return peaks_; }
    Playback& playback() { return playback_; }

    /// Shows the days as they were last read.
    void renderDateList() override;

    /// The audio file that the recorder opened last; nothing without a recorder.
    std::optional<std::filesystem::path> lastRecordingURL() const override;

    /// How much audio the day under review holds, and from when on; nothing without a day.
    std::optional<AudioExtent> audioExtent() const;

  private:
    // DayListHost
    bool isRecording() const override;
    double currentRecordingDurationSec() const override;
    void loadRecording(const std::filesystem::path& audio, bool silent) override;
    void unloadRecording() override { day_.unload(); }
    void loadStartupRecording() override { day_.loadStartupRecording(); }
    void loadMarkersForLoadedRecording() override { day_.loadMarkersForLoadedRecording(); }
    void updateRow(const DailyRecording& row) override { screen_.updateRow(row); }
    std::size_t ask(const DayListWarning& warning) override;

    // PeaksHost
    void setStatusBarText(const std::string& text) override { screen_.setStatusBarText(text); }
    void redrawSummaryBar() override { screen_.redrawSummaryBar(); }

    // LoadedDayHost
    void stopPlayback() override { playback_.stopPlayback(); }
    void renderTimeline() override { screen_.renderTimeline(); }
    void showEmptyState(const std::string& text) override { screen_.showEmptyState(text); }
    void showWarning(const std::string& message, const std::string& information) override;

    // PlaybackHost
    void setPlayButtonTitle(const std::string& title) override {
        screen_.setPlayButtonTitle(title);
    }

    // Several of the four
    void updatePlayheadVisuals() override { screen_.updatePlayheadVisuals(); }
    std::optional<std::filesystem::path> loadedFileURL() const override {
        return day_.loadedFileURL();
    }

    ShellServices& services_;
    ReviewScreen& screen_;
    const std::function<const SVRecorder*()> recorder_;
    AudioLengthCache lengths_;
    DayList days_;
    PeaksCache peaks_;
    LoadedDay day_;
    Playback playback_;
};

}  // namespace sonavault
