#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "export/ExportFolder.h"
#include "export/FrameExporter.h"
#include "support/ManualQueue.h"
#include "support/SyntheticMp3.h"
#include "support/TempFolder.h"

namespace sonavault::testing {

/// The program around an export: the day on the screen, and a person who answers as the test says
/// and whose screen is written down.
class FakeDesk final : public ExportHost, public ExportedDay {
  public:
    std::optional<std::filesystem::path> loadedFileURL() const override { return loaded; }
    DaySeconds currentRecordingOffset() const override { return offset; }
    std::string selectedDate() const override { return date; }
    std::vector<Selection> selections() const override { return chosen; }
    std::vector<std::filesystem::path> recordingsFolders() const override { return recordings; }

    std::size_t showAlert(const ExportAlert& alert) override {
        alerts.push_back(alert);
        if (onAlert) onAlert();
        return alertAnswer;
    }
    AircheckAnswer askForAircheck(const AircheckQuestion& question) override {
        questions.push_back(question);
        return aircheckAnswer;
    }
    std::optional<std::filesystem::path> chooseOutput(const SavePanel& panel) override {
        panels.push_back(panel);
        if (whileChoosing) whileChoosing();
        return output;
    }
    void setStatusBarText(const std::string& text) override { status.push_back(text); }
    void revealInFileViewer(const std::filesystem::path& file) override {
        revealed.push_back(file);
    }
    void publishAircheckSaved(const AircheckSaved& saved) override { published.push_back(saved); }

    // The day.
    std::optional<std::filesystem::path> loaded;
    std::function<void()> whileChoosing;  ///< what happens while a save panel is open
    DaySeconds offset;
    std::string date = "2026-05-08";
    std::vector<Selection> chosen;
    std::vector<std::filesystem::path> recordings;

    // What the person answers.
    std::size_t alertAnswer = 0;
    std::function<void()> onAlert;
    AircheckAnswer aircheckAnswer{.button = 0, .startHour = 0, .endHour = 23};
    std::optional<std::filesystem::path> output;

    // What they saw.
    std::vector<ExportAlert> alerts;
    std::vector<AircheckQuestion> questions;
    std::vector<SavePanel> panels;
    std::vector<std::string> status;
    std::vector<std::filesystem::path> revealed;
    std::vector<AircheckSaved> published;
};

/// A station with a folder of its own, and a desk before it.
class ExportFixture : public ::testing::Test {
  protected:
    static Selection selection(double start, double end) {
        return Selection{.startSec = start, .endSec = end};
    }

    std::filesystem::path stationFolder() const { return home_ / "Calderwave/Station"; }
    std::filesystem::path dayFile(const std::string& suffix = "mp3") const {
        return stationFolder() / "Logs/Audio" / ("Sonavault_2026-05-08." + suffix);
    }

    /// Puts a day of frames of 36 ms, from midnight on, under review.
    void loadDay(double seconds) {
        day_ = SyntheticMp3().frames(static_cast<int>(seconds / 0.036) + 1).bytes();
        writeFile(dayFile(), day_);
        desk_.loaded = dayFile();
    }

    void haveLog(const std::string& rows) const {
        writeFile(dayFile("csv"), "timestamp,event,label,duration\n" + rows);
    }

    /// Runs what comes to the main thread until no export is under way.
    void finishExports() {
        const auto patience = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!exporter_.underWay().empty()) {
            ASSERT_LT(std::chrono::steady_clock::now(), patience) << "an export does not end";
            if (mainQueue_.runAll() == 0) std::this_thread::yield();
        }
    }

    TempFolder home_;
    FakeDesk desk_;
    ManualQueue mainQueue_;
    Preferences preferences_{home_ / "sonavault.conf"};
    const StationFolder station_{home_.path(), Preferences(home_ / "shared.conf")};
    ExportFolder folder_{preferences_, station_};
    FrameExporter exporter_{desk_, mainQueue_};
    std::string day_;  // the bytes of the day under review
};

}  // namespace sonavault::testing
