#include "shell/SonavaultViewController.h"

#include <system_error>

#include "platform/AtomicFile.h"
#include "shell/ShownConnection.h"
#include "store/OrphanRecovery.h"
#include "store/StalePeaks.h"

namespace sonavault {

SonavaultViewController::SonavaultViewController(ShellServices services)
    : services_(std::move(services)),
      rootView_(new KeyResponderView),
      desk_(std::make_shared<RecorderDesk>()),
      timeline_(services_, *rootView_, recordingFacts()),
      station_(services_.hub, services_.recorder.clock, services_.recorder.log,
               services_.preferences, services_.recorder.makeMainTimer(), stationFacts()),
      exports_(services_, timeline_.review(), timeline_.selections(), exportOutlets()),
      keys_(timeline_, exports_, [this] { toggleRecordingFromMenu(); }) {
    desk_->onStatusText = [this](const std::string& text) { setStatusBarText(text); };
    desk_->onAlert = [this](const std::string& message, const std::string& information) {
        showWarning(message, information);
    };
    desk_->onLivePeak = [this](float rms, double bucketSec) {
        review().peaks().appendLivePeak(rms, bucketSec);
    };
    desk_->onRecordingBegan = [this] { review().peaks().recordingBegan(); };
    buildTabs();
    review().days().reloadDailyRecordings();
}

SonavaultViewController::~SonavaultViewController() {
    keyMonitor_.reset();
    displayTimer_.reset();
    recorder_.reset();
    delete rootView_.data();
}

RecordingFacts SonavaultViewController::recordingFacts() {
    return {.recorder = [this] { return recorder_.get(); },
            .isRecording = [this] { return desk_->isRecording(); },
            .inputDb = [this] { return desk_->recordingInputDb(); },
            .toggleRecording = [this] { toggleRecordingFromMenu(); }};
}

StationIntegration::Facts SonavaultViewController::stationFacts() {
    return {.isRecording = [this] { return desk_->isRecording(); },
            .recorder = [this] { return recorder_.get(); },
            .todaysMarkerCount = [this]() -> std::optional<int> {
                const auto row = review().days().rowOf(todayDateString(services_.recorder.clock));
                if (!row) return std::nullopt;
                return row->markerCount;
            }};
}

ExportDesk::Outlets SonavaultViewController::exportOutlets() {
    return {
        .statusBarText = [this](const std::string& text) { setStatusBarText(text); },
        .publish = [this](const AircheckSaved& saved) { station_.publishAircheckSaved(saved); }};
}

void SonavaultViewController::buildTabs() {
    timeline_.onExportSelections = [this] { exports_.exportSelections(); };
    rootView_->setTabs(&timeline_.view(), new AirchecksTabView(exports_.schedule(), rootView_));
    rootView_->onSettingsClicked = [this] { settingsClicked(); };
    rootView_->onHelpClicked = [this] { services_.helpClicked(); };
}

// Start

void SonavaultViewController::afterWindowReady() {
    timeline_.view().layOutLogsTab();
    review().renderDateList();
    timeline_.renderTimeline();
    review().playback().setupAudioEngine();
    putDaysRight();
    makeRecorder();
    recorder_->applySourceMode(sourceMode());
    if (autoResumesOnLaunch(services_.preferences)) autoResumeAtLaunch();
    startDisplayLoop();
    keyMonitor_ = std::make_unique<KeyMonitor>(*rootView_, keys_);
    station_.startSwitchboard();
}

/// Before there is a recorder, so that nothing is swept that is being written.
void SonavaultViewController::putDaysRight() {
    recoverOrphanedRecordings(services_.recorder.stationFolder, services_.recorder.clock,
                              services_.recorder.log);
    removeStalePeaks(services_.recorder.stationFolder);
    review().days().reloadDailyRecordings();
    review().renderDateList();
    review().day().loadStartupRecording();
    removeLeftovers();
}

/// What earlier runs were writing when they ended. In the background: the folder of the last export
/// may lie on a disk that doesn't answer.
void SonavaultViewController::removeLeftovers() {
    std::vector<std::filesystem::path> folders;
    if (const auto days = services_.recorder.stationFolder.recordingsFolder())
        folders.push_back(*days);
    if (const auto airchecks = exports_.schedule().airchecksOutputFolder())
        folders.push_back(*airchecks);
    if (const auto chosen = services_.preferences.text(kLastExportFolderKey))
        folders.emplace_back(*chosen);
    try {
        leftovers_ = std::make_unique<BackgroundJob>("leftovers", [folders](const auto& stop) {
            for (const auto& folder : folders)
                if (!stop.stop_requested()) removeAbandonedTemporaries(folder);
        });
    } catch (const std::system_error&) {
        // No thread is to be had: the next launch does it.
    }
}

void SonavaultViewController::makeRecorder() {
    recorder_ = std::make_unique<SVRecorder>(services_.recorder);
    recorder_->setController(desk_);
}

void SonavaultViewController::autoResumeAtLaunch() {
    recorder_->requestAutoResume();
    owedRecording_.askedFor(now());
}

void SonavaultViewController::startDisplayLoop() {
    displayTimer_ = std::make_unique<QTimer>();
    // A coarse timer may come late by a twentieth; a precise one also goes on under menus and
    // alerts.
    displayTimer_->setTimerType(Qt::PreciseTimer);
    displayTimer_->setInterval(kTickMilliseconds);
    QObject::connect(displayTimer_.get(), &QTimer::timeout, rootView_, [this] { tickDisplay(); });
    displayTimer_->start();
}

// The tick

void SonavaultViewController::tickDisplay() {
    timeline_.tickPlayhead();
    timeline_.tickMeters();
    tryOwedRecording();
    showConnection();
    rootView_->statusBar().showProgress(exports_.progress());
    timeline_.tickLiveRows();
    const double moment = now();
    review().days().liveRefreshTodayRowIfDue(moment);
    exports_.schedule().tickDisplay(moment);
    station_.detectAndPublishRecordingStateTransition();
    station_.publishCurrentRecordingStateIfDue(moment);
}

void SonavaultViewController::tryOwedRecording() {
    if (!recorder_) return;
    if (!owedRecording_.takeTry(recorder_->isRecording(), isWaitingForLink(), now())) return;
    // Without a device a try is sure to fail, and would leave a trace in the log and on the disk.
    if (recorder_->sourceMode() == SVRecorderSourceMode::lineInput &&
        !services_.recorder.lineInput.lookForDevice())
        return;
    recorder_->requestAutoResume();
}

bool SonavaultViewController::isWaitingForLink() const {
    // The recorder's waiting outlives a change of source, but only the link ever ends it.
    return recorder_->isAutoResumeArmed() &&
           recorder_->sourceMode() == SVRecorderSourceMode::cadenzoTCP;
}

void SonavaultViewController::showConnection() {
    std::optional<SVRecorderSourceMode> source;
    if (recorder_) source = recorder_->sourceMode();
    rootView_->statusBar().showLinkState(
        shownConnection(source, recorder_ && recorder_->isCadenzoConnected()));
}

void SonavaultViewController::setStatusBarText(const std::string& text) {
    rootView_->statusBar().setStatusBarText(text);
}

// Choices that are kept

SVRecorderSourceMode SonavaultViewController::sourceMode() const {
    return sourceModeFromRawValue(services_.preferences.text(kSourceModeKey).value_or(""));
}

void SonavaultViewController::setSourceMode(SVRecorderSourceMode mode) {
    services_.preferences.setText(kSourceModeKey, rawValue(mode));
}

void SonavaultViewController::autoResumeChosen(bool resumes) {
    setStatusBarText(resumes ? "Auto-resume on launch: ON" : "Auto-resume on launch: OFF");
}

// The menu

void SonavaultViewController::toggleRecordingFromMenu() {
    if (!recorder_) return;
    owedRecording_.personDecided();
    recorder_->toggleRecording();
}

void SonavaultViewController::openLastRecordingFromMenu() {
    if (!recorder_ || !recorder_->lastRecordingURL()) {
        services_.alerts.showModally(
            {.message = QStringLiteral("No recording yet"),
             .information = QStringLiteral("Press ⌘R to start a recording first.")});
        return;
    }
    review().day().loadRecording(*recorder_->lastRecordingURL());
}

void SonavaultViewController::changeSource(SVRecorderSourceMode mode) {
    setSourceMode(mode);
    owedRecording_.personDecided();
    if (recorder_) recorder_->applySourceMode(mode);
    if (onSourceModeChanged) onSourceModeChanged();
}

void SonavaultViewController::settingsClicked() {
    if (!settingsWindowController_)
        settingsWindowController_ =
            std::make_unique<SVSettingsWindowController>(services_.preferences);
    settingsWindowController_->showWindow();
}

void SonavaultViewController::showWarning(const std::string& message,
                                          const std::string& information) {
    services_.alerts.showModally({.style = Alert::warning,
                                  .message = QString::fromStdString(message),
                                  .information = QString::fromStdString(information)});
}

}  // namespace sonavault
