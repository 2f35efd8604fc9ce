#include "platform/Mp3Header.h"

#include <array>
#include <cstring>

namespace sonavault {
namespace {

constexpr int kFreeFormat = 0;
constexpr int kBad = 0;

constexpr std::array<int, 16> kBitratesMpeg1 = {kFreeFormat, 32,  40,  48,  56,  64,  80,  96,
                                                112,         128, 160, 192, 224, 256, 320, kBad};
constexpr std::array<int, 16> kBitratesMpeg2 = {kFreeFormat, 8,  16, 24,  32,  40,  48,  56,
                                                64,          80, 96, 112, 128, 144, 160, kBad};
constexpr std::array<int, 3> kSampleRatesMpeg1 = {44100, 48000, 32000};

constexpr unsigned kVersion25 = 0;
constexpr unsigned kVersionReserved = 1;
constexpr unsigned kVersion1 = 3;
constexpr unsigned kLayer3 = 1;
constexpr unsigned kRateReserved = 3;

constexpr std::size_t kId3v2HeaderBytes = 10;
constexpr std::size_t kId3v1Bytes = 128;

int rateDivider(unsigned version) {
    if (version == kVersion1) return 1;
    return version == kVersion25 ? 4 : 2;
}

}  // namespace

std::optional<Mp3Header> parseMp3Header(std::span<const std::uint8_t> bytes) {
    if (bytes.size() < kMp3HeaderBytes) return std::nullopt;
    const unsigned second = bytes[1];
    const unsigned third = bytes[2];
    if (bytes[0] != 0xFF || (second & 0xE0U) != 0xE0U) return std::nullopt;

    const unsigned version = (second >> 3U) & 3U;
    const unsigned layer = (second >> 1U) & 3U;
    const unsigned rateIndex = (third >> 2U) & 3U;
    if (version == kVersionReserved || layer != kLayer3 || rateIndex == kRateReserved)
        return std::nullopt;

    const bool mpeg1 = version == kVersion1;
    const int bitrateKbps = (mpeg1 ? kBitratesMpeg1 : kBitratesMpeg2)[third >> 4U];
    if (bitrateKbps == kFreeFormat || bitrateKbps == kBad) return std::nullopt;

    Mp3Header header;
    header.bitrateKbps = bitrateKbps;
    header.sampleRate = kSampleRatesMpeg1[rateIndex] / rateDivider(version);
    header.samplesPerFrame = mpeg1 ? 1152 : 576;
    // The standard's frame is a whole number of bytes: both divisions cut, in this order, and
    // padding makes up for it.
    const int padding = static_cast<int>((third >> 1U) & 1U);
    header.frameBytes =
        header.samplesPerFrame * bitrateKbps * 1000 / 8 / header.sampleRate + padding;
    return header;
}

std::int64_t mp3DataStart(std::span<const std::uint8_t> file) {
    if (file.size() < kId3v2HeaderBytes || std::memcmp(file.data(), "ID3", 3) != 0) return 0;
    std::int64_t size = 0;
    for (std::size_t i = 6; i < kId3v2HeaderBytes; ++i) size = (size << 7) | (file[i] & 0x7F);
    return static_cast<std::int64_t>(kId3v2HeaderBytes) + size;
}

std::int64_t mp3DataEnd(std::span<const std::uint8_t> file) {
    const auto size = static_cast<std::int64_t>(file.size());
    if (file.size() < kId3v1Bytes) return size;
    const auto tag = file.last(kId3v1Bytes);
    const bool tagged = std::memcmp(tag.data(), "TAG", 3) == 0;
    return tagged ? size - static_cast<std::int64_t>(kId3v1Bytes) : size;
}

}  // namespace sonavault
