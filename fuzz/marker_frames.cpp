#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "Check.h"
#include "SenderInput.h"
#include "links/HeardStream.h"
#include "links/MarkerStream.h"
#include "links/MarkerWire.h"

namespace sonavault::testing {
namespace {

/// What a stream came to.
struct Heard {
    std::vector<Bytes> payloads;
    LengthEndian order = LengthEndian::unknown;
    std::vector<std::uint32_t> refusedPrefix;

    bool operator==(const Heard&) const = default;
};

void takeAll(MarkerStream& stream, Heard& heard) {
    for (;;) {
        const auto step = stream.take();
        if (std::holds_alternative<MarkerStream::NeedsMore>(step)) return;
        check(heard.refusedPrefix.empty());
        if (const auto* settled = std::get_if<MarkerStream::Settled>(&step)) {
            check(heard.order == LengthEndian::unknown && heard.payloads.empty());
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

/// Hears `bytes` in pieces as splitInto() gives them.
Heard hear(const Bytes& bytes, const Bytes& splits) {
    return hearPieces<MarkerStream, Heard>(
        splitInto(bytes, splits), [](auto& stream, Heard& heard) {
            takeAll(stream, heard);
            check(stream.pendingByteCount() < 4 + kMaxPayloadBytes);
        });
}

bool isLength(std::uint32_t word) {
    return word > 0 && word <= 65536;
}

/// What the bytes mean, worked out in the plainest way.
Heard expected(const Bytes& bytes) {
    Heard heard;
    if (bytes.size() < 4) return heard;
    const bool big = !isLength(wordAt(bytes, 0, Order::little));
    if (big && !isLength(wordAt(bytes, 0, Order::big))) {
        heard.refusedPrefix = {wordAt(bytes, 0, Order::little), wordAt(bytes, 0, Order::big)};
        return heard;
    }
    const Order order = big ? Order::big : Order::little;
    heard.order = big ? LengthEndian::big : LengthEndian::little;
    for (std::size_t at = 0; at + 4 <= bytes.size();) {
        const std::uint32_t length = wordAt(bytes, at, order);
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
    const auto marker = decodeMarkerWire(payload);
    check(marker || !marker.error().empty());
}

}  // namespace
}  // namespace sonavault::testing

/// Takes a SenderInput. Each payload is decoded, and so is the whole as if it were one.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sonavault::testing;
    if (size == 0) return 0;
    const SenderInput input(data, size);
    const Bytes& bytes = input.bytes;
    const Heard meant = expected(bytes);
    check(hear(bytes, input.splits) == meant);
    check(hear(bytes, {0}) == meant);
    check(hear(bytes, {}) == meant);
    for (const Bytes& payload : meant.payloads) decode(payload);
    decode(bytes);
    return 0;
}
