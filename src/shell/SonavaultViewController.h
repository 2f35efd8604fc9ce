#pragma once

#include <QPointer>
#include <QTimer>
#include <functional>
#include <memory>
#include <string>

#include "platform/BackgroundJob.h"
#include "recorder/SVRecorder.h"
#include "shell/ExportDesk.h"
#include "shell/KeyDesk.h"
#include "shell/KeyMonitor.h"
#include "shell/OwedRecording.h"
#include "shell/RecorderDesk.h"
#include "shell/SVSettingsWindowController.h"
#include "shell/ShellServices.h"
#include "shell/StationIntegration.h"
#include "shell/TimelineDesk.h"
#include "views/AirchecksTabView.h"
#include "views/KeyResponderView.h"

namespace sonavault {

/// Puts the program's objects together, in the order in which they need each other, and drives them
/// from one tick.
///
/// It has three phases: constructed (there is a view, but no recorder and no timer), ready (from
/// afterWindowReady() on), and quit, which is nothing more than destruction: the day's file is left
/// as a crash would leave it.
///
/// Thread: main.
class SonavaultViewController {
  public:
    explicit SonavaultViewController(ShellServices services);
    ~SonavaultViewController();
    SonavaultViewController(const SonavaultViewController&) = delete;
    SonavaultViewController& operator=(const SonavaultViewController&) = delete;

    /// The window's content. Owns: this object, also while a window shows it.
    KeyResponderView& rootView() { return *rootView_; }

    /// Called once when the window is on the screen: opens the loudspeakers, puts right what a
    /// crash has left in the recordings folder, lists the days and loads one, makes the recorder,
    /// gives it the chosen source, begins recording if that is wanted at launch, starts the tick,
    /// listens to the keys and joins the hub.
    void afterWindowReady();

    /// The source last chosen, as the preferences have it; the line input without a known one.
    /// Setting stores it at once, and changes nothing else.
    SVRecorderSourceMode sourceMode() const;
    void setSourceMode(SVRecorderSourceMode mode);

    /// The person chose whether the next launch begins recording; tells so, and leaves this launch
    /// as it is.
    void autoResumeChosen(bool resumes);

    // What the menu asks for.
    void toggleRecordingFromMenu();
    void openLastRecordingFromMenu();
    void setSourceLineInput() { changeSource(SVRecorderSourceMode::lineInput); }
    void setSourceCadenzoTCP() { changeSource(SVRecorderSourceMode::cadenzoTCP); }

    /// Told after the source has changed.
    std::function<void()> onSourceModeChanged;

    /// One sentence for the person at the desk; stands until the next one.
    void setStatusBarText(const std::string& text);

    /// Brings everything live on the screen up to date; runs 20 times a second from
    /// afterWindowReady() on.
    void tickDisplay();

    /// Null until afterWindowReady().
    const SVRecorder* recorder() const { return recorder_.get(); }

    /// The days and the one under review.
    ReviewDesk& review() { return timeline_.review(); }

    /// How that one is shown.
    TimelineDesk& timeline() { return timeline_; }

    /// What is cut from it.
    ExportDesk& exports() { return exports_; }

    /// What the station's other programs hear and say.
    StationIntegration& station() { return station_; }

  private:
    static constexpr int kTickMilliseconds = 50;

    void startDisplayLoop();
    StationIntegration::Facts stationFacts();
    void putDaysRight();
    void removeLeftovers();
    void makeRecorder();
    void autoResumeAtLaunch();
    void tryOwedRecording();
    bool isWaitingForLink() const;
    void changeSource(SVRecorderSourceMode mode);
    RecordingFacts recordingFacts();
    ExportDesk::Outlets exportOutlets();
    void buildTabs();
    void settingsClicked();
    void showConnection();
    void showWarning(const std::string& message, const std::string& information);
    double now() const { return secondsSince1970(services_.recorder.clock.now()); }

    ShellServices services_;
    QPointer<KeyResponderView> rootView_;
    std::shared_ptr<RecorderDesk> desk_;
    TimelineDesk timeline_;
    StationIntegration station_;
    ExportDesk exports_;
    KeyDesk keys_;
    OwedRecording owedRecording_;
    std::unique_ptr<BackgroundJob> leftovers_;
    std::unique_ptr<SVRecorder> recorder_;
    std::unique_ptr<QTimer> displayTimer_;
    std::unique_ptr<KeyMonitor> keyMonitor_;
    std::unique_ptr<SVSettingsWindowController> settingsWindowController_;
};

}  // namespace sonavault
