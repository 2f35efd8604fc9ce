#pragma once

#include <vector>

#include "system/Listening.h"

namespace sonavault::testing {

/// A chord that tells a second of the day, and where the file has it.
struct HeardChord {
    double at = 0;               ///< its beginning. Units: seconds of the file
    long long secondOfDay = -1;  ///< what it says, in UTC
};

/// What a day's file holds of the automation's clock chords.
struct AirEvidence {
    double startedAt = 0;  ///< the moment of the file's frame 0. Units: seconds since 1970
    double frameSec = 0;   ///< how long one of its MP3 frames sounds
    std::vector<HeardChord> chords;  ///< in order
    std::vector<float> levels;       ///< of each kBlockSec. Units: dBFS

    static constexpr double kBlockSec = 0.01;
    /// Digital silence is below it, also where an encoder's echo of sound dies away.
    static constexpr float kSilentDb = -60;
    /// Air is above it, also the faint tone between two chords.
    static constexpr float kAirDb = -50;

    double durationSec() const { return static_cast<double>(levels.size()) * kBlockSec; }
};

/// `frameSec` and `startedAt` are taken as they are.
AirEvidence evidenceOf(const Heard& heard, double startedAt, double frameSec);

}  // namespace sonavault::testing
