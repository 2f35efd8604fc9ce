#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

#include "links/AudioLink.h"
#include "links/MarkerLink.h"
#include "platform/AudioInput.h"
#include "platform/Clock.h"
#include "platform/DiskFlusher.h"
#include "platform/Executor.h"
#include "platform/Log.h"
#include "platform/MainTimer.h"
#include "platform/Preferences.h"
#include "recorder/AudioPipeline.h"
#include "recorder/MarkerInbox.h"
#include "recorder/MarkerIngestion.h"
#include "recorder/MidnightTimer.h"
#include "recorder/RecorderHost.h"
#include "recorder/SVQualityLevel.h"
#include "recorder/SVRecorderSourceMode.h"
#include "store/StationFolder.h"

namespace sonavault {

/// The frames of a tap's buffer, about a tenth of a second.
inline constexpr int kTapBufferFrames = 4096;

/// How long the audio of a day's file is, told in frames at `targetSampleRate`; 0 for no file, an
/// empty one, or one that is no audio. Taken from the file itself, never from memory or the
/// manifest.
FrameCount existingFramesAt(const std::filesystem::path& audio, double targetSampleRate);

/// What the recorder works with; all of it outlives the recorder.
struct RecorderServices {
    const Clock& clock;
    Log& log;
    Executor& mainQueue;
    const Preferences& preferences;
    const StationFolder& stationFolder;
    DiskFlusher& flusher;
    AudioInput& lineInput;
    std::function<std::unique_ptr<AudioLink>()> makeAudioLink;
    std::function<std::unique_ptr<MarkerLink>()> makeMarkerLink;
    std::function<std::unique_ptr<MainTimer>()> makeMainTimer;
};

/// Records the station's air into the day's file.
///
/// It keeps three promises: a day is one file however often recording stops and starts; a position
/// in that file stays true to the wall clock; and a recording that was cut by a lost link comes
/// back by itself. A recording that goes on through the night goes on into the next day's file.
///
/// Thread: main for all calls; buffers come in on the sources' own threads.
class SVRecorder {
  public:
    explicit SVRecorder(RecorderServices services);
    ~SVRecorder();
    SVRecorder(const SVRecorder&) = delete;
    SVRecorder& operator=(const SVRecorder&) = delete;

    /// The program around the recorder, set before any other call; everything goes on without it.
    void setController(std::weak_ptr<RecorderHost> controller) {
        controller_ = std::move(controller);
    }

    /// The one way to change the source: ends a recording in progress and does not begin another.
    /// An auto-resume that is waiting goes on waiting.
    void applySourceMode(SVRecorderSourceMode mode);

    /// Stops when recording, starts when not; ends any waiting. Gives isRecording() after it.
    bool toggleRecording();

    /// The same, but changes to `source` first when one is given that differs.
    bool toggle(std::optional<SVRecorderSourceMode> source);

    /// Recording starts now, or as soon as the source is ready.
    void requestAutoResume();

    bool isRecording() const { return isRecording_; }
    bool isCadenzoConnected() const { return isCadenzoConnected_; }
    bool isAutoResumeArmed() const { return autoResumeArmed_; }
    SVRecorderSourceMode sourceMode() const { return sourceMode_; }

    /// The audio file opened last; kept after stopping.
    const std::optional<std::filesystem::path>& lastRecordingURL() const {
        return lastRecordingURL_;
    }

    /// How long the day's file now is; 0 while none is open. Units: seconds
    double currentRecordingDurationSec() const;

    /// Logs an event of the day that came by another road than the marker link; written as it is,
    /// never compared with what came before. `clockTime`: "HH:MM:SS"
    void appendSyntheticMarker(const std::string& clockTime, const std::string& type,
                               const std::string& label, double durationSec = 0) {
        markers_.appendSyntheticMarker(clockTime, type, label, durationSec);
    }

    /// Takes one buffer of live audio. Thread: the source's.
    void handleSourceBuffer(const AudioBufferView& buffer) { pipeline_.handleSourceBuffer(buffer); }

  private:
    void startRecording();
    bool startFromLineInput(const OutputURLs& urls, WallTime now);
    bool startFromLink(const OutputURLs& urls, WallTime now);
    void enterRecording(WallTime now);
    void stopRecording();
    void stopLineInput();
    void tearDownSource();
    void startTCPListener();
    void startAudioServer();
    void startMarkerServer();
    void handleTCPHandshake(const AudioFormat& format);
    void handleTCPDisconnect();
    void finalizeEncoder();
    void cancelEncoderAfterAbortedStart();
    void handleMidnightRollover();
    Outcome rollOver(WallTime now);

    bool openMP3File(const OutputURLs& urls, const AudioFormat& sourceFormat, WallTime now);
    void chooseQuality(const OutputURLs& urls);
    void rebuildResamplerForRate();
    std::optional<WallTime> anchorFor(const OutputURLs& urls, double existingSec, WallTime now);
    void writeManifest(const std::filesystem::path& file, WallTime startedAt, double startOffsetSec,
                       const AudioFormat& sourceFormat);

    AudioPipeline::Listener pipelineListener();
    void setStatus(const std::string& text);
    void setLevel(float db);
    void log(const std::string& text) { services_.log.line("Sonavault recorder: " + text); }

    RecorderServices services_;
    std::weak_ptr<RecorderHost> controller_;

    // Main thread.
    bool isRecording_ = false;
    bool isCadenzoConnected_ = false;
    bool autoResumeArmed_ = false;
    bool lineInputTapInstalled_ = false;
    SVRecorderSourceMode sourceMode_ = SVRecorderSourceMode::lineInput;
    std::optional<std::filesystem::path> lastRecordingURL_;
    int activeBitrateKbps_ = kDefaultBitrateKbps;
    MarkerIngestion markers_;
    MidnightTimer midnightTimer_;

    // The road of the buffers, shared with the source's thread; then what feeds it, so that it ends
    // first.
    Lifetime lifetime_;
    Lifetime linkLifetime_;
    AudioPipeline pipeline_;
    MarkerInbox markerInbox_;
    std::unique_ptr<AudioLink> audioServer_;
    std::unique_ptr<MarkerLink> markerServer_;
};

}  // namespace sonavault
