#include "support/SyntheticMp3.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <stdexcept>

namespace sonavault::testing {
namespace {

constexpr std::array kBitratesMpeg1 = {32,  40,  48,  56,  64,  80,  96,
                                       112, 128, 160, 192, 224, 256, 320};
constexpr std::array kBitratesMpeg2 = {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160};
constexpr int kNumberBytes = 5;

struct RateCode {
    int version;  // as in the header: 3 is MPEG-1, 2 is MPEG-2, 0 is MPEG-2.5
    int index;
};

RateCode codeOfRate(int sampleRate) {
    static const std::map<int, RateCode> kCodes = {
        {44100, {3, 0}}, {48000, {3, 1}}, {32000, {3, 2}}, {22050, {2, 0}}, {24000, {2, 1}},
        {16000, {2, 2}}, {11025, {0, 0}}, {12000, {0, 1}}, {8000, {0, 2}}};
    return kCodes.at(sampleRate);
}

bool isMpeg1(const Mp3Shape& shape) {
    return codeOfRate(shape.sampleRate).version == 3;
}

int samplesOf(const Mp3Shape& shape) {
    return isMpeg1(shape) ? 1152 : 576;
}

int bitrateIndex(const Mp3Shape& shape) {
    const auto& rates = isMpeg1(shape) ? kBitratesMpeg1 : kBitratesMpeg2;
    const auto found = std::find(rates.begin(), rates.end(), shape.bitrateKbps);
    if (found == rates.end()) throw std::invalid_argument("no such bitrate in Layer III");
    return static_cast<int>(found - rates.begin()) + 1;
}

bool isPadded(const Mp3Shape& shape, std::int64_t number) {
    if (shape.padding == Mp3Shape::Padding::alternating) return number % 2 == 1;
    return shape.padding == Mp3Shape::Padding::always;
}

}  // namespace

std::string mp3HeaderBytes(const Mp3Shape& shape, bool padded) {
    const RateCode code = codeOfRate(shape.sampleRate);
    const int layer3WithoutCrc = 1 << 1 | 1;
    const std::array<int, 4> header = {
        0xFF, 0xE0 | code.version << 3 | layer3WithoutCrc,
        bitrateIndex(shape) << 4 | code.index << 2 | (padded ? 1 : 0) << 1,
        (shape.stereo ? 0 : 3) << 6 | 1 << 2};
    std::string bytes;
    for (const int value : header) bytes += static_cast<char>(value);
    return bytes;
}

int mp3FrameBytes(const Mp3Shape& shape, bool padded) {
    const int slots = samplesOf(shape) / 8 * shape.bitrateKbps * 1000 / shape.sampleRate;
    return slots + (padded ? 1 : 0);
}

std::int64_t mp3FrameNumber(std::string_view wholeFrame) {
    std::int64_t number = 0;
    for (const char digit : wholeFrame.substr(wholeFrame.size() - kNumberBytes))
        number = number << 7 | digit;
    return number;
}

std::string SyntheticMp3::nextFrame(const Mp3Shape& shape, bool padded) {
    std::string frame = mp3HeaderBytes(shape, padded);
    frame.resize(static_cast<std::size_t>(mp3FrameBytes(shape, padded)), '\0');
    for (int digit = 0; digit < kNumberBytes; ++digit)
        frame[frame.size() - 1 - static_cast<std::size_t>(digit)] =
            static_cast<char>(numbered_ >> (7 * digit) & 0x7F);
    return frame;
}

SyntheticMp3& SyntheticMp3::frames(int count, const Mp3Shape& shape) {
    for (int i = 0; i < count; ++i) {
        const std::string frame = nextFrame(shape, isPadded(shape, numbered_));
        made_.push_back({static_cast<std::int64_t>(bytes_.size()),
                         static_cast<std::int64_t>(frame.size()), samplesOf(shape),
                         shape.sampleRate});
        bytes_ += frame;
        ++numbered_;
    }
    return *this;
}

SyntheticMp3& SyntheticMp3::tornFrame(int bytes, const Mp3Shape& shape) {
    bytes_ +=
        nextFrame(shape, isPadded(shape, numbered_)).substr(0, static_cast<std::size_t>(bytes));
    return *this;
}

SyntheticMp3& SyntheticMp3::cutEnd(std::int64_t bytes) {
    bytes_.resize(bytes_.size() - static_cast<std::size_t>(bytes));
    const auto size = static_cast<std::int64_t>(bytes_.size());
    while (!made_.empty() && made_.back().begin + made_.back().bytes > size) made_.pop_back();
    return *this;
}

SyntheticMp3& SyntheticMp3::junk(int bytes, std::uint32_t seed) {
    for (int i = 0; i < bytes; ++i) {
        seed = seed * 1664525U + 1013904223U;
        bytes_ += static_cast<char>((seed >> 24U) % 0xFFU);
    }
    return *this;
}

SyntheticMp3& SyntheticMp3::raw(std::string_view bytes) {
    bytes_ += bytes;
    return *this;
}

SyntheticMp3& SyntheticMp3::id3v2(int payload) {
    bytes_ += std::string("ID3\x04\0\0", 6);
    for (int shift = 21; shift >= 0; shift -= 7)
        bytes_ += static_cast<char>(payload >> shift & 0x7F);
    bytes_.append(static_cast<std::size_t>(payload), '\0');
    return *this;
}

SyntheticMp3& SyntheticMp3::id3v1() {
    bytes_ += "TAG";
    bytes_.append(125, ' ');
    return *this;
}

std::span<const std::uint8_t> SyntheticMp3::span() const {
    return {reinterpret_cast<const std::uint8_t*>(bytes_.data()), bytes_.size()};
}

double SyntheticMp3::durationSec() const {
    std::map<int, std::int64_t> samplesAtRate;
    for (const auto& frame : made_) samplesAtRate[frame.sampleRate] += frame.samples;
    double seconds = 0;
    for (const auto& [rate, samples] : samplesAtRate)
        seconds += static_cast<double>(samples) / rate;
    return seconds;
}

std::int64_t SyntheticMp3::lengthInFrames() const {
    return made_.empty() ? 0 : std::llround(durationSec() * made_.front().sampleRate);
}

}  // namespace sonavault::testing
