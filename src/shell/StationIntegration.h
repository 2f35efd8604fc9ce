#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "export/ExportHost.h"
#include "platform/Clock.h"
#include "platform/Executor.h"
#include "platform/Log.h"
#include "platform/MainTimer.h"
#include "platform/Preferences.h"
#include "platform/Throttle.h"
#include "recorder/SVRecorder.h"
#include "shell/PlaybackEvent.h"
#include "shell/RecordingTransition.h"
#include "shell/StationHub.h"

namespace sonavault {

inline constexpr auto kSwitchboardAppName = "Sonavault";
inline constexpr double kSwitchboardHeartbeatIntervalSec = 5.0;
inline constexpr double kSwitchboardCurrentRecordingIntervalSec = 2.0;

inline constexpr auto kSwitchboardTopicRecordingState = "sonavault.recording-state-changed";
inline constexpr auto kSwitchboardTopicAircheckSaved = "sonavault.aircheck-saved";
inline constexpr auto kSwitchboardTopicCadenzoPlaybackState = "cadenzo.playback-state-changed";
inline constexpr auto kSwitchboardStateKeyHeartbeat = "sonavault.heartbeat";
inline constexpr auto kSwitchboardStateKeyCurrentRecording = "sonavault.current-recording";

// Reserved: nothing is published on these.
inline constexpr auto kSwitchboardTopicHeartbeat = "sonavault.heartbeat";
inline constexpr auto kSwitchboardTopicCurrentRecording = "sonavault.current-recording";

/// What this program tells the station's other programs of its recording, and what it makes of the
/// automation's playback events. Everything works without a hub.
///
/// Thread: main.
class StationIntegration {
  public:
    /// What is told of the program, asked for afresh each time.
    struct Facts {
        std::function<bool()> isRecording;
        std::function<SVRecorder*()> recorder;                  ///< null while there is none
        std::function<std::optional<int>()> todaysMarkerCount;  ///< nothing without a row of today
    };

    /// All outlive this object.
    StationIntegration(StationHub& hub, const Clock& clock, Log& log,
                       const Preferences& preferences, std::unique_ptr<MainTimer> timer,
                       Facts facts);

    /// Joins the hub and begins the heartbeat; once per process.
    void startSwitchboard();

    /// Leaves with the hub that this program lives and how it does.
    void publishSwitchboardHeartbeat();

    /// Tells when recording began, ended or went into another day. Cheap enough for every tick.
    void detectAndPublishRecordingStateTransition();

    /// Leaves with the hub what is being recorded.
    void publishCurrentRecordingState();

    /// The same, unless it was done within the interval. `now`: seconds since 1970
    void publishCurrentRecordingStateIfDue(double now);

    void publishAircheckSaved(const AircheckSaved& aircheck);

    /// An event of the automation's playback becomes a marker of the day that is being recorded.
    void handleCadenzoPlaybackStateChanged(const QJsonObject& payload);

  private:
    void beat();
    std::chrono::milliseconds untilNextBeat();
    std::string isoNowString() const;
    std::string today() const;
    void publishRecordingStateChanged(const RecordingTransition& transition);
    std::string clockTimeOf(const std::string& at) const;

    StationHub& hub_;
    const Clock& clock_;
    Log& log_;
    const Preferences& preferences_;
    const Facts facts_;
    RecordingTransitions transitions_;
    bool switchboardConnectStarted_ = false;
    WallTime nextBeat_;  // as planned
    Throttle lastSwitchboardCurrentRecPub_{kSwitchboardCurrentRecordingIntervalSec};
    std::unique_ptr<MainTimer> switchboardHeartbeatTimer_;
    Lifetime lifetime_;
};

}  // namespace sonavault
