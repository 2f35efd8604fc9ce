#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <vector>

#include "platform/BackgroundJob.h"
#include "platform/Clock.h"
#include "platform/ClosableExecutor.h"
#include "platform/Log.h"
#include "store/PeaksFile.h"
#include "store/PeaksHost.h"

namespace sonavault {

/// The waveform of the day that is shown: from its sidecar, from its audio, or from the recorder as
/// it is recorded.
///
/// A day's sound is decoded on a thread of low priority. Its result is shown without asking whether
/// the same day is still loaded: when the reviewer changes days meanwhile, two jobs run and the one
/// that ends last is seen. Each day's sidecar is written all the same, so that loading it again
/// mends that.
///
/// Thread: main. Destruction stops what runs in the background and hardly waits for it.
class PeaksCache {
  public:
    /// How a job gets its peaks, on the job's thread.
    using Generate =
        std::function<PeaksResult(const std::filesystem::path&, double, const std::stop_token&)>;

    /// Units: seconds a bucket
    static constexpr double kBucketSec = 0.25;
    /// Live values have the bar drawn no more often. Units: seconds
    static constexpr double kLiveRepaintSec = 0.5;

    /// All outlive the cache. Work on the main thread is posted to `main`.
    PeaksCache(PeaksHost& host, const Clock& clock, Log& log, Executor& main);
    PeaksCache(PeaksHost& host, const Clock& clock, Log& log, Executor& main, Generate generate);
    ~PeaksCache();
    PeaksCache(const PeaksCache&) = delete;
    PeaksCache& operator=(const PeaksCache&) = delete;

    /// What the summary bar draws.
    const std::optional<PeaksData>& peaksData() const { return peaksData_; }

    /// A background job was started for the day that is loaded.
    bool isGeneratingPeaks() const { return isGeneratingPeaks_; }

    /// When the live values last had the bar redrawn. Units: seconds since 1970
    double lastLivePeakRepaint() const { return lastLivePeakRepaint_; }

    /// Takes the waveform from the day's sidecar, or has it made. A day that is being recorded
    /// always has a stale sidecar, which is removed.
    void loadOrGeneratePeaks(const std::filesystem::path& audio);

    /// To be called when a recording has begun. When it goes on in the day that is shown, that day
    /// is measured anew, for what is shown may be of a time at which the file was shorter. Nothing
    /// is said of it.
    void recordingBegan();

    /// One more bucket at the end, when the day being recorded is the one that is shown.
    void appendLivePeak(float rms, double bucketSec);

    /// What loading or unloading a day clears. A job that runs goes on, and the new day may start
    /// its own.
    void clear();

  private:
    enum class Reason { asked, recordingBegan, catchingUp };

    bool isLive(const std::filesystem::path& audio) const;
    bool loadSidecar(const std::filesystem::path& audio);
    void startJob(const std::filesystem::path& audio, Reason reason);
    std::unique_ptr<BackgroundJob> begin(const std::filesystem::path& audio,
                                         std::function<void(const PeaksResult&)> deliver) const;
    void takeResult(const PeaksResult& result, Reason reason);
    void measureAgainIfOwed(Reason reason);

    PeaksHost& host_;
    const Clock& clock_;
    Log& log_;
    const Generate generate_;

    std::optional<PeaksData> peaksData_;
    bool isGeneratingPeaks_ = false;
    double lastLivePeakRepaint_ = 0;
    std::size_t liveWhileMeasuring_ = 0;  // buckets that the job's result may lack
    bool begunWhileMeasuring_ = false;

    Lifetime lifetime_;
    std::shared_ptr<ClosableExecutor> outlet_;  // shared with the jobs, which may outlive all else
    std::vector<std::unique_ptr<BackgroundJob>> jobs_;
};

}  // namespace sonavault
