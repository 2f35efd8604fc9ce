#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "links/MarkerStream.h"
#include "links/MarkerWire.h"

namespace {

using sonavault::LengthEndian;
using sonavault::MarkerStream;
using Bytes = std::vector<std::uint8_t>;

/// What a stream came to.
struct Heard {
    std::vector<Bytes> payloads;
    LengthEndian order = LengthEndian::unknown;
    std::vector<std::uint32_t> refusedPrefix;

    bool operator==(const Heard&) const = default;
};

void require(bool condition) {
    if (!condition) std::abort();
}

void takeAll(MarkerStream& stream, Heard& heard) {
    for (;;) {
        const auto step = stream.take();
        if (std::holds_alternative<MarkerStream::NeedsMore>(step)) return;
        require(heard.refusedPrefix.empty());
        if (const auto* settled = std::get_if<MarkerStream::Settled>(&step)) {
            require(heard.order == LengthEndian::unknown && heard.payloads.empty());
            heard.order = settled->order;
        }
        if (const auto* prefix = std::get_if<MarkerStream::Unparseable>(&step))
            heard.refusedPrefix = {prefix->little, prefix->big};
        if (const auto* tooLong = std::get_if<MarkerStream::TooLong>(&step))
            heard.refusedPrefix = {tooLong->length};
        if (const auto* payload = std::get_if<MarkerStream::Payload>(&step))
            heard.payloads.emplace_back(payload->bytes.begin(), payload->bytes.end());
    }
}

/// Hears `bytes` in pieces whose sizes `splits` gives, over and over; in one piece without any.
Heard hear(const Bytes& bytes, const Bytes& splits) {
    MarkerStream stream;
    Heard heard;
    std::size_t at = 0;
    for (std::size_t piece = 0; at < bytes.size(); ++piece) {
        std::size_t size = bytes.size() - at;
        if (!splits.empty()) size = std::min<std::size_t>(size, splits[piece % splits.size()] + 1U);
        stream.append({bytes.data() + at, size});
        takeAll(stream, heard);
        at += size;
        require(stream.pendingByteCount() < 4 + sonavault::kMaxPayloadBytes);
    }
    return heard;
}

std::uint32_t wordAt(const Bytes& bytes, std::size_t at, bool bigEndian) {
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < 4; ++i)
        word |= static_cast<std::uint32_t>(bytes[at + i]) << (bigEndian ? 24 - 8 * i : 8 * i);
    return word;
}

bool isLength(std::uint32_t word) {
    return word > 0 && word <= 65536;
}

/// What the bytes mean, worked out in the plainest way.
Heard expected(const Bytes& bytes) {
    Heard heard;
    if (bytes.size() < 4) return heard;
    const bool big = !isLength(wordAt(bytes, 0, false));
    if (big && !isLength(wordAt(bytes, 0, true))) {
        heard.refusedPrefix = {wordAt(bytes, 0, false), wordAt(bytes, 0, true)};
        return heard;
    }
    heard.order = big ? LengthEndian::big : LengthEndian::little;
    for (std::size_t at = 0; at + 4 <= bytes.size();) {
        const std::uint32_t length = wordAt(bytes, at, big);
        if (length > 65536) {
            heard.refusedPrefix = {length};
            break;
        }
        if (at + 4 + length > bytes.size()) break;
        const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(at + 4);
        heard.payloads.emplace_back(begin, begin + static_cast<std::ptrdiff_t>(length));
        at += 4 + length;
    }
    return heard;
}

void decode(const Bytes& payload) {
    const auto marker = sonavault::decodeMarkerWire(payload);
    require(marker || !marker.error().empty());
}

}  // namespace

/// The first byte says how many bytes of split sizes follow; the rest is what a sender sends. Each
/// payload is decoded, and so is the whole as if it were one.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::size_t splitCount = std::min<std::size_t>(data[0], size - 1);
    const Bytes splits(data + 1, data + 1 + splitCount);
    const Bytes bytes(data + 1 + splitCount, data + size);
    const Heard meant = expected(bytes);
    require(hear(bytes, splits) == meant);
    require(hear(bytes, {0}) == meant);
    require(hear(bytes, {}) == meant);
    for (const Bytes& payload : meant.payloads) decode(payload);
    decode(bytes);
    return 0;
}
