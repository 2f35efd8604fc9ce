#include "store/PeaksFile.h"

#include <bit>
#include <limits>

#include "platform/AtomicFile.h"
#include "platform/ReadFile.h"
#include "store/StationFolder.h"

namespace sonavault {
namespace {

constexpr std::string_view kMagic = "SVPK";
constexpr std::size_t kVersionAt = 4;
constexpr std::size_t kBucketSecAt = 8;
constexpr std::size_t kTotalDurationAt = 16;
constexpr std::size_t kCountAt = 24;
constexpr std::size_t kMaxRMSAt = 28;
constexpr std::size_t kHeaderBytes = 32;
constexpr std::size_t kValueBytes = 4;

// Byte by byte, so that the file is the same on every machine; compilers make moves of it.

template <class Number>
void put(std::string& bytes, Number number) {
    for (std::size_t i = 0; i < sizeof number; ++i)
        bytes += static_cast<char>(number >> (8 * i) & 0xFFU);
}

template <class Number>
Number numberAt(std::string_view bytes, std::size_t at) {
    Number number = 0;
    for (std::size_t i = 0; i < sizeof number; ++i)
        number |= static_cast<Number>(static_cast<unsigned char>(bytes[at + i])) << (8 * i);
    return number;
}

void put(std::string& bytes, float value) {
    put(bytes, std::bit_cast<std::uint32_t>(value));
}

void put(std::string& bytes, double value) {
    put(bytes, std::bit_cast<std::uint64_t>(value));
}

float floatAt(std::string_view bytes, std::size_t at) {
    return std::bit_cast<float>(numberAt<std::uint32_t>(bytes, at));
}

double doubleAt(std::string_view bytes, std::size_t at) {
    return std::bit_cast<double>(numberAt<std::uint64_t>(bytes, at));
}

PeaksResult refuse(PeaksError::Code code, std::string description) {
    return PeaksResult::failure({code, std::move(description)});
}

}  // namespace

std::filesystem::path peaksURL(const std::filesystem::path& audio) {
    return sidecarURL(audio, "peaks");
}

std::string encodePeaks(const PeaksData& peaks) {
    std::string bytes;
    bytes.reserve(kHeaderBytes + peaks.rms.size() * kValueBytes);
    bytes += kMagic;
    put(bytes, kPeaksFormatVersion);
    put(bytes, peaks.bucketSec);
    put(bytes, peaks.totalDurationSec);
    put(bytes, static_cast<std::uint32_t>(peaks.rms.size()));
    put(bytes, peaks.maxRMS);
    for (const float value : peaks.rms) put(bytes, value);
    return bytes;
}

PeaksResult decodePeaks(std::string_view bytes) {
    using Code = PeaksError::Code;
    if (bytes.size() < kHeaderBytes) return refuse(Code::truncated, "Peaks file truncated");
    if (!bytes.starts_with(kMagic)) return refuse(Code::badMagic, "Bad peaks magic");
    const auto version = numberAt<std::uint32_t>(bytes, kVersionAt);
    if (version != kPeaksFormatVersion)
        return refuse(Code::olderFormat, "Peaks file is an older format (v" +
                                             std::to_string(version) + "); will regenerate.");
    PeaksData peaks;
    peaks.bucketSec = doubleAt(bytes, kBucketSecAt);
    // Written so that what is no number fails too.
    if (!(peaks.bucketSec > 0))
        return refuse(Code::invalidBucketSec, "Peaks file has invalid bucketSec");
    const std::uint64_t count = numberAt<std::uint32_t>(bytes, kCountAt);
    if (bytes.size() < kHeaderBytes + count * kValueBytes)
        return refuse(Code::payloadShort, "Peaks file payload short");

    peaks.totalDurationSec = doubleAt(bytes, kTotalDurationAt);
    peaks.maxRMS = floatAt(bytes, kMaxRMSAt);
    peaks.rms.resize(count);
    for (std::size_t i = 0; i < count; ++i)
        peaks.rms[i] = floatAt(bytes, kHeaderBytes + i * kValueBytes);
    return peaks;
}

PeaksResult loadPeaksFile(const std::filesystem::path& file) {
    const auto bytes = readWholeFile(file);
    if (!bytes) return refuse(PeaksError::Code::passedOn, bytes.error());
    return decodePeaks(bytes.value());
}

Outcome savePeaksFile(const PeaksData& peaks, const std::filesystem::path& file) {
    if (peaks.rms.size() > std::numeric_limits<std::uint32_t>::max())
        return Outcome::failure("Too many buckets for a peaks file");
    return writeFileAtomically(file, encodePeaks(peaks));
}

}  // namespace sonavault
