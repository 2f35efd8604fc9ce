#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sonavault::testing {

/// The rule by which a cut is made, in the plainest form: one walk from the file's beginning for
/// each range, byte by byte, from tables of its own. What it gives is what an export must hold.
class LiteralFrameWalk {
  public:
    using Pair = std::pair<double, double>;  ///< low and high. Units: seconds of the file

    static std::string cut(std::string_view data, std::vector<Pair> wanted) {
        std::string out;
        for (const auto& [low, high] : merged(std::move(wanted))) append(data, low, high, out);
        return out;
    }

    static std::vector<Pair> merged(std::vector<Pair> pairs) {
        std::erase_if(pairs, [](const Pair& pair) { return !(pair.second > pair.first); });
        std::sort(pairs.begin(), pairs.end());
        std::vector<Pair> merged;
        for (const auto& pair : pairs) {
            if (!merged.empty() && merged.back().second >= pair.first)
                merged.back().second = std::max(merged.back().second, pair.second);
            else
                merged.push_back(pair);
        }
        return merged;
    }

    struct Frame {
        std::int64_t size;
        double duration;
    };

    static std::optional<Frame> parse(std::string_view data, std::size_t offset) {
        static constexpr int kBitratesV1[16] = {0,   32,  40,  48,  56,  64,  80,  96,
                                                112, 128, 160, 192, 224, 256, 320, 0};
        static constexpr int kBitratesV2[16] = {0,  8,  16, 24,  32,  40,  48,  56,
                                                64, 80, 96, 112, 128, 144, 160, 0};
        static constexpr int kRates[3] = {44100, 48000, 32000};
        if (offset + 4 > data.size()) return std::nullopt;
        const int b0 = byte(data, offset);
        const int b1 = byte(data, offset + 1);
        const int b2 = byte(data, offset + 2);
        if (b0 != 0xFF || (b1 & 0xE0) != 0xE0) return std::nullopt;
        const int version = (b1 >> 3) & 3;
        const int layer = (b1 >> 1) & 3;
        if (version == 1 || layer != 1) return std::nullopt;
        const int bitrateIndex = (b2 >> 4) & 15;
        const int rateIndex = (b2 >> 2) & 3;
        if (bitrateIndex == 0 || bitrateIndex == 15 || rateIndex == 3) return std::nullopt;
        const bool isV1 = version == 3;
        const int divider = isV1 ? 1 : (version == 2 ? 2 : 4);
        const int bitrate = (isV1 ? kBitratesV1 : kBitratesV2)[bitrateIndex] * 1000;
        const int sampleRate = kRates[rateIndex] / divider;
        const int samples = isV1 ? 1152 : 576;
        const int size = samples * bitrate / 8 / sampleRate + ((b2 >> 1) & 1);
        return Frame{size, static_cast<double>(samples) / static_cast<double>(sampleRate)};
    }

    static std::size_t dataStart(std::string_view data) {
        if (data.size() < 10 || data.substr(0, 3) != "ID3") return 0;
        std::size_t size = 0;
        for (std::size_t i = 6; i < 10; ++i)
            size = size * 128 + static_cast<std::size_t>(byte(data, i) & 0x7F);
        return 10 + size;
    }

    static std::size_t audioEnd(std::string_view data) {
        const bool tagged = data.size() >= 128 && data.substr(data.size() - 128, 3) == "TAG";
        return tagged ? data.size() - 128 : data.size();
    }

  private:
    static int byte(std::string_view data, std::size_t at) {
        return static_cast<unsigned char>(data[at]);
    }

    static void append(std::string_view data, double low, double high, std::string& out) {
        const std::size_t end = audioEnd(data);
        std::size_t pos = dataStart(data);
        double t = 0;
        std::optional<std::size_t> start;
        while (pos < end) {
            const auto frame = parse(data, pos);
            if (!frame) {
                ++pos;
                continue;
            }
            const double frameEnd = t + frame->duration;
            if (!start && frameEnd > low) start = pos;
            if (start && t >= high) {
                out += data.substr(*start, pos - *start);
                return;
            }
            pos += static_cast<std::size_t>(frame->size);
            t = frameEnd;
        }
        if (start) out += data.substr(*start, end - *start);
    }
};

}  // namespace sonavault::testing
