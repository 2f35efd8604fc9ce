#pragma once

#include <cstdint>

namespace sonavault::automation {

/// How much air real time owes: never ahead of the clock, never behind it for long.
///
/// Air that could not be sent in its time is gone, as on a real station; only a short delay is made
/// good.
class AirPacer {
  public:
    /// What is sent at once, unless told otherwise. Units: seconds
    static constexpr double kChunkSec = 0.02;
    /// A delay longer than this is given up. Units: seconds
    static constexpr double kMostBehindSec = 0.5;

    explicit AirPacer(int sampleRate, double chunkSec = kChunkSec);

    /// What is to be sent now.
    struct Due {
        std::int64_t first = 0;   ///< place of the first frame, counted from second 0
        std::int64_t frames = 0;  ///< whole chunks
        std::int64_t lost = 0;    ///< given up just before `first`
    };

    /// Takes what is due at `elapsedSec`, which never goes back.
    Due take(double elapsedSec);

    /// Nothing is owed up to `elapsedSec`: a connection begins, or a pause is over.
    void beginAt(double elapsedSec);

  private:
    std::int64_t frameAt(double elapsedSec) const;

    const int sampleRate_;
    const std::int64_t chunk_;
    std::int64_t position_ = 0;
};

}  // namespace sonavault::automation
