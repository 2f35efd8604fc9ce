#include "automation/AirWire.h"

#include <bit>

namespace sonavault::automation {

namespace {

void appendWord(std::vector<std::uint8_t>& bytes, std::uint32_t word, bool bigEndian) {
    for (int i = 0; i < 4; ++i)
        bytes.push_back(static_cast<std::uint8_t>(word >> (bigEndian ? 24 - 8 * i : 8 * i)));
}

}  // namespace

std::vector<std::uint8_t> encodeHandshake(const AirFormat& format) {
    constexpr std::uint32_t kBitsPerSample = 32;
    std::vector<std::uint8_t> bytes;
    appendWord(bytes, static_cast<std::uint32_t>(format.sampleRate), format.bigEndian);
    appendWord(bytes, static_cast<std::uint32_t>(format.channels), format.bigEndian);
    appendWord(bytes, kBitsPerSample, format.bigEndian);
    return bytes;
}

std::vector<std::uint8_t> encodeFrames(std::span<const float> mono, const AirFormat& format) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(mono.size() * static_cast<std::size_t>(format.bytesPerFrame()));
    for (const float sample : mono)
        for (int channel = 0; channel < format.channels; ++channel)
            appendWord(bytes, std::bit_cast<std::uint32_t>(sample), format.bigEndian);
    return bytes;
}

}  // namespace sonavault::automation
