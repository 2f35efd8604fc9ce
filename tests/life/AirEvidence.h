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
    std::vector<HeardChord> chords;  ///< in order
    std::vector<float> levels;       ///< of each kBlockSec. Units: dBFS

    static constexpr double kBlockSec = 0.01;
    /// Digital silence is below it, also where an encoder's echo of sound dies away.
    static constexpr float kSilentDb = -60;
    /// Air is above it, also the faint tone between two chords.
    static constexpr float kAirDb = -50;

    double durationSec() const { return static_cast<double>(levels.size()) * kBlockSec; }
};

AirEvidence evidenceOf(const Heard& heard, double startedAt);

/// The sound as it went into the file. Every MP3 is heard later than that by what its encoder and
/// the decoder hold back: 576 and 529 samples, which come to 69 ms at 16,000 Hz (LAME's technical
/// FAQ, "Why is a decoded MP3 longer than the original .wav file?").
Heard withoutCodecDelay(Heard heard);

}  // namespace sonavault::testing
