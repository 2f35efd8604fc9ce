#include "recorder/AudioPipeline.h"

#include <array>
#include <cmath>

#include "platform/Format.h"
#include "platform/SampleMath.h"
#include "recorder/WallClockSync.h"

namespace sonavault {

namespace {

constexpr std::array<float, kMaxPadFramesPerBuffer> kDigitalSilence{};

std::string padLine(int pad, double sampleRate, FrameCount deficit) {
    return "Sonavault recorder: wall-clock pad — " + std::to_string(pad) + " frames (" +
           fixedPoint(pad / sampleRate, 3) + "s) silence inserted to close gap (deficit was " +
           std::to_string(deficit) + " frames)";
}

std::string syncLine(double wallElapsed, FrameCount expected, FrameCount written,
                     double sampleRate) {
    const double drift = static_cast<double>(expected - written) / sampleRate;
    return "Sonavault sync: wall_elapsed=" + fixedPoint(wallElapsed, 3) +
           "s expected_frames=" + std::to_string(expected) +
           " actual_frames=" + std::to_string(written) +
           " drift=" + std::to_string(roundedMilliseconds(drift)) + "ms";
}

}  // namespace

AudioPipeline::AudioPipeline(const Clock& clock, Log& log, Listener listener)
    : clock_(clock), log_(log), listener_(std::move(listener)) {}

bool AudioPipeline::buildResampler(const AudioFormat& source) {
    Report report;
    bool made = false;
    {
        std::scoped_lock lock(mutex_);
        made = makeResampler(source, report);
    }
    for (const auto& line : report.lines) log_.line(line);
    return made;
}

bool AudioPipeline::makeResampler(const AudioFormat& source, Report& report) {
    auto made = Resampler::create(source, activeSampleRate_);
    if (!made) {
        report.lines.push_back("Sonavault recorder: AVAudioConverter init failed for " +
                               describe(source));
        return false;
    }
    resampler_ = std::move(made.value());
    return true;
}

void AudioPipeline::clearResampler() {
    std::scoped_lock lock(mutex_);
    resampler_.reset();
}

std::optional<AudioPipeline::ResamplerFormats> AudioPipeline::resamplerFormats() const {
    std::scoped_lock lock(mutex_);
    if (!resampler_) return std::nullopt;
    return ResamplerFormats{resampler_->inputFormat(), {resampler_->outputRate(), 1, false}};
}

void AudioPipeline::begin(OpenDay day) {
    std::scoped_lock lock(mutex_);
    framesWritten_ = day.framesWritten;
    peakBucket_.emplace(activeSampleRate_, day.framesWritten);
    lastSyncCheckLog_.reset();
    day_ = std::move(day);
}

std::unique_ptr<LAMEEncoder> AudioPipeline::end() {
    std::scoped_lock lock(mutex_);
    framesWritten_ = 0;
    peakBucket_.reset();
    lastSyncCheckLog_.reset();
    if (!day_) return nullptr;
    auto encoder = std::move(day_->encoder);
    day_.reset();
    return encoder;
}

void AudioPipeline::armNonSilentWatch(NonSilentWatch watch) {
    std::scoped_lock lock(watchMutex_);
    nonSilentWatch_ = std::move(watch);
}

void AudioPipeline::handleSourceBuffer(const AudioBufferView& buffer) {
    Report report;
    {
        std::scoped_lock lock(mutex_);
        report = process(buffer);
    }
    if (kVerboseTimingDiagnostics) checkWatch(report);
    if (report.db) listener_.level(*report.db);
    for (const auto& line : report.lines) log_.line(line);
    for (const float rms : report.peaks) listener_.peak(rms, kPeakBucketSec);
}

AudioPipeline::Report AudioPipeline::process(const AudioBufferView& buffer) {
    Report report;
    if (!resampler_ && buildsLazily_) makeResampler(buffer.format, report);
    if (!resampler_) return report;
    const auto converted = resampler_->convert(buffer);
    if (!converted) {
        report.lines.push_back("Sonavault recorder: resample error: " + converted.error());
        return report;
    }
    const auto samples = converted.value();
    if (samples.empty()) return report;  // a converter may hold back a whole small buffer

    report.db = decibelsFullScale(rootMeanSquare(samples));
    if (kVerboseTimingDiagnostics) report.heardAt = clock_.now();
    if (day_) record(samples, report);
    return report;
}

void AudioPipeline::checkWatch(Report& report) {
    if (!report.db) return;
    std::scoped_lock lock(watchMutex_);
    if (!nonSilentWatch_) return;
    if (auto verdict = watchVerdict(*nonSilentWatch_, report.heardAt, *report.db)) {
        report.lines.insert(report.lines.begin(), std::move(*verdict));
        nonSilentWatch_.reset();
    }
}

void AudioPipeline::record(std::span<const float> samples, Report& report) {
    padToWallClock(static_cast<FrameCount>(samples.size()), report);
    write(samples, report);
    checkSync(report);
}

void AudioPipeline::padToWallClock(FrameCount incoming, Report& report) {
    if (!day_->wallClockAnchor) return;
    const FrameCount expected =
        expectedFrames(*day_->wallClockAnchor, clock_.now(), activeSampleRate_);
    const FrameCount deficit = deficitFrames(expected, framesWritten_, incoming);
    const int pad = padFrames(deficit);
    if (pad == 0) return;
    write(std::span(kDigitalSilence).first(static_cast<std::size_t>(pad)), report);
    report.lines.push_back(padLine(pad, activeSampleRate_, deficit));
}

void AudioPipeline::write(std::span<const float> samples, Report& report) {
    day_->encoder->encodeMono(samples);
    framesWritten_ += static_cast<FrameCount>(samples.size());
    peakBucket_->feed(samples, [&](float rms) { report.peaks.push_back(rms); });
}

void AudioPipeline::checkSync(Report& report) {
    if (!day_->wallClockAnchor) return;
    const WallTime now = clock_.now();
    if (lastSyncCheckLog_ &&
        std::abs(secondsBetween(*lastSyncCheckLog_, now)) < kSyncCheckIntervalSec)
        return;
    lastSyncCheckLog_ = now;
    report.lines.push_back(syncLine(secondsBetween(*day_->wallClockAnchor, now),
                                    expectedFrames(*day_->wallClockAnchor, now, activeSampleRate_),
                                    framesWritten_, activeSampleRate_));
}

}  // namespace sonavault
