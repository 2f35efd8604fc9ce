#pragma once

#include <gtest/gtest.h>

#include <functional>

#include "DayStreams.h"
#include "store/DayList.h"
#include "store/MarkerLogWriter.h"
#include "support/ManualClock.h"
#include "support/Moments.h"
#include "support/RecordedLog.h"
#include "support/ScopedTimeZone.h"
#include "support/TempFolder.h"

namespace sonavault::testing {

/// The program around the list of days, as far as the list can tell: it can put any file under
/// review that is not empty, and writes down what it was asked for.
class FakeDayListHost final : public DayListHost {
  public:
    bool isRecording() const override { return recording; }
    double currentRecordingDurationSec() const override { return recordedSec; }
    std::optional<std::filesystem::path> loadedFileURL() const override { return loaded; }

    void loadRecording(const std::filesystem::path& audio, bool silent) override {
        said("load " + audio.filename().string() + (silent ? " silently" : ""));
        loaded.reset();
        std::error_code missing;
        if (std::filesystem::file_size(audio, missing) > 0 && !missing) loaded = audio;
    }
    void unloadRecording() override {
        said("unload");
        if (whileUnloading) whileUnloading();
        loaded.reset();
    }
    void loadStartupRecording() override { said("load startup"); }
    void loadMarkersForLoadedRecording() override { said("load markers"); }
    void redrawSummaryBar() override { said("redraw summary"); }
    void renderDateList() override { said("render list"); }
    void updateRow(const DailyRecording& row) override {
        said("row " + row.date + " " + row.recorded + " " + std::to_string(row.markerCount));
    }
    std::size_t ask(const DayListWarning& warning) override {
        warnings.push_back(warning);
        if (whileAsking) whileAsking();
        return answer;
    }

    /// What was asked for since the last call.
    std::vector<std::string> heard() { return std::exchange(heard_, {}); }

    bool recording = false;
    double recordedSec = 0;
    std::optional<std::filesystem::path> loaded;
    std::size_t answer = 0;
    std::function<void()> whileAsking;
    std::function<void()> whileUnloading;
    std::vector<DayListWarning> warnings;

  private:
    void said(const std::string& what) { heard_.push_back(what); }

    std::vector<std::string> heard_;
};

/// A station with its folder of recordings, on the afternoon of Friday, 8 May 2026.
class DayListFixture : public ::testing::Test {
  protected:
    DayListFixture() { std::filesystem::create_directories(folder_); }

    std::filesystem::path audioOf(const std::string& date) const {
        return folder_ / ("Sonavault_" + date + ".mp3");
    }
    std::filesystem::path logOf(const std::string& date) const {
        return folder_ / ("Sonavault_" + date + ".csv");
    }

    /// Audio of a day, at 24 kbps. `seconds`: to the frame of 36 ms
    void haveAudio(const std::string& date, double seconds = 36) const {
        writeFile(audioOf(date), dayRun(static_cast<std::int64_t>(seconds / 0.036), {24, 16000}));
    }

    void haveMarkers(const std::string& date, int count) const {
        std::string text = kMarkerLogHeader;
        for (int i = 0; i < count; ++i) text += markerRow("08:00:00", "hour", "", 0);
        writeFile(logOf(date), text);
    }

    std::vector<std::string> dates() const {
        std::vector<std::string> dates;
        for (const auto& row : days_.dailyRecordings()) dates.push_back(row.date);
        return dates;
    }

    static constexpr auto kToday = "2026-05-08";
    static constexpr auto kYesterday = "2026-05-07";

    const ScopedTimeZone zone_{"Europe/Berlin"};
    TempFolder home_;
    RecordedLog log_;
    ManualClock clock_{at("2026-05-08T14:00:00.000Z")};
    FakeDayListHost host_;
    const std::filesystem::path shared_ = home_ / "shared.conf";
    const StationFolder station_{home_.path(), Preferences(shared_)};
    const std::filesystem::path stationPath_ = home_.path() / "Calderwave" / "Station";
    const std::filesystem::path folder_ = stationPath_ / "Logs" / "Audio";
    AudioLengthCache lengths_{home_ / "cache"};
    DayList days_{station_, clock_, log_, lengths_, host_};
};

}  // namespace sonavault::testing
