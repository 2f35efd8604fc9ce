#include "recorder/SVRecorder.h"

#include "links/StationPorts.h"
#include "platform/Format.h"
#include "platform/SampleMath.h"
#include "store/PeaksFile.h"

namespace sonavault {

namespace {

/// The file is about to grow, so what was computed of its waveform is about to be wrong.
void forgetPeaks(const std::filesystem::path& audio) {
    std::error_code ignored;
    std::filesystem::remove(peaksURL(audio), ignored);
}

}  // namespace

SVRecorder::SVRecorder(RecorderServices services)
    : services_(std::move(services)),
      markers_(services_.clock, services_.log, services_.stationFolder, services_.flusher,
               [this](NonSilentWatch watch) { pipeline_.armNonSilentWatch(std::move(watch)); }),
      midnightTimer_(services_.clock, services_.log, services_.makeMainTimer(),
                     [this] { handleMidnightRollover(); }),
      pipeline_(services_.clock, services_.log, pipelineListener()),
      markerInbox_(services_.mainQueue,
                   [this](const MarkerWire& marker) { markers_.handleIncomingMarker(marker); }) {
    const auto level = SVQualityLevel::current(services_.preferences);
    pipeline_.setActiveSampleRate(level.sampleRate());
    activeBitrateKbps_ = level.bitrateKbps();
}

SVRecorder::~SVRecorder() {
    if (lineInputTapInstalled_) services_.lineInput.removeTap();
    if (services_.lineInput.isRunning()) services_.lineInput.stop();
    if (audioServer_) audioServer_->stop();
    if (markerServer_) markerServer_->stop();
}

AudioPipeline::Listener SVRecorder::pipelineListener() {
    return {
        .level = [this](float db) { setLevel(db); },
        .peak =
            [this](float rms, double bucketSec) {
                services_.mainQueue.post(lifetime_.guard([this, rms, bucketSec] {
                    if (auto host = controller_.lock()) host->appendLivePeak(rms, bucketSec);
                }));
            },
    };
}

void SVRecorder::setStatus(const std::string& text) {
    if (auto host = controller_.lock()) host->setStatusBarText(text);
}

void SVRecorder::setLevel(float db) {
    if (auto host = controller_.lock()) host->setRecordingInputDb(db);
}

double SVRecorder::currentRecordingDurationSec() const {
    const FrameCount frames = pipeline_.framesWritten();
    return frames == 0 ? 0 : static_cast<double>(frames) / pipeline_.activeSampleRate();
}

// The source

void SVRecorder::applySourceMode(SVRecorderSourceMode mode) {
    log("applySourceMode(" + rawValue(mode) + ")");
    if (isRecording_) stopRecording();
    tearDownSource();
    sourceMode_ = mode;
    pipeline_.setBuildsResamplerLazily(mode == SVRecorderSourceMode::lineInput);
    if (mode == SVRecorderSourceMode::lineInput)
        setStatus("Source: Line Input (engine on demand)");
    else
        startTCPListener();
}

void SVRecorder::tearDownSource() {
    stopLineInput();
    if (audioServer_) audioServer_->stop();
    audioServer_.reset();
    if (markerServer_) markerServer_->stop();
    markerServer_.reset();
    linkLifetime_ =
        Lifetime();  // what the old link has still posted must not act on the new source
    pipeline_.clearResampler();
    isCadenzoConnected_ = false;
    setLevel(kSilenceDb);
    // Only here: a link that was lost and came back must not bring old events again.
    markers_.forgetMarkers();
}

void SVRecorder::startTCPListener() {
    startAudioServer();
    startMarkerServer();
    setStatus("Listening for Cadenzo (audio :" + std::to_string(kAudioPort) +
              ", markers :" + std::to_string(kMarkerPort) + ")…");
}

void SVRecorder::startAudioServer() {
    audioServer_ = services_.makeAudioLink();
    audioServer_->onHandshake = [this](const AudioFormat& format) {
        services_.mainQueue.post(
            linkLifetime_.guard([this, format] { handleTCPHandshake(format); }));
    };
    audioServer_->onBuffer = [this](const AudioBufferView& buffer) { handleSourceBuffer(buffer); };
    audioServer_->onDisconnect = [this] {
        services_.mainQueue.post(linkLifetime_.guard([this] { handleTCPDisconnect(); }));
    };
    audioServer_->start();
}

void SVRecorder::startMarkerServer() {
    markerServer_ = services_.makeMarkerLink();
    // Unlike what a link says of itself, what it reported of the day still counts when the source
    // has changed meanwhile.
    markerServer_->onMarker = [this](const MarkerWire& marker) { markerInbox_.put(marker); };
    markerServer_->hasRoom = [this] { return markerInbox_.hasRoom(); };
    markerServer_->start();
}

void SVRecorder::handleTCPHandshake(const AudioFormat& format) {
    if (!pipeline_.buildResampler(format)) {
        log("handshake reject — could not build resampler from " + describe(format));
        return;
    }
    isCadenzoConnected_ = true;
    if (isRecording_) {
        setStatus("Recording (Cadenzo TCP) — reconnected");
    } else if (autoResumeArmed_) {
        log("auto-resume firing (handshake just landed)");
        autoResumeArmed_ = false;
        startRecording();
    } else {
        setStatus("Cadenzo connected (" + wholeNumber(format.sampleRate) + " Hz / " +
                  std::to_string(format.channels) + " ch) — press ⌘R to record");
    }
}

void SVRecorder::handleTCPDisconnect() {
    isCadenzoConnected_ = false;
    setLevel(kSilenceDb);
    pipeline_.clearResampler();
    if (!isRecording_) {
        setStatus("Cadenzo disconnected — listening for reconnect…");
        return;
    }
    log("Cadenzo dropped while recording — closing file, will resume on reconnect");
    stopRecording();
    autoResumeArmed_ = true;
    setStatus("Cadenzo dropped — recording will resume automatically on reconnect.");
}

// Start and stop

bool SVRecorder::toggleRecording() {
    log("toggleRecording() — current isRecording=" + std::string(isRecording_ ? "true" : "false") +
        ", source=" + rawValue(sourceMode_));
    autoResumeArmed_ = false;
    if (isRecording_)
        stopRecording();
    else
        startRecording();
    return isRecording_;
}

bool SVRecorder::toggle(std::optional<SVRecorderSourceMode> source) {
    if (source && *source != sourceMode_) applySourceMode(*source);
    return toggleRecording();
}

void SVRecorder::requestAutoResume() {
    if (isRecording_) return;
    autoResumeArmed_ = true;
    log("auto-resume armed (source=" + rawValue(sourceMode_) + ")");
    if (sourceMode_ == SVRecorderSourceMode::cadenzoTCP && !isCadenzoConnected_) {
        setStatus("Auto-resume armed — waiting for Cadenzo…");
        return;
    }
    startRecording();
    autoResumeArmed_ = false;
}

void SVRecorder::startRecording() {
    if (isRecording_) return;
    const WallTime now = services_.clock.now();
    const auto urls = services_.stationFolder.makeOutputURLs(now, services_.log);
    if (!urls) {
        log("could not resolve output folder");
        return;
    }
    forgetPeaks(urls->audio);
    const bool started = sourceMode_ == SVRecorderSourceMode::lineInput
                             ? startFromLineInput(*urls, now)
                             : startFromLink(*urls, now);
    if (started) enterRecording(now);
}

bool SVRecorder::startFromLineInput(const OutputURLs& urls, WallTime now) {
    const AudioFormat format = services_.lineInput.outputFormat();
    if (!pipeline_.buildResampler(format) || !openMP3File(urls, format, now)) return false;
    services_.lineInput.installTap(kTapBufferFrames, format, [this](const AudioBufferView& buffer) {
        handleSourceBuffer(buffer);
    });
    lineInputTapInstalled_ = true;
    if (const auto begun = services_.lineInput.start(); !begun) {
        log("engine.start failed: " + begun.error());
        services_.lineInput.removeTap();
        lineInputTapInstalled_ = false;
        cancelEncoderAfterAbortedStart();
        return false;
    }
    return true;
}

bool SVRecorder::startFromLink(const OutputURLs& urls, WallTime now) {
    const auto formats = pipeline_.resamplerFormats();
    if (isCadenzoConnected_ && formats) return openMP3File(urls, formats->output, now);
    if (auto host = controller_.lock())
        host->showAlert("Cadenzo not connected",
                        "Recording can't start until Cadenzo's audio handshake completes. Make "
                        "sure Cadenzo is running "
                        "with the Sonavault toggle on.");
    return false;
}

void SVRecorder::enterRecording(WallTime now) {
    isRecording_ = true;
    if (auto host = controller_.lock()) host->setRecording(true);
    const std::string source = statusWords(sourceMode_);
    setStatus("Recording (" + source + ") → " + lastRecordingURL_->filename().string());
    log("started (" + source + ") → " + lastRecordingURL_->string());
    midnightTimer_.arm(now);
}

void SVRecorder::stopRecording() {
    if (!isRecording_) return;
    if (sourceMode_ == SVRecorderSourceMode::lineInput) {
        stopLineInput();
        pipeline_.clearResampler();
    }
    finalizeEncoder();
    isRecording_ = false;
    if (auto host = controller_.lock()) host->setRecording(false);
    if (!isCadenzoConnected_) setLevel(kSilenceDb);
    midnightTimer_.cancel();
}

void SVRecorder::stopLineInput() {
    if (lineInputTapInstalled_) services_.lineInput.removeTap();
    lineInputTapInstalled_ = false;
    if (services_.lineInput.isRunning()) services_.lineInput.stop();
}

void SVRecorder::finalizeEncoder() {
    const auto encoder = pipeline_.end();
    if (!encoder) return;
    encoder->close();
    // What was computed of the file while it grew must not be taken for all of it tomorrow.
    if (lastRecordingURL_) forgetPeaks(*lastRecordingURL_);
    if (lastRecordingURL_) log("stopped → " + lastRecordingURL_->string());
    if (!isRecording_) setStatus("");
}

void SVRecorder::cancelEncoderAfterAbortedStart() {
    if (const auto encoder = pipeline_.end()) encoder->close();
    pipeline_.clearResampler();
}

// Midnight

/// The source and the links stay as they are; buffers that come between the two files are metered
/// and dropped, and the new file makes up for them with silence.
void SVRecorder::handleMidnightRollover() {
    log("midnight rollover firing");
    if (!isRecording_) return;
    finalizeEncoder();
    const WallTime now = services_.clock.now();
    if (const auto rolledOver = rollOver(now); !rolledOver) {
        log(rolledOver.error());
        isRecording_ = false;
        if (auto host = controller_.lock()) host->setRecording(false);
    }
    midnightTimer_.arm(now);
}

Outcome SVRecorder::rollOver(WallTime now) {
    const auto urls = services_.stationFolder.makeOutputURLs(now, services_.log);
    const auto formats = pipeline_.resamplerFormats();
    if (!urls || !formats) return Outcome::failure("rollover failed — pipeline not ready");
    forgetPeaks(urls->audio);
    if (!openMP3File(*urls, formats->output, now))
        return Outcome::failure("rollover failed to open new MP3");
    setStatus("Rolled over → " + urls->audio.filename().string());
    log("rolled over → " + urls->audio.string());
    return Done{};
}

}  // namespace sonavault
