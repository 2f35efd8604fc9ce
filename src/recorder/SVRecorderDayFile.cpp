// How the recorder opens a day's file: its settings, how much it holds, where its frame 0 stands on
// the clock, and its sidecars.

#include <algorithm>
#include <limits>

#include "platform/AtomicFile.h"
#include "platform/AudioFileInfo.h"
#include "platform/FileQueries.h"
#include "platform/Format.h"
#include "platform/LocalTime.h"
#include "recorder/SVRecorder.h"
#include "store/MarkerLogWriter.h"
#include "store/RecordingManifest.h"
#include "store/Version.h"

namespace sonavault {

namespace {

/// A manifest's number as the encoder is given it; a senseless one stays senseless and is refused
/// there.
int asSetting(std::int64_t stored) {
    return static_cast<int>(std::clamp<std::int64_t>(stored, -1, std::numeric_limits<int>::max()));
}

std::string threeDecimals(double value) {
    return fixedPoint(value, 3);
}

}  // namespace

FrameCount existingFramesAt(const std::filesystem::path& audio, double targetSampleRate) {
    if (fileSize(audio) == 0) return 0;
    const auto info = readAudioFileInfo(audio);
    if (!info) return 0;
    return static_cast<FrameCount>(info.value().durationSec() * targetSampleRate);
}

bool SVRecorder::openMP3File(const OutputURLs& urls, const AudioFormat& sourceFormat,
                             WallTime now) {
    const double rateBefore = pipeline_.activeSampleRate();
    const int bitrateBefore = activeBitrateKbps_;
    const auto formatsBefore = pipeline_.resamplerFormats();
    chooseQuality(urls);
    rebuildResamplerForRate();

    const double rate = pipeline_.activeSampleRate();
    auto encoder =
        LAMEEncoder::create(static_cast<int>(rate), 1, activeBitrateKbps_, services_.log);
    if (!encoder) {
        log("LAMEEncoder init failed");
        // Senseless settings must not outlive their manifest: the next day's file starts as if they
        // had never been.
        pipeline_.setActiveSampleRate(rateBefore);
        activeBitrateKbps_ = bitrateBefore;
        if (formatsBefore) pipeline_.buildResampler(formatsBefore->input);
        return false;
    }
    if (const auto opened = encoder->open(urls.audio, services_.flusher); !opened) {
        log("could not open MP3 file for write: " + opened.error());
        return false;
    }

    OpenDay day{.encoder = std::move(encoder),
                .framesWritten = existingFramesAt(urls.audio, rate),
                .wallClockAnchor = {}};
    const double existingSec = static_cast<double>(day.framesWritten) / rate;
    if (day.framesWritten > 0)
        log("appending — existing file is " + std::to_string(static_cast<FrameCount>(existingSec)) +
            "s at start");
    day.wallClockAnchor = anchorFor(urls, existingSec, now);
    lastRecordingURL_ = urls.audio;
    // The air goes into the file from here on; it need not wait for the sidecars.
    pipeline_.begin(std::move(day));

    // The first start of the day is the anchor of all later runs, so an existing manifest is never
    // written again.
    if (isAbsent(urls.json))
        writeManifest(urls.json, now, clockSecondsSinceMidnight(now), sourceFormat);
    writeCSVHeaderIfNeeded(urls.csv, services_.flusher);
    return true;
}

/// A file that has audio in it goes on as it began; only an empty one takes the quality that is now
/// chosen.
void SVRecorder::chooseQuality(const OutputURLs& urls) {
    const auto manifest = fileSize(urls.audio) > 0 ? readManifest(urls.json) : std::nullopt;
    std::string origin;
    if (manifest && manifest->sampleRate && manifest->bitrateKbps) {
        pipeline_.setActiveSampleRate(asSetting(*manifest->sampleRate));
        activeBitrateKbps_ = asSetting(*manifest->bitrateKbps);
        origin = "manifest";
    } else {
        const auto level = SVQualityLevel::current(services_.preferences);
        pipeline_.setActiveSampleRate(level.sampleRate());
        activeBitrateKbps_ = level.bitrateKbps();
        origin = "user preference (" + level.label() + ")";
    }
    log("quality from " + origin + " — " + wholeNumber(pipeline_.activeSampleRate()) + " Hz, " +
        std::to_string(activeBitrateKbps_) + " kbps");
}

void SVRecorder::rebuildResamplerForRate() {
    const auto formats = pipeline_.resamplerFormats();
    const double rate = pipeline_.activeSampleRate();
    if (!formats || formats->output.sampleRate == rate) return;
    const AudioFormat& source = formats->input;
    log("rebuilding resampler (was " + wholeNumber(formats->output.sampleRate) + " Hz → " +
        wholeNumber(rate) + " Hz; true source " + wholeNumber(source.sampleRate) + " Hz/" +
        std::to_string(source.channels) + "ch)");
    pipeline_.clearResampler();
    pipeline_.buildResampler(source);
}

/// Where frame 0 stands on the clock: at the day's first start, which the manifest keeps, so that
/// the outage since the last run is known and filled. Without it, as if the existing audio had just
/// been played out.
std::optional<WallTime> SVRecorder::anchorFor(const OutputURLs& urls, double existingSec,
                                              WallTime now) {
    const auto startedAt = readManifestStartedAt(urls.json);
    if (!startedAt) {
        log("wall-clock anchor set fresh (existing=" + threeDecimals(existingSec) + "s)");
        return after(now, -existingSec);
    }
    const double elapsed = secondsBetween(*startedAt, services_.clock.now());
    log("wall-clock anchor pinned to manifest start (existing=" + threeDecimals(existingSec) +
        "s, wall-elapsed-since-start=" + threeDecimals(elapsed) +
        "s, deficit-to-pad=" + threeDecimals(elapsed - existingSec) + "s)");
    return startedAt;
}

void SVRecorder::writeManifest(const std::filesystem::path& file, WallTime startedAt,
                               double startOffsetSec, const AudioFormat& sourceFormat) {
    RecordingManifest manifest;
    manifest.sourceMode = rawValue(sourceMode_);
    manifest.startedAtIso8601 = iso8601WithMilliseconds(startedAt);
    manifest.startOffsetSec = startOffsetSec;
    manifest.sampleRate = static_cast<std::int64_t>(pipeline_.activeSampleRate());
    manifest.channels = 1;
    manifest.bitrateKbps = activeBitrateKbps_;
    manifest.deviceName = sourceMode_ == SVRecorderSourceMode::lineInput
                              ? services_.lineInput.defaultDeviceName()
                              : "Cadenzo TCP @ " + wholeNumber(sourceFormat.sampleRate) + "Hz/" +
                                    std::to_string(sourceFormat.channels) + "ch";
    manifest.recordedBy = std::string("Sonavault ") + kSonavaultVersion;
    manifest.notes = "MP3 (libmp3lame), CBR " + std::to_string(activeBitrateKbps_) + " kbps";
    // It is never written again, so it must not be there without its content after a power cut.
    if (const auto written = writeFileThroughToDisk(file, encodeManifest(manifest)); !written)
        log("manifest write failed: " + written.error());
    else
        services_.flusher.flushSoon(file);
}

}  // namespace sonavault
