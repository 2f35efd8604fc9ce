#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "platform/AudioFormat.h"

namespace sonavault {

/// How many bytes a sender begins with.
inline constexpr std::size_t kHandshakeBytes = 12;

/// What a sender's first bytes agreed for the rest of its connection.
struct HandshakeResult {
    AudioFormat format;  ///< 32-bit float, interleaved, in the sender's rate and channels
    bool wireIsBigEndian =
        false;  ///< the order of the handshake's words and of every sample after it

    bool operator==(const HandshakeResult&) const = default;
};

/// The format of a sender that claims these values, or nothing when one of them is out of its
/// range.
///
/// Range: 8000 to 192000 hertz and 1 to 8 channels, ends included; `format` is bits a sample and
/// must be 32.
std::optional<AudioFormat> makeFormat(std::uint32_t sampleRate, std::uint32_t channels,
                                      std::uint32_t format);

/// The format that 12 bytes give when read in one byte order.
std::optional<AudioFormat> parseHandshakeLE(std::span<const std::uint8_t> bytes);
std::optional<AudioFormat> parseHandshakeBE(std::span<const std::uint8_t> bytes);

/// The agreed format and the sender's byte order, which the handshake does not declare: the order
/// in which all three words make sense. Nothing when neither does, or when `bytes` are not
/// exactly 12.
std::optional<HandshakeResult> parseHandshake(std::span<const std::uint8_t> bytes);

/// "44 ac 00 00": bytes for a log line.
std::string hexText(std::span<const std::uint8_t> bytes);

}  // namespace sonavault
