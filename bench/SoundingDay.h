#pragma once

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <vector>

#include "FullDay.h"
#include "Measuring.h"
#include "platform/DiskFlusher.h"
#include "platform/LibAv.h"
#include "recorder/LAMEEncoder.h"

namespace sonavault {

/// Puts the first frames of a file at its end again, as many as these, as a recording grows.
inline void growByFrames(const std::filesystem::path& file, std::int64_t count) {
    std::string frames(static_cast<std::size_t>(count * kFrameBytes), '\0');
    std::ifstream(file, std::ios::binary).read(frames.data(), std::ssize(frames));
    std::ofstream(file, std::ios::binary | std::ios::app).write(frames.data(), std::ssize(frames));
}

/// A full day of six minutes again and again, a minute like speech and a minute like music in turn,
/// as the recorder writes them.
class SoundingDay {
  public:
    SoundingDay() {
        encode(folder_ / "part.mp3");
        std::string part(static_cast<std::size_t>(kFramesOfAPart * kFrameBytes), '\0');
        if (!std::ifstream(folder_ / "part.mp3", std::ios::binary)
                 .read(part.data(), std::ssize(part)))
            std::abort();
        std::ofstream out(file(), std::ios::binary);
        for (std::int64_t i = 0; i < kFramesOfADay; i += kFramesOfAPart)
            out.write(part.data(), std::ssize(part));
    }

    std::filesystem::path file() const { return folder_ / "day.mp3"; }
    /// Another file, gone with the day.
    std::filesystem::path beside(const std::string& name) const { return folder_ / name; }

  private:
    static constexpr std::int64_t kFramesOfAPart = 10'000;
    static constexpr int kSecondsOfAPart = 360;
    static constexpr int kSourceRate = 22050;

    static void encode(const std::filesystem::path& file) {
        NoLog log;
        DiskFlusher flusher;
        const auto encoder = LAMEEncoder::create(kSourceRate, 1, 24, log);
        if (!encoder->open(file, flusher)) std::abort();
        std::vector<float> second(kSourceRate);
        unsigned noise = 1;
        // Some seconds more than are taken, since an encoder holds frames back.
        for (int i = 0; i < kSecondsOfAPart + 2; ++i) {
            for (std::size_t at = 0; at < second.size(); ++at) {
                noise = noise * 1664525U + 1013904223U;
                const double t = i + static_cast<double>(at) / kSourceRate;
                const double hiss = static_cast<double>(noise >> 16U) / 65536 - 0.5;
                const double speech = hiss * std::pow(std::sin(t * 4), 4);
                const double music =
                    std::sin(t * 1382) * std::sin(t * 3.1) + std::sin(t * 4146) * 0.3;
                second[at] =
                    static_cast<float>(i % 120 < 60 ? speech * 0.5 : music * 0.4 + hiss * 0.1);
            }
            encoder->encodeMono(second);
        }
        encoder->close();
    }

    OwnFolder folder_;
};

/// The yardstick: the library decodes frames of a SoundingDay and nothing is done with the sound.
class BareDecoder {
  public:
    BareDecoder() {
        silenceLibAv();
        if (avcodec_open2(context_.get(), nullptr, nullptr) < 0) std::abort();
    }

    /// Takes `count` frames, from the one of that number on, into memory.
    void read(std::ifstream& in, std::int64_t from, std::int64_t count) {
        frames_.resize(static_cast<std::size_t>(count * kFrameBytes) +
                       AV_INPUT_BUFFER_PADDING_SIZE);
        in.seekg(from * kFrameBytes);
        if (!in.read(reinterpret_cast<char*>(frames_.data()), count * kFrameBytes)) std::abort();
        count_ = count;
    }

    /// Decodes what was read.
    void decode() {
        for (std::int64_t i = 0; i < count_; ++i) {
            packet_->data = frames_.data() + i * kFrameBytes;
            packet_->size = kFrameBytes;
            avcodec_send_packet(context_.get(), packet_.get());
            avcodec_receive_frame(context_.get(), frame_.get());
            benchmark::DoNotOptimize(frame_->extended_data);
        }
    }

  private:
    LibAvPtr<AVCodecContext> context_{
        avcodec_alloc_context3(avcodec_find_decoder(AV_CODEC_ID_MP3))};
    LibAvPtr<AVPacket> packet_{av_packet_alloc()};
    LibAvPtr<AVFrame> frame_{av_frame_alloc()};
    std::vector<std::uint8_t> frames_;
    std::int64_t count_ = 0;
};

}  // namespace sonavault
