#include "DayStreams.h"

#include <gtest/gtest.h>
#include <lame/lame.h>

#include "platform/AudioFileInfo.h"
#include "support/SyntheticMp3.h"

namespace sonavault::testing {

namespace {

constexpr int kSamplesOfAFrame = 576;

/// Where frame `number` of a run begins, to the whole byte.
std::int64_t beginOf(std::int64_t number, const DayQuality& quality) {
    const std::int64_t bitsOfAFrame = std::int64_t{kSamplesOfAFrame} * quality.kbps * 1000;
    // The first frame is not padded: the encoder counts from what it owes after it.
    const std::int64_t plain = bitsOfAFrame / 8 / quality.sampleRate;
    if (number == 0) return 0;
    const std::int64_t bytesTimesRate = (number - 1) * bitsOfAFrame / 8;
    return plain + (bytesTimesRate + quality.sampleRate - 1) / quality.sampleRate;
}

}  // namespace

std::string dayRun(std::int64_t frames, const DayQuality& quality, std::uint32_t seed) {
    const Mp3Shape shape{quality.sampleRate, quality.kbps, Mp3Shape::Padding::never, false};
    const std::string plain = mp3HeaderBytes(shape, false);
    const std::string padded = mp3HeaderBytes(shape, true);
    const int plainBytes = mp3FrameBytes(shape, false);
    std::string run;
    run.reserve(static_cast<std::size_t>(beginOf(frames, quality)));
    for (std::int64_t i = 0; i < frames; ++i) {
        const auto end = static_cast<std::size_t>(beginOf(i + 1, quality));
        run += end - run.size() > static_cast<std::size_t>(plainBytes) ? padded : plain;
        seed = seed * 1664525U + 1013904223U;
        if (seed >> 28U == 0) run += padded;
        run.resize(end, static_cast<char>(seed >> 24U & 0x7FU));
    }
    return run;
}

std::string encodedRun(double seconds, int kbps) {
    lame_global_flags* const lame = lame_init();
    lame_set_in_samplerate(lame, 22050);
    lame_set_num_channels(lame, 1);
    lame_set_brate(lame, kbps);
    lame_set_mode(lame, MONO);
    lame_set_quality(lame, 5);
    lame_set_bWriteVbrTag(lame, 0);
    EXPECT_GE(lame_init_params(lame), 0);
    std::vector<float> samples(4096);
    std::vector<unsigned char> out(65536);
    std::string run;
    std::uint32_t noise = 1;
    const auto take = [&](int bytes) {
        run.append(reinterpret_cast<const char*>(out.data()), static_cast<std::size_t>(bytes));
    };
    for (double done = 0; done < seconds; done += 4096 / 22050.0) {
        for (float& sample : samples) {
            noise = noise * 1664525U + 1013904223U;
            sample = static_cast<float>(noise >> 16U) / 131072.0F - 0.25F;
        }
        take(lame_encode_buffer_ieee_float(lame, samples.data(), samples.data(), 4096, out.data(),
                                           static_cast<int>(out.size())));
    }
    take(lame_encode_flush(lame, out.data(), static_cast<int>(out.size())));
    lame_close(lame);
    return run;
}

double walkedSec(const std::string& bytes) {
    const auto info = walkMp3({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    EXPECT_TRUE(info);
    return info ? info.value().durationSec() : 0;
}

}  // namespace sonavault::testing
