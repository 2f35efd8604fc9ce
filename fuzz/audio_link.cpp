#include <algorithm>
#include <bit>
#include <cstdint>
#include <vector>

#include "Check.h"
#include "SenderInput.h"
#include "links/AudioStream.h"
#include "links/HeardStream.h"

namespace sonavault::testing {
namespace {

/// What a stream came to, with samples as bits, for a damaged sample may be no number.
struct Heard {
    std::vector<HandshakeResult> agreed;
    std::vector<Bytes> refused;
    std::vector<std::uint32_t> words;

    bool operator==(const Heard&) const = default;
};

void takeAll(AudioStream& stream, Heard& heard) {
    for (;;) {
        const auto step = stream.take();
        if (std::holds_alternative<AudioStream::NeedsMore>(step)) return;
        if (const auto* agreed = std::get_if<AudioStream::Agreed>(&step))
            heard.agreed.push_back(agreed->handshake);
        if (const auto* refused = std::get_if<AudioStream::Refused>(&step))
            heard.refused.emplace_back(refused->bytes.begin(), refused->bytes.end());
        if (const auto* buffer = std::get_if<AudioBufferView>(&step)) {
            check(heard.agreed.size() == 1 && buffer->frames > 0);
            check(buffer->format == heard.agreed[0].format);
            const auto words = static_cast<std::size_t>(buffer->frames * buffer->format.channels);
            for (std::size_t i = 0; i < words; ++i)
                heard.words.push_back(std::bit_cast<std::uint32_t>(buffer->planes[0][i]));
        }
    }
}

/// Hears `bytes` in pieces as splitInto() gives them.
Heard hear(const Bytes& bytes, const Bytes& splits) {
    return hearPieces<AudioStream, Heard>(splitInto(bytes, splits), [](auto& stream, Heard& heard) {
        takeAll(stream, heard);
        check(stream.pendingByteCount() < 32);
    });
}

bool makesSense(const Bytes& bytes, Order order) {
    const std::uint32_t rate = wordAt(bytes, 0, order);
    const std::uint32_t channels = wordAt(bytes, 4, order);
    return rate >= 8000 && rate <= 192000 && channels >= 1 && channels <= 8 &&
           wordAt(bytes, 8, order) == 32;
}

/// What the bytes mean, worked out in the plainest way.
Heard expected(const Bytes& bytes) {
    Heard heard;
    if (bytes.size() < 12) return heard;
    const bool little = makesSense(bytes, Order::little);
    if (!little && !makesSense(bytes, Order::big)) {
        heard.refused.emplace_back(bytes.begin(), bytes.begin() + 12);
        return heard;
    }
    const Order order = little ? Order::little : Order::big;
    const std::uint32_t channels = wordAt(bytes, 4, order);
    const auto rate = static_cast<double>(wordAt(bytes, 0, order));
    heard.agreed.push_back({{rate, static_cast<int>(channels), true}, !little});
    const std::size_t words = (bytes.size() - 12) / (channels * std::size_t{4}) * channels;
    for (std::size_t i = 0; i < words; ++i) heard.words.push_back(wordAt(bytes, 12 + 4 * i, order));
    return heard;
}

}  // namespace
}  // namespace sonavault::testing

/// Takes a SenderInput.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sonavault::testing;
    if (size == 0) return 0;
    const SenderInput input(data, size);
    const Bytes& bytes = input.bytes;
    const Heard meant = expected(bytes);
    const Bytes twelve(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(
                                                          std::min<std::size_t>(12, bytes.size())));
    check(sonavault::parseHandshake(twelve).has_value() == !meant.agreed.empty());
    check(hear(bytes, input.splits) == meant);
    check(hear(bytes, {0}) == meant);
    // In one piece the stream may hold everything until it is taken, but no more afterwards.
    check(hear(bytes, {}) == meant);
    return 0;
}
