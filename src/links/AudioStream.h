#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <variant>
#include <vector>

#include "links/AudioHandshake.h"
#include "platform/AudioFormat.h"

namespace sonavault {

/// One sender's byte stream, cut into its handshake and then into whole frames. It knows nothing of
/// sockets: bytes go in in any pieces, and what they amount to comes out the same.
///
/// Thread: one at a time.
class AudioStream {
  public:
    /// Nothing more can be made of the bytes received so far.
    struct NeedsMore {};
    /// The first 12 bytes named a format.
    struct Agreed {
        HandshakeResult handshake;
    };
    /// The first 12 bytes make no sense in either byte order: the sender is to be dropped.
    struct Refused {
        std::array<std::uint8_t, kHandshakeBytes> bytes;
    };
    using Step = std::variant<NeedsMore, Agreed, Refused, AudioBufferView>;

    /// Begins afresh for a new sender: bytes of the last one are forgotten, an unfinished frame
    /// with them.
    void reset();

    void append(std::span<const std::uint8_t> bytes);

    /// Takes the next thing out of the bytes received; to be called until it needs more. All whole
    /// frames that are there come as one buffer, which is valid until the next call. After a
    /// refusal it only ever needs more, until reset().
    Step take();

    /// Bytes received and not yet taken.
    std::size_t pendingByteCount() const { return pendingBytes_.size(); }

  private:
    enum class State { awaitingHandshake, streaming, refused };

    Step takeHandshake();
    Step takeFrames();
    void dropPending(std::size_t bytes);

    State state_ = State::awaitingHandshake;
    HandshakeResult handshake_;
    std::vector<std::uint8_t> pendingBytes_;
    std::vector<float> samples_;
    const float* plane_ = nullptr;
};

}  // namespace sonavault
