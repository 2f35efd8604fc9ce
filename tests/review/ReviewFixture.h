#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "review/LoadedDay.h"
#include "review/Playback.h"
#include "store/DayListHost.h"
#include "support/ManualClock.h"
#include "support/ManualQueue.h"
#include "support/Moments.h"
#include "support/RecordedLog.h"
#include "support/ScopedTimeZone.h"
#include "support/SyntheticMp3.h"
#include "support/TempFolder.h"

namespace sonavault::testing {

/// The window around the day, writing down what it was asked to draw.
class FakeWindow final : public LoadedDayHost,
                         public PeaksHost,
                         public DayListHost,
                         public PlaybackHost {
  public:
    void stopPlayback() override {
        ++stops;
        if (playback) playback->stopPlayback();
    }
    void updatePlayheadVisuals() override { ++playheadsShown; }
    void setPlayButtonTitle(const std::string& title) override { playButton = title; }

    void renderDateList() override { ++listsRendered; }
    void renderTimeline() override { ++timelinesRendered; }
    void redrawSummaryBar() override { ++summariesDrawn; }
    void showEmptyState(const std::string& text) override { emptyState = text; }
    void showWarning(const std::string& message, const std::string& information) override {
        warnings.emplace_back(message, information);
    }

    std::optional<std::filesystem::path> lastRecordingURL() const override { return recordedLast; }
    std::optional<std::filesystem::path> loadedFileURL() const override { return std::nullopt; }
    void setStatusBarText(const std::string& text) override { status = text; }

    bool isRecording() const override { return false; }
    double currentRecordingDurationSec() const override { return 0; }
    void loadRecording(const std::filesystem::path&, bool) override {}
    void unloadRecording() override {}
    void loadStartupRecording() override {}
    void loadMarkersForLoadedRecording() override {}
    void updateRow(const DailyRecording&) override {}
    std::size_t ask(const DayListWarning&) override { return 0; }

    Playback* playback = nullptr;  ///< set by a test that has one
    std::optional<std::filesystem::path> recordedLast;
    int stops = 0;
    int playheadsShown = 0;
    std::string playButton;
    int listsRendered = 0;
    int timelinesRendered = 0;
    int summariesDrawn = 0;
    std::string emptyState;
    std::string status;
    std::vector<std::pair<std::string, std::string>> warnings;
};

/// A station on the afternoon of Friday, 8 May 2026.
class ReviewFixture : public ::testing::Test {
  protected:
    std::filesystem::path fileOf(const std::string& date, const std::string& suffix = "mp3") const {
        return folder_ / ("Sonavault_" + date + "." + suffix);
    }

    /// 36 s of audio, and the days read again.
    void haveAudio(const std::string& date) {
        writeFile(fileOf(date), SyntheticMp3().frames(1000).bytes());
        days_.reloadDailyRecordings();
    }
    /// With a manifest that puts the file's first frame at `startOffsetSec` of the day.
    void haveAudioFrom(const std::string& date, double startOffsetSec) {
        haveAudio(date);
        haveManifest(date, startOffsetSec);
    }
    void haveManifest(const std::string& date, double startOffsetSec) const {
        writeFile(fileOf(date, "json"),
                  R"({"version": 1, "start_offset_sec": )" + std::to_string(startOffsetSec) + "}");
    }
    void haveLog(const std::string& date, const std::string& rows) const {
        writeFile(fileOf(date, "csv"), "timestamp,event,label,duration\n" + rows);
    }

    /// Puts a day under review that has all there can be: audio, manifest, markers and waveform.
    void loadWholeDay() {
        haveAudioFrom("2026-05-07", 0.5);
        haveLog("2026-05-07", "08:10:00,break_start,Spots,120\n");
        day_.loadRecording(fileOf("2026-05-07"));
        const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (!peaks_.peaksData() && std::chrono::steady_clock::now() < until) mainQueue_.runAll();
        ASSERT_TRUE(peaks_.peaksData());
        ASSERT_TRUE(day_.loadedFile() && day_.loadedFileURL() && day_.loadedManifest());
        ASSERT_EQ(day_.allMarkers().size(), 1U);
    }

    const ScopedTimeZone zone_{"Europe/Berlin"};
    TempFolder home_;
    RecordedLog log_;
    ManualClock clock_{at("2026-05-08T14:00:00.000Z")};
    ManualQueue mainQueue_;
    FakeWindow window_;
    const StationFolder station_{home_.path(), Preferences(home_ / "shared.conf")};
    const std::filesystem::path folder_ = home_.path() / "Calderwave/Station/Logs/Audio";
    AudioLengthCache lengths_{home_ / "cache"};
    DayList days_{station_, clock_, log_, lengths_, window_};
    PeaksCache peaks_{window_, clock_, log_, mainQueue_,
                      [](const std::filesystem::path&, double, const std::stop_token&) {
                          return PeaksResult(PeaksData{.bucketSec = 0.25, .rms = {0.5F}});
                      }};
    LoadedDay day_{window_, days_, peaks_, clock_, log_};
};

}  // namespace sonavault::testing
