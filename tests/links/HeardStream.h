#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "links/WireBytes.h"

namespace sonavault::testing {

/// Gives a new `Stream` one piece after the other, with `takeAll(stream, heard)` after each, and
/// gives what was heard.
template <class Stream, class Heard, class TakeAll>
Heard hearPieces(const std::vector<Bytes>& pieces, TakeAll takeAll) {
    Stream stream;
    Heard heard;
    for (const Bytes& piece : pieces) {
        stream.append(piece);
        takeAll(stream, heard);
    }
    return heard;
}

inline std::vector<Bytes> splitAt(const Bytes& bytes, std::size_t at) {
    const auto middle = bytes.begin() + static_cast<std::ptrdiff_t>(at);
    return {Bytes(bytes.begin(), middle), Bytes(middle, bytes.end())};
}

inline std::vector<Bytes> byteByByte(const Bytes& bytes) {
    std::vector<Bytes> pieces;
    for (const std::uint8_t byte : bytes) pieces.push_back({byte});
    return pieces;
}

/// In pieces whose sizes, less one, `sizes` gives, over and over; in one piece without any.
inline std::vector<Bytes> splitInto(const Bytes& bytes, const Bytes& sizes) {
    std::vector<Bytes> pieces;
    for (auto rest = bytes.begin(); rest != bytes.end();) {
        std::ptrdiff_t size = bytes.end() - rest;
        if (!sizes.empty())
            size = std::min<std::ptrdiff_t>(size, sizes[pieces.size() % sizes.size()] + 1);
        pieces.emplace_back(rest, rest + size);
        rest += size;
    }
    return pieces;
}

inline std::uint32_t wordAt(const Bytes& bytes, std::size_t at, Order order) {
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < 4; ++i)
        word |= static_cast<std::uint32_t>(bytes[at + i])
                << (order == Order::big ? 24 - 8 * i : 8 * i);
    return word;
}

}  // namespace sonavault::testing
