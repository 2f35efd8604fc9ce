#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace sonavault {

/// A count of sample frames: one sample of every channel.
using FrameCount = std::int64_t;

/// How 32-bit float samples are laid out.
struct AudioFormat {
    double sampleRate = 0;  ///< Units: hertz
    int channels = 0;
    bool interleaved = false;  ///< false: one plane a channel

    /// Bytes from one frame to the next where the samples lie side by side.
    int bytesPerFrame() const { return interleaved ? channels * 4 : 4; }

    bool operator==(const AudioFormat&) const = default;
};

/// "44100 Hz, 2 ch, Float32, interleaved": for log lines.
std::string describe(const AudioFormat& format);

/// Samples that somebody else owns, for the length of a call.
///
/// Interleaved: planes[0] holds frames * channels samples. Otherwise planes[c] holds the frames of
/// channel c.
struct AudioBufferView {
    AudioFormat format;
    FrameCount frames = 0;
    const float* const* planes = nullptr;
};

}  // namespace sonavault
