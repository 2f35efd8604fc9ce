#include "store/PeaksCache.h"

#include <system_error>
#include <utility>

#include "platform/FileQueries.h"
#include "platform/FileStamp.h"
#include "store/PeaksGeneration.h"

namespace sonavault {
namespace {

PeaksCache::Generate rememberingGenerator() {
    return [generator = std::make_shared<PeaksGenerator>()](
               const std::filesystem::path& audio, double bucketSec, const std::stop_token& stop) {
        return generator->generate(audio, bucketSec, stop);
    };
}

}  // namespace

PeaksCache::PeaksCache(PeaksHost& host, const Clock& clock, Log& log, Executor& main)
    : PeaksCache(host, clock, log, main, rememberingGenerator()) {}

PeaksCache::PeaksCache(PeaksHost& host, const Clock& clock, Log& log, Executor& main,
                       Generate generate)
    : host_(host),
      clock_(clock),
      log_(log),
      generate_(std::move(generate)),
      outlet_(std::make_shared<ClosableExecutor>(main)) {}

PeaksCache::~PeaksCache() {
    outlet_->close();
}

bool PeaksCache::isLive(const std::filesystem::path& audio) const {
    return host_.lastRecordingURL() == audio;
}

void PeaksCache::loadOrGeneratePeaks(const std::filesystem::path& audio) {
    if (isLive(audio)) {
        std::error_code ignored;
        std::filesystem::remove(peaksURL(audio), ignored);
    } else if (loadSidecar(audio)) {
        return;
    }
    if (isGeneratingPeaks_) return;
    host_.setStatusBarText("Preparing waveform…");
    startJob(audio, Reason::asked);
}

void PeaksCache::recordingBegan() {
    const auto audio = host_.loadedFileURL();
    if (!audio || !isLive(*audio)) return;
    // What a job under way is measuring is the file as it was before.
    if (isGeneratingPeaks_)
        begunWhileMeasuring_ = true;
    else
        startJob(*audio, Reason::recordingBegan);
}

/// False when there is no sidecar, or a bad one, which the next save replaces.
bool PeaksCache::loadSidecar(const std::filesystem::path& audio) {
    const auto sidecar = peaksURL(audio);
    if (!pathExists(sidecar)) return false;
    auto loaded = loadPeaksFile(sidecar);
    if (!loaded) return false;
    peaksData_ = std::move(loaded.value());
    log_.line("Sonavault: Loaded peaks from cache (" + std::to_string(peaksData_->rms.size()) +
              " buckets)");
    host_.redrawSummaryBar();
    return true;
}

namespace {

/// A day too large for the memory that is left is a failure like any other.
PeaksResult generateSafely(const PeaksCache::Generate& generate, const std::filesystem::path& audio,
                           const std::stop_token& stop) {
    try {
        return generate(audio, PeaksCache::kBucketSec, stop);
    } catch (const std::exception& error) {
        return PeaksResult::failure({PeaksError::Code::passedOn, error.what()});
    }
}

/// Writes the sidecar of a file that is still as it was when it was measured. One that has grown
/// since would be taken for all of the day at a later launch, and one that was deleted must not
/// come back with its waveform. A failure is passed over: the day is then measured again.
void keepBeside(const std::filesystem::path& audio, const std::optional<FileStamp>& measured,
                const PeaksData& peaks) {
    const auto hasChanged = [&] { return !measured || fileStamp(audio) != measured; };
    if (hasChanged() || !savePeaksFile(peaks, peaksURL(audio)) || !hasChanged()) return;
    std::error_code ignored;
    std::filesystem::remove(peaksURL(audio), ignored);
}

}  // namespace

void PeaksCache::startJob(const std::filesystem::path& audio, Reason reason) {
    isGeneratingPeaks_ = true;
    begunWhileMeasuring_ = false;
    liveWhileMeasuring_ = 0;
    std::erase_if(jobs_, [](const auto& job) { return job->hasEnded(); });
    const std::function<void(const PeaksResult&)> deliver =
        lifetime_.guard([this, reason](const PeaksResult& result) { takeResult(result, reason); });
    try {
        jobs_.push_back(begin(audio, deliver));
    } catch (const std::system_error& error) {
        outlet_->post([deliver, why = error.code().message()] {
            deliver(PeaksResult::failure({PeaksError::Code::passedOn, why}));
        });
    }
}

/// Throws std::system_error when no thread can be had.
std::unique_ptr<BackgroundJob> PeaksCache::begin(
    const std::filesystem::path& audio, std::function<void(const PeaksResult&)> deliver) const {
    return std::make_unique<BackgroundJob>(
        "peaks", [audio, generate = generate_, outlet = outlet_,
                  deliver = std::move(deliver)](const std::stop_token& stop) mutable {
            const auto measured = fileStamp(audio);
            auto result = std::make_shared<PeaksResult>(generateSafely(generate, audio, stop));
            if (stop.stop_requested()) return;
            if (*result) keepBeside(audio, measured, result->value());
            outlet->post([deliver = std::move(deliver), result] { deliver(*result); });
        });
}

void PeaksCache::takeResult(const PeaksResult& result, Reason reason) {
    isGeneratingPeaks_ = false;
    if (!result) {
        if (reason == Reason::asked) host_.setStatusBarText("Waveform generation failed.");
        log_.line("Sonavault: Peaks generation failed: " + result.error().description);
        return;
    }
    peaksData_ = result.value();
    if (reason == Reason::asked) host_.setStatusBarText("");
    host_.redrawSummaryBar();
    log_.line("Sonavault: Peaks generated and cached (" + std::to_string(peaksData_->rms.size()) +
              " buckets)");
    measureAgainIfOwed(reason);
}

/// The live values of a long measurement are not in its result, and what follows would be drawn too
/// early by as much. Measuring once more is quick: only what is new is decoded.
void PeaksCache::measureAgainIfOwed(Reason reason) {
    constexpr std::size_t kLiveThatMayBeMissing = 4;  // a second of the day
    if (begunWhileMeasuring_) return recordingBegan();
    const auto audio = host_.loadedFileURL();
    if (reason != Reason::catchingUp && liveWhileMeasuring_ > kLiveThatMayBeMissing && audio)
        startJob(*audio, Reason::catchingUp);
}

void PeaksCache::appendLivePeak(float rms, double bucketSec) {
    const auto recorded = host_.lastRecordingURL();
    if (!recorded || host_.loadedFileURL() != recorded) return;
    if (isGeneratingPeaks_) ++liveWhileMeasuring_;
    if (!peaksData_) {
        peaksData_ = PeaksData{bucketSec, bucketSec, {rms}, rms};
    } else {
        peaksData_->rms.push_back(rms);
        peaksData_->totalDurationSec =
            static_cast<double>(peaksData_->rms.size()) * peaksData_->bucketSec;
        if (rms > peaksData_->maxRMS) peaksData_->maxRMS = rms;
    }
    const double now = secondsSince1970(clock_.now());
    // A clock that was set back must not hold the bar up until it has caught up.
    if (now - lastLivePeakRepaint_ <= kLiveRepaintSec && now >= lastLivePeakRepaint_) return;
    lastLivePeakRepaint_ = now;
    host_.redrawSummaryBar();
}

void PeaksCache::clear() {
    peaksData_.reset();
    isGeneratingPeaks_ = false;
    begunWhileMeasuring_ = false;
    liveWhileMeasuring_ = 0;
    host_.redrawSummaryBar();
}

}  // namespace sonavault
