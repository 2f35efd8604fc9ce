#include "links/AudioHandshake.h"

#include <QtEndian>

namespace sonavault {

namespace {

constexpr std::uint32_t kLeastSampleRate = 8000;
constexpr std::uint32_t kMostSampleRate = 192000;
constexpr std::uint32_t kMostChannels = 8;
constexpr std::uint32_t kBitsPerSample = 32;

template <class ReadWord>
std::optional<AudioFormat> parseWords(std::span<const std::uint8_t> bytes, ReadWord wordAt) {
    if (bytes.size() != kHandshakeBytes) return std::nullopt;
    return makeFormat(wordAt(bytes.data()), wordAt(bytes.data() + 4), wordAt(bytes.data() + 8));
}

}  // namespace

std::optional<AudioFormat> makeFormat(std::uint32_t sampleRate, std::uint32_t channels,
                                      std::uint32_t format) {
    if (sampleRate < kLeastSampleRate || sampleRate > kMostSampleRate) return std::nullopt;
    if (channels < 1 || channels > kMostChannels) return std::nullopt;
    if (format != kBitsPerSample) return std::nullopt;
    return AudioFormat{static_cast<double>(sampleRate), static_cast<int>(channels), true};
}

std::optional<AudioFormat> parseHandshakeLE(std::span<const std::uint8_t> bytes) {
    return parseWords(bytes, [](const void* at) { return qFromLittleEndian<quint32>(at); });
}

std::optional<AudioFormat> parseHandshakeBE(std::span<const std::uint8_t> bytes) {
    return parseWords(bytes, [](const void* at) { return qFromBigEndian<quint32>(at); });
}

std::optional<HandshakeResult> parseHandshake(std::span<const std::uint8_t> bytes) {
    if (const auto format = parseHandshakeLE(bytes)) return HandshakeResult{*format, false};
    if (const auto format = parseHandshakeBE(bytes)) return HandshakeResult{*format, true};
    return std::nullopt;
}

std::string hexText(std::span<const std::uint8_t> bytes) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        if (!text.empty()) text += ' ';
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

}  // namespace sonavault
