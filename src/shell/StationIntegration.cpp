#include "shell/StationIntegration.h"

#include <cmath>

#include "platform/LocalTime.h"
#include "recorder/SVQualityLevel.h"
#include "shell/ForeignText.h"
#include "store/RecordingModel.h"
#include "store/StationFolder.h"
#include "store/Version.h"

namespace sonavault {

namespace {

/// By how much a beat may be late and still leave the next one in its place. Units: seconds
constexpr double kMostLateBeatSec = 1;

QString qString(const std::string& text) {
    return QString::fromStdString(text);
}

}  // namespace

StationIntegration::StationIntegration(StationHub& hub, const Clock& clock, Log& log,
                                       const Preferences& preferences,
                                       std::unique_ptr<MainTimer> timer, Facts facts)
    : hub_(hub),
      clock_(clock),
      log_(log),
      preferences_(preferences),
      facts_(std::move(facts)),
      switchboardHeartbeatTimer_(std::move(timer)) {}

void StationIntegration::startSwitchboard() {
    if (switchboardConnectStarted_) return;
    switchboardConnectStarted_ = true;
    hub_.join(kSwitchboardAppName, lifetime_.guard([this](const std::string& state) {
        log_.line("Sonavault Switchboard: state = " + printable(state));
    }));
    hub_.subscribe(kSwitchboardTopicCadenzoPlaybackState,
                   lifetime_.guard([this](const QJsonObject& payload) {
                       handleCadenzoPlaybackStateChanged(payload);
                   }));
    beat();
}

void StationIntegration::beat() {
    switchboardHeartbeatTimer_->start(untilNextBeat(), [this] { beat(); });
    publishSwitchboardHeartbeat();
}

// A busy main thread makes a beat late, but not those after it. What looks early or very late is a
// clock that was set: the rhythm begins anew.
std::chrono::milliseconds StationIntegration::untilNextBeat() {
    const WallTime now = clock_.now();
    const double late = secondsBetween(nextBeat_, now);
    const bool inRhythm = late >= 0 && late < kMostLateBeatSec;
    nextBeat_ = after(inRhythm ? nextBeat_ : now, kSwitchboardHeartbeatIntervalSec);
    return std::chrono::milliseconds(std::llround(secondsBetween(now, nextBeat_) * 1000));
}

std::string StationIntegration::isoNowString() const {
    return iso8601WithMilliseconds(clock_.now());
}

std::string StationIntegration::today() const {
    return todayDateString(clock_);
}

// What is told

void StationIntegration::publishSwitchboardHeartbeat() {
    const SVRecorder* recorder = facts_.recorder();
    hub_.stateSet(kSwitchboardStateKeyHeartbeat,
                  {{"at", qString(isoNowString())},
                   {"version", kSonavaultVersion},
                   {"recording", facts_.isRecording()},
                   {"sourceMode", recorder ? qString(rawValue(recorder->sourceMode())) : "unknown"},
                   {"cadenzoConnected", recorder && recorder->isCadenzoConnected()}});
}

void StationIntegration::publishCurrentRecordingState() {
    const SVRecorder* recorder = facts_.recorder();
    QJsonObject state{{"date", qString(today())},
                      {"recording", facts_.isRecording()},
                      {"durationSec", recorder ? recorder->currentRecordingDurationSec() : 0.0},
                      {"qualityLevel", SVQualityLevel::current(preferences_).rawValue()},
                      {"at", qString(isoNowString())}};
    if (recorder && recorder->lastRecordingURL()) {
        const auto& audio = *recorder->lastRecordingURL();
        state["audioURL"] = qString(audio.string());
        state["csvURL"] = qString(markerLogURL(audio).string());
    }
    if (const auto count = facts_.todaysMarkerCount()) state["markerCount"] = *count;
    hub_.stateSet(kSwitchboardStateKeyCurrentRecording, state);
}

void StationIntegration::publishCurrentRecordingStateIfDue(double now) {
    if (lastSwitchboardCurrentRecPub_.takeTurn(now)) publishCurrentRecordingState();
}

void StationIntegration::detectAndPublishRecordingStateTransition() {
    if (const auto transition = transitions_.look(facts_.isRecording(), today()))
        publishRecordingStateChanged(*transition);
}

void StationIntegration::publishRecordingStateChanged(const RecordingTransition& transition) {
    QJsonObject payload{{"state", qString(transition.state)},
                        {"date", qString(transition.date)},
                        {"qualityLevel", SVQualityLevel::current(preferences_).rawValue()}};
    const SVRecorder* recorder = facts_.recorder();
    if (recorder && recorder->lastRecordingURL())
        payload["audioURL"] = qString(recorder->lastRecordingURL()->string());
    hub_.notify(kSwitchboardTopicRecordingState, payload);
}

void StationIntegration::publishAircheckSaved(const AircheckSaved& aircheck) {
    hub_.notify(kSwitchboardTopicAircheckSaved,
                {{"label", qString(aircheck.label)},
                 {"mode", qString(aircheck.mode)},
                 {"date", qString(aircheck.date)},
                 {"startHour", aircheck.startHour},
                 {"endHour", aircheck.endHour},
                 {"outputPath", qString(aircheck.outputURL.string())},
                 {"segmentCount", static_cast<qint64>(aircheck.segmentCount)},
                 {"totalDurationSec", aircheck.totalDurationSec},
                 {"source", qString(aircheck.source)}});
}

// What is heard

void StationIntegration::handleCadenzoPlaybackStateChanged(const QJsonObject& payload) {
    const auto event = PlaybackEvent::from(payload);
    if (!event) {
        log_.line(missingStateLine(payload));
        return;
    }
    const std::string at = event->at.value_or(isoNowString());
    log_.line(
        "Sonavault Switchboard: cadenzo.playback-state-changed state=" + printable(event->state) +
        " cause=" + printable(event->cause) + " at=" + printable(at));
    SVRecorder* recorder = facts_.recorder();
    if (!recorder || !facts_.isRecording()) return;
    recorder->appendSyntheticMarker(clockTimeOf(at), event->markerType, event->markerLabel);
}

/// An event whose time can't be read is placed where it arrived.
std::string StationIntegration::clockTimeOf(const std::string& at) const {
    if (const auto clockTime = hmsClockTimeFromIso(at)) return *clockTime;
    return hmsClockTimeFromIso(isoNowString()).value_or("");
}

}  // namespace sonavault
