#pragma once

#include <vector>

namespace sonavault::pastdays {

/// Mono sound at kSampleRate, full scale at 1.
using Samples = std::vector<float>;

/// What the recorder gives its encoder. Units: hertz
inline constexpr int kSampleRate = 22050;

inline std::size_t samplesIn(double seconds) {
    return static_cast<std::size_t>(seconds * kSampleRate);
}

/// Brings the sound to this root mean square. Peaks bend instead of breaking at full scale, as in a
/// station's compressor: the louder, the flatter. Silence stays as it is. Units: dBFS
void level(Samples& samples, double dBFS);

/// Lets the sound come and go. Units: seconds. Range: together not longer than the sound.
void fade(Samples& samples, double in, double out);

/// Adds `sound` to `samples`, as far as these go.
void mix(Samples& samples, const Samples& sound);

}  // namespace sonavault::pastdays
