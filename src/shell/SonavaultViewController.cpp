#include "shell/SonavaultViewController.h"

#include "store/OrphanRecovery.h"

namespace sonavault {

SonavaultViewController::SonavaultViewController(ShellServices services)
    : services_(std::move(services)),
      rootView_(new KeyResponderView),
      desk_(std::make_shared<RecorderDesk>()),
      review_(services_, *rootView_, [this] { return recorder_.get(); }),
      station_(services_.hub, services_.recorder.clock, services_.recorder.log,
               services_.preferences, services_.recorder.makeMainTimer(), stationFacts()) {
    desk_->onStatusText = [this](const std::string& text) { setStatusBarText(text); };
    desk_->onAlert = [this](const std::string& message, const std::string& information) {
        showWarning(message, information);
    };
    desk_->onLivePeak = [this](float rms, double bucketSec) {
        review_.peaks().appendLivePeak(rms, bucketSec);
    };
    review_.days().reloadDailyRecordings();
}

SonavaultViewController::~SonavaultViewController() {
    displayTimer_.reset();
    recorder_.reset();
    delete rootView_.data();
}

// Start

void SonavaultViewController::afterWindowReady() {
    showRecordingStatus();
    review_.renderDateList();
    review_.playback().setupAudioEngine();
    putDaysRight();
    makeRecorder();
    recorder_->applySourceMode(sourceMode());
    if (autoResumesOnLaunch(services_.preferences)) autoResumeAtLaunch();
    startDisplayLoop();
    station_.startSwitchboard();
}

StationIntegration::Facts SonavaultViewController::stationFacts() {
    return {.isRecording = [this] { return desk_->isRecording(); },
            .recorder = [this] { return recorder_.get(); },
            .todaysMarkerCount = [this]() -> std::optional<int> {
                const auto row = review_.days().rowOf(todayDateString(services_.recorder.clock));
                if (!row) return std::nullopt;
                return row->markerCount;
            }};
}

/// Before there is a recorder, so that nothing is swept that is being written.
void SonavaultViewController::putDaysRight() {
    recoverOrphanedRecordings(services_.recorder.stationFolder, services_.recorder.clock,
                              services_.recorder.log);
    review_.days().reloadDailyRecordings();
    review_.renderDateList();
    review_.day().loadStartupRecording();
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
    review_.playback().advancePlayhead();
    tryOwedRecording();
    showRecordingStatus();
    const double moment = now();
    review_.days().liveRefreshTodayRowIfDue(moment);
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

void SonavaultViewController::showRecordingStatus() {
    const RecordingStatus status = recordingStatus();
    rootView_->statusBar().connectionDot().setColour(connectionDotColour(status));
    rootView_->recordingPanel().show(status);
}

RecordingStatus SonavaultViewController::recordingStatus() const {
    if (!recorder_) return {};
    return {
        .source = recorder_->sourceMode(),
        .isRecording = desk_->isRecording(),
        .isWaiting = isWaitingForLink() || owedRecording_.isWaiting(),
        .isCadenzoConnected = recorder_->isCadenzoConnected(),
        .durationSec = recorder_->currentRecordingDurationSec(),
        .inputDb = desk_->recordingInputDb(),
    };
}

void SonavaultViewController::setStatusBarText(const std::string& text) {
    rootView_->statusBar().statusBarText().showText(QString::fromStdString(text));
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
    const auto& file = *recorder_->lastRecordingURL();
    if (!services_.openFile(file))
        showWarning("The recording could not be opened",
                    "No program on this computer opens " + file.string() + ".");
}

void SonavaultViewController::changeSource(SVRecorderSourceMode mode) {
    setSourceMode(mode);
    owedRecording_.personDecided();
    if (recorder_) recorder_->applySourceMode(mode);
    if (onSourceModeChanged) onSourceModeChanged();
}

void SonavaultViewController::showWarning(const std::string& message,
                                          const std::string& information) {
    services_.alerts.showModally({.style = Alert::warning,
                                  .message = QString::fromStdString(message),
                                  .information = QString::fromStdString(information)});
}

}  // namespace sonavault
