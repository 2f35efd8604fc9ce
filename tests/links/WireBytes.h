#pragma once

#include <bit>
#include <cstdint>
#include <vector>

namespace sonavault::testing {

using Bytes = std::vector<std::uint8_t>;

enum class Order { little, big };

inline void appendWord(Bytes& bytes, std::uint32_t word, Order order) {
    for (int i = 0; i < 4; ++i) {
        const int shift = order == Order::little ? 8 * i : 24 - 8 * i;
        bytes.push_back(static_cast<std::uint8_t>(word >> shift));
    }
}

inline Bytes handshakeBytes(std::uint32_t sampleRate, std::uint32_t channels, std::uint32_t format,
                            Order order) {
    Bytes bytes;
    for (const std::uint32_t word : {sampleRate, channels, format}) appendWord(bytes, word, order);
    return bytes;
}

inline Bytes sampleBytes(const std::vector<float>& samples, Order order) {
    Bytes bytes;
    for (const float sample : samples)
        appendWord(bytes, std::bit_cast<std::uint32_t>(sample), order);
    return bytes;
}

inline Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

/// Samples no two of which are alike, among them ones whose bytes read the same in no order.
inline std::vector<float> distinctSamples(int count) {
    std::vector<float> samples;
    for (int i = 0; i < count; ++i) samples.push_back(static_cast<float>(i - count / 2) / 1237.0F);
    return samples;
}

}  // namespace sonavault::testing
