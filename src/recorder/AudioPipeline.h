#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/Clock.h"
#include "platform/Executor.h"
#include "platform/Log.h"
#include "platform/Resampler.h"
#include "recorder/LAMEEncoder.h"
#include "recorder/NonSilentWatch.h"
#include "recorder/PeakBucket.h"

namespace sonavault {

/// The settings that are assumed until a day's file brings its own. Units: hertz, kilobits per
/// second
inline constexpr double kDefaultSampleRate = 22050;
inline constexpr int kDefaultBitrateKbps = 48;

/// A day's file in hand: everything that the road of a buffer needs of it.
struct OpenDay {
    std::unique_ptr<LAMEEncoder> encoder;
    FrameCount framesWritten = 0;  ///< what the file holds already, at the pipeline's rate
    std::optional<WallTime> wallClockAnchor;  ///< the moment of the file's frame 0
};

/// The one road of all live audio: to mono at the file's rate, metered, checked against the wall
/// clock, encoded, summed up for the waveform. The day's file is a clock: what a stalled or
/// vanished source leaves out is put in as silence, and audio is never dropped to close a surplus.
///
/// Thread: handleSourceBuffer() on the source's thread, all else on the main thread. A short lock
/// keeps the two apart, and is held while a buffer is written; no callback runs under it.
/// armNonSilentWatch() does not wait for it.
class AudioPipeline {
  public:
    struct Listener {
        std::function<void(float db)> level;  ///< on the source's thread, for every buffer
        std::function<void(float rms, double bucketSec)> peak;  ///< posted to the main queue
    };

    AudioPipeline(const Clock& clock, Log& log, Listener listener);

    /// Settings of the files to come. Units: hertz, kilobits per second
    void setActiveSampleRate(double rate) { activeSampleRate_ = rate; }
    double activeSampleRate() const { return activeSampleRate_; }

    /// While set, a missing resampler is made from the format of the next buffer.
    void setBuildsResamplerLazily(bool lazily) { buildsLazily_ = lazily; }

    /// Makes the converter from `source` to mono at the active rate. False, with a line in the log,
    /// when there can be none.
    bool buildResampler(const AudioFormat& source);
    void clearResampler();

    /// What the converter takes and gives; nothing without a converter.
    struct ResamplerFormats {
        AudioFormat input;
        AudioFormat output;
    };
    std::optional<ResamplerFormats> resamplerFormats() const;

    /// From now on buffers go into the file as well as to the meter.
    void begin(OpenDay day);

    /// Takes the file out of the road of the buffers and gives its encoder, if any, to be closed.
    std::unique_ptr<LAMEEncoder> end();

    /// Frames of the day's file at the active rate, what it held before and all padding included; 0
    /// when none is open.
    FrameCount framesWritten() const { return framesWritten_; }

    void armNonSilentWatch(NonSilentWatch watch);

    /// Takes one buffer in the source's format.
    void handleSourceBuffer(const AudioBufferView& buffer);

  private:
    /// What a buffer has to say once the lock is released.
    struct Report {
        std::optional<float> db;
        WallTime heardAt;  // of db, when the buffer had not been written yet
        std::vector<std::string> lines;
        std::vector<float> peaks;
    };

    Report process(const AudioBufferView& buffer);
    bool makeResampler(const AudioFormat& source, Report& report);
    void checkWatch(Report& report);
    void record(std::span<const float> samples, Report& report);
    void padToWallClock(FrameCount incoming, Report& report);
    void write(std::span<const float> samples, Report& report);
    void checkSync(Report& report);

    const Clock& clock_;
    Log& log_;
    const Listener listener_;

    // Either thread, no lock.
    std::atomic<double> activeSampleRate_{kDefaultSampleRate};
    std::atomic<bool> buildsLazily_{false};
    std::atomic<FrameCount> framesWritten_{0};

    // Under the lock.
    mutable std::mutex mutex_;
    std::unique_ptr<Resampler> resampler_;
    std::optional<OpenDay> day_;
    std::optional<PeakBucket> peakBucket_;
    std::optional<WallTime> lastSyncCheckLog_;

    // Under a lock of its own, held for moments only: whoever arms the watch must not wait for a
    // buffer that is being written.
    std::mutex watchMutex_;
    std::optional<NonSilentWatch> nonSilentWatch_;
};

}  // namespace sonavault
