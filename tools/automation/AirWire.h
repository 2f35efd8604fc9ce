#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace sonavault::automation {

/// How a sender lays out its air on the wire.
struct AirFormat {
    int sampleRate = 44100;  ///< Units: hertz. Range: 8000 to 192000
    int channels = 2;        ///< Range: 1 to 8
    bool bigEndian = false;  ///< the order of all words and samples

    int bytesPerFrame() const { return channels * 4; }
};

/// The 12 bytes with which a connection begins.
std::vector<std::uint8_t> encodeHandshake(const AirFormat& format);

/// The wire's bytes of a mono programme, the same in every channel.
std::vector<std::uint8_t> encodeFrames(std::span<const float> mono, const AirFormat& format);

}  // namespace sonavault::automation
