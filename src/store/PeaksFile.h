#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "platform/Result.h"
#include "store/RecordingModel.h"

namespace sonavault {

/// The waveform's sidecar, so that a day's sound is decoded for it once. The file's format is
/// described in docs/formats/peaks.md.
inline constexpr std::uint32_t kPeaksFormatVersion = 2;

/// Why there are no peaks.
struct PeaksError {
    /// The values have been the same in all versions.
    enum class Code : std::uint8_t {
        passedOn = 0,  ///< what the system or the decoder said
        noReadBuffer = 1,
        truncated = 2,
        badMagic = 3,
        payloadShort = 4,
        olderFormat = 5,
        invalidBucketSec = 6,
    };

    Code code = Code::passedOn;
    std::string description;

    bool operator==(const PeaksError&) const = default;
};

using PeaksResult = Result<PeaksData, PeaksError>;

/// The sidecar of an audio file.
std::filesystem::path peaksURL(const std::filesystem::path& audio);

/// The bytes of a sidecar. Range: fewer than 2^32 buckets.
std::string encodePeaks(const PeaksData& peaks);

/// Errors: the codes 2 to 6, the first that applies, before anything is allocated. Bytes behind the
/// last bucket are passed over.
PeaksResult decodePeaks(std::string_view bytes);

/// Thread: any. Errors: as decodePeaks(), and when the file can't be read. Whether the audio is
/// still the same is not asked: a finished day's doesn't change.
PeaksResult loadPeaksFile(const std::filesystem::path& file);

/// Replaces the sidecar in one step. Thread: any. Errors: words; what was there before stays.
Outcome savePeaksFile(const PeaksData& peaks, const std::filesystem::path& file);

}  // namespace sonavault
