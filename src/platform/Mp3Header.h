#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>

namespace sonavault {

/// What the first bytes of an MPEG audio Layer III frame say (ISO/IEC 11172-3 and 13818-3, and the
/// MPEG-2.5 extension).
struct Mp3Header {
    int bitrateKbps = 0;
    int sampleRate = 0;       ///< Units: hertz
    int samplesPerFrame = 0;  ///< 1152 for MPEG-1, 576 for MPEG-2 and 2.5
    int frameBytes = 0;       ///< the whole frame, header and padding included

    /// How long the frame sounds. Units: seconds
    double durationSec() const { return static_cast<double>(samplesPerFrame) / sampleRate; }

    bool operator==(const Mp3Header&) const = default;
};

/// A frame's header takes this many bytes; the fourth says nothing about the frame's size.
inline constexpr std::size_t kMp3HeaderBytes = 4;

/// No frame of known size is longer than this.
inline constexpr int kMp3MaxFrameBytes = 1441;

/// The header at the beginning of `bytes`, or nothing when no Layer III frame of known size can
/// begin there: no sync, reserved or free-format fields, another layer, or fewer than four bytes.
std::optional<Mp3Header> parseMp3Header(std::span<const std::uint8_t> bytes);

/// Where the audio begins: behind an ID3v2 tag when the file starts with one, else 0. May lie
/// beyond the file's end.
std::int64_t mp3DataStart(std::span<const std::uint8_t> file);

/// Where the audio ends: before an ID3v1 tag when the file closes with one, else at the file's end.
std::int64_t mp3DataEnd(std::span<const std::uint8_t> file);

/// The first place in [from, to) where a Layer III header may begin, judged by the sync and the
/// layer alone; else `to`. The byte behind each place in the range can be read.
inline const std::uint8_t* findMp3Sync(const std::uint8_t* from, const std::uint8_t* to) {
    for (; from < to; ++from) {
        // In a stretch of 0xFF bytes a search for the next one would only cost its call.
        if (*from != 0xFF) {
            const void* const found = std::memchr(from, 0xFF, static_cast<std::size_t>(to - from));
            if (!found) return to;
            from = static_cast<const std::uint8_t*>(found);
        }
        if ((from[1] & 0xE6U) == 0xE2U) return from;
    }
    return to;
}

}  // namespace sonavault
