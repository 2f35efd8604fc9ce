#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "links/AudioStream.h"

namespace {

using sonavault::AudioStream;
using Bytes = std::vector<std::uint8_t>;

/// What a stream came to, with samples as bits, for a damaged sample may be no number.
struct Heard {
    std::vector<sonavault::HandshakeResult> agreed;
    std::vector<Bytes> refused;
    std::vector<std::uint32_t> words;

    bool operator==(const Heard&) const = default;
};

void require(bool condition) {
    if (!condition) std::abort();
}

void takeAll(AudioStream& stream, Heard& heard) {
    for (;;) {
        const auto step = stream.take();
        if (std::holds_alternative<AudioStream::NeedsMore>(step)) return;
        if (const auto* agreed = std::get_if<AudioStream::Agreed>(&step))
            heard.agreed.push_back(agreed->handshake);
        if (const auto* refused = std::get_if<AudioStream::Refused>(&step))
            heard.refused.emplace_back(refused->bytes.begin(), refused->bytes.end());
        if (const auto* buffer = std::get_if<sonavault::AudioBufferView>(&step)) {
            require(heard.agreed.size() == 1 && buffer->frames > 0);
            require(buffer->format == heard.agreed[0].format);
            const auto words = static_cast<std::size_t>(buffer->frames * buffer->format.channels);
            for (std::size_t i = 0; i < words; ++i)
                heard.words.push_back(std::bit_cast<std::uint32_t>(buffer->planes[0][i]));
        }
    }
}

/// Hears `bytes` in pieces whose sizes `splits` gives, over and over; in one piece without any.
Heard hear(const Bytes& bytes, const Bytes& splits) {
    AudioStream stream;
    Heard heard;
    std::size_t at = 0;
    for (std::size_t piece = 0; at < bytes.size(); ++piece) {
        std::size_t size = bytes.size() - at;
        if (!splits.empty()) size = std::min<std::size_t>(size, splits[piece % splits.size()] + 1U);
        stream.append({bytes.data() + at, size});
        takeAll(stream, heard);
        at += size;
        require(stream.pendingByteCount() < 32);
    }
    return heard;
}

std::uint32_t wordAt(const Bytes& bytes, std::size_t at, bool bigEndian) {
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < 4; ++i)
        word |= static_cast<std::uint32_t>(bytes[at + i]) << (bigEndian ? 24 - 8 * i : 8 * i);
    return word;
}

bool makesSense(const Bytes& bytes, bool bigEndian) {
    const std::uint32_t rate = wordAt(bytes, 0, bigEndian);
    const std::uint32_t channels = wordAt(bytes, 4, bigEndian);
    return rate >= 8000 && rate <= 192000 && channels >= 1 && channels <= 8 &&
           wordAt(bytes, 8, bigEndian) == 32;
}

/// What the bytes mean, worked out in the plainest way.
Heard expected(const Bytes& bytes) {
    Heard heard;
    if (bytes.size() < 12) return heard;
    const bool little = makesSense(bytes, false);
    if (!little && !makesSense(bytes, true)) {
        heard.refused.emplace_back(bytes.begin(), bytes.begin() + 12);
        return heard;
    }
    const std::uint32_t channels = wordAt(bytes, 4, !little);
    const auto rate = static_cast<double>(wordAt(bytes, 0, !little));
    heard.agreed.push_back({{rate, static_cast<int>(channels), true}, !little});
    const std::size_t words = (bytes.size() - 12) / (channels * 4) * channels;
    for (std::size_t i = 0; i < words; ++i)
        heard.words.push_back(wordAt(bytes, 12 + 4 * i, !little));
    return heard;
}

}  // namespace

/// The first byte says how many bytes of split sizes follow; the rest is what a sender sends.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::size_t splitCount = std::min<std::size_t>(data[0], size - 1);
    const Bytes splits(data + 1, data + 1 + splitCount);
    const Bytes bytes(data + 1 + splitCount, data + size);
    const Heard meant = expected(bytes);
    const Bytes twelve(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(
                                                          std::min<std::size_t>(12, bytes.size())));
    require(sonavault::parseHandshake(twelve).has_value() == !meant.agreed.empty());
    require(hear(bytes, splits) == meant);
    require(hear(bytes, {0}) == meant);
    // In one piece the stream may hold everything until it is taken, but no more afterwards.
    require(hear(bytes, {}) == meant);
    return 0;
}
