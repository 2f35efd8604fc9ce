#include "store/PeaksCache.h"

#include <mutex>
#include <system_error>
#include <utility>

#include "platform/FileQueries.h"
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

/// The jobs' way to the main thread, closed when nobody is there any more.
struct PeaksCache::Outlet {
    explicit Outlet(Executor& executor) : main(&executor) {}

    void post(std::function<void()> task) {
        const std::scoped_lock lock(mutex);
        if (main) main->post(std::move(task));
    }

    void close() {
        const std::scoped_lock lock(mutex);
        main = nullptr;
    }

    std::mutex mutex;
    Executor* main;  // guarded by mutex
};

PeaksCache::PeaksCache(PeaksHost& host, const Clock& clock, Log& log, Executor& main)
    : PeaksCache(host, clock, log, main, rememberingGenerator()) {}

PeaksCache::PeaksCache(PeaksHost& host, const Clock& clock, Log& log, Executor& main,
                       Generate generate)
    : host_(host),
      clock_(clock),
      log_(log),
      generate_(std::move(generate)),
      outlet_(std::make_shared<Outlet>(main)) {}

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
    isGeneratingPeaks_ = true;
    host_.setStatusBarText("Preparing waveform…");
    startJob(audio);
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

}  // namespace

void PeaksCache::startJob(const std::filesystem::path& audio) {
    std::erase_if(jobs_, [](const auto& job) { return job->hasEnded(); });
    auto deliver = lifetime_.guard(
        [this](const std::shared_ptr<PeaksResult>& result) { takeResult(*result); });
    jobs_.push_back(
        std::make_unique<BackgroundJob>("peaks", [audio, generate = generate_, outlet = outlet_,
                                                  deliver](const std::stop_token& stop) mutable {
            auto result = std::make_shared<PeaksResult>(generateSafely(generate, audio, stop));
            if (stop.stop_requested()) return;
            // Without its sidecar the day is measured again at the next launch, and that is all; a
            // day that was deleted meanwhile must not come back with it.
            if (*result && pathExists(audio)) (void)savePeaksFile(result->value(), peaksURL(audio));
            outlet->post([deliver = std::move(deliver), result]() mutable { deliver(result); });
        }));
}

void PeaksCache::takeResult(const PeaksResult& result) {
    isGeneratingPeaks_ = false;
    if (!result) {
        host_.setStatusBarText("Waveform generation failed.");
        log_.line("Sonavault: Peaks generation failed: " + result.error().description);
        return;
    }
    peaksData_ = result.value();
    host_.setStatusBarText("");
    host_.redrawSummaryBar();
    log_.line("Sonavault: Peaks generated and cached (" + std::to_string(peaksData_->rms.size()) +
              " buckets)");
}

void PeaksCache::appendLivePeak(float rms, double bucketSec) {
    const auto recorded = host_.lastRecordingURL();
    if (!recorded || host_.loadedFileURL() != recorded) return;
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
    host_.redrawSummaryBar();
}

}  // namespace sonavault
