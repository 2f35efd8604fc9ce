#include "system/StoredPeaks.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <stdexcept>

#include "support/TempFolder.h"

namespace sonavault::testing {

namespace {

constexpr std::size_t kHeaderBytes = 32;

template <class T>
T valueAt(const std::string& bytes, std::size_t offset) {
    T value{};
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

float rmsOf(const std::vector<float>& samples, std::size_t from, std::size_t to) {
    double sum = 0;
    for (std::size_t i = from; i < to; ++i) sum += static_cast<double>(samples[i]) * samples[i];
    return static_cast<float>(std::sqrt(sum / static_cast<double>(to - from)));
}

}  // namespace

StoredPeaks readStoredPeaks(const std::filesystem::path& file) {
    const std::string bytes = readFile(file);
    if (bytes.size() < kHeaderBytes) throw std::runtime_error("no header in " + file.string());
    StoredPeaks peaks;
    peaks.magic = bytes.substr(0, 4);
    peaks.version = valueAt<std::uint32_t>(bytes, 4);
    peaks.bucketSec = valueAt<double>(bytes, 8);
    peaks.totalDurationSec = valueAt<double>(bytes, 16);
    const std::size_t count = valueAt<std::uint32_t>(bytes, 24);
    peaks.maxRMS = valueAt<float>(bytes, 28);
    const std::size_t end = kHeaderBytes + 4 * count;
    if (bytes.size() < end) throw std::runtime_error("too few buckets in " + file.string());
    peaks.bytesBehind = bytes.size() - end;
    for (std::size_t at = kHeaderBytes; at < end; at += 4)
        peaks.rms.push_back(valueAt<float>(bytes, at));
    return peaks;
}

StoredPeaks peaksOf(const Heard& heard) {
    const auto bucket = static_cast<std::size_t>(std::lround(heard.sampleRate * 0.25));
    StoredPeaks peaks;
    peaks.magic = "SVPK";
    peaks.version = 2;
    peaks.bucketSec = static_cast<double>(bucket) / heard.sampleRate;
    peaks.totalDurationSec = heard.durationSec();
    for (std::size_t at = 0; at < heard.samples.size(); at += bucket)
        peaks.rms.push_back(rmsOf(heard.samples, at, std::min(at + bucket, heard.samples.size())));
    for (const float rms : peaks.rms) peaks.maxRMS = std::max(peaks.maxRMS, rms);
    if (peaks.maxRMS == 0) peaks.maxRMS = 1;
    return peaks;
}

}  // namespace sonavault::testing
