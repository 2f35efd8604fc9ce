#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "system/Listening.h"

namespace sonavault::testing {

/// A waveform's sidecar, read byte by byte from its described layout.
struct StoredPeaks {
    std::string magic;
    std::uint32_t version = 0;
    double bucketSec = 0;
    double totalDurationSec = 0;
    float maxRMS = 0;
    std::vector<float> rms;
    std::size_t bytesBehind = 0;  ///< of the file, beyond the last bucket
};

/// Throws when the file is shorter than it says.
StoredPeaks readStoredPeaks(const std::filesystem::path& file);

/// What the sidecar of a recording has to hold, computed from another decoder's samples.
StoredPeaks peaksOf(const Heard& heard);

}  // namespace sonavault::testing
