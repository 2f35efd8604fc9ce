#pragma once

#include <cstdint>
#include <span>
#include <variant>
#include <vector>

namespace sonavault {

/// The most that one message may take. Units: bytes
inline constexpr std::uint32_t kMaxPayloadBytes = 65536;

/// The byte order of a sender's length prefixes, which the sender does not declare.
enum class LengthEndian { unknown, little, big };

/// One sender's byte stream, cut into the payloads that its length prefixes announce. It knows
/// nothing of sockets: bytes go in in any pieces, and what they amount to comes out the same.
///
/// The first prefix alone settles the byte order: the little-endian reading if that is a possible
/// length, else the big-endian one. A big-endian sender whose first payload has exactly 256 or
/// 65536 bytes is misjudged, for 00 00 01 00 and 00 01 00 00 are possible lengths either way.
///
/// Thread: one at a time.
class MarkerStream {
  public:
    /// Nothing more can be made of the bytes received so far.
    struct NeedsMore {};
    /// The first prefix told the byte order.
    struct Settled {
        LengthEndian order;
    };
    /// The first prefix is no possible length in either byte order: the sender is to be dropped.
    struct Unparseable {
        std::uint32_t little;
        std::uint32_t big;
    };
    /// A later prefix announces more than a message may have: the sender is to be dropped.
    struct TooLong {
        std::uint32_t length;
    };
    /// One message's bytes, valid until the next call. Empty after a prefix of 0, which is passed
    /// once the order is known.
    struct Payload {
        std::span<const std::uint8_t> bytes;
    };
    using Step = std::variant<NeedsMore, Settled, Unparseable, TooLong, Payload>;

    /// Begins afresh for a new sender: bytes of the last one are forgotten, and its byte order with
    /// them.
    void reset();

    void append(std::span<const std::uint8_t> bytes);

    /// Takes the next thing out of the bytes received; to be called until it needs more. After a
    /// sender that is to be dropped it only ever needs more, until reset().
    Step take();

    LengthEndian lengthEndian() const { return lengthEndian_; }

    /// Bytes received and not yet taken.
    std::size_t pendingByteCount() const { return pendingBytes_.size() - taken_; }

  private:
    std::span<const std::uint8_t> pending() const;
    Step settle(std::uint32_t little, std::uint32_t big);
    Step refuse(Step why);

    std::vector<std::uint8_t> pendingBytes_;
    std::size_t taken_ = 0;  // of pendingBytes_, from its beginning
    LengthEndian lengthEndian_ = LengthEndian::unknown;
    bool refused_ = false;
};

}  // namespace sonavault
