#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <vector>

#include "platform/AudioDecoder.h"
#include "platform/Mp3FrameIndex.h"
#include "store/PeaksFile.h"

namespace sonavault {

/// How a length of audio is cut into buckets of equal length, of which the last may be shorter.
struct PeakGrid {
    FrameCount bucketFrames = 1;
    FrameCount length = 0;

    /// `bucketSec` in whole frames, at least one. Errors: nothing, when a bucket has more than 2^32
    /// - 1 frames.
    static std::optional<PeakGrid> of(double sampleRate, double bucketSec, FrameCount length);

    std::size_t count() const {
        return static_cast<std::size_t>((length + bucketFrames - 1) / bucketFrames);
    }
};

/// The RMS of the first channel in the buckets `from` to before `to`, written to their places in
/// `rms`, which holds all. What a bucket comes to does not depend on where the range begins. False
/// when `stop` was asked for.
bool measurePeaks(AudioDecoder& decoder, const PeakGrid& grid, std::size_t from, std::size_t to,
                  std::vector<float>& rms, const std::stop_token& stop);

/// Makes the peaks of recordings on all cores, and remembers those of the last, so that of a day
/// that has grown only the new part is decoded.
///
/// Thread: any, also several at once, of which one then remembers.
class PeaksGenerator {
  public:
    /// `workers`: threads that decode, the calling one included. Range: 0 for one a core
    explicit PeaksGenerator(unsigned workers = 0);
    ~PeaksGenerator();

    /// The same values, bit by bit, as one thread gives that decodes the file from its beginning.
    ///
    /// Errors: code 1 when a bucket can't be held; what the system or the decoder said, also
    /// "Stopped" when `stop` was asked for.
    PeaksResult generate(const std::filesystem::path& audio, double bucketSec,
                         const std::stop_token& stop = {});

    /// How many buckets the last call to generate() that worked decoded; the rest was known.
    std::size_t lastDecodedBuckets() const;

  private:
    struct Known;
    using Opener = std::function<Result<std::unique_ptr<AudioDecoder>>()>;

    Known takeKnown();
    PeaksResult generateMp3(Known known, const std::stop_token& stop);
    std::optional<PeaksError> measure(const Opener& open, const PeakGrid& grid, std::size_t from,
                                      std::vector<float>& rms, const std::stop_token& stop);

    const unsigned workers_;
    mutable std::mutex mutex_;
    std::unique_ptr<Known> known_;    // guarded by mutex_
    std::size_t decodedBuckets_ = 0;  // guarded by mutex_
};

/// The peaks of a recording, with nothing remembered.
PeaksResult generatePeaks(const std::filesystem::path& audio, double bucketSec);

}  // namespace sonavault
