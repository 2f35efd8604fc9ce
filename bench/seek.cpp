// How soon a day is heard at 23:30 once it is open: from Play to the first 1,024 samples ready for
// the output, against decoding of the frames before that place alone.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "Measuring.h"
#include "platform/DiskFlusher.h"
#include "platform/LibAv.h"
#include "platform/Mp3Decoder.h"
#include "recorder/LAMEEncoder.h"
#include "review/PlaybackFeeder.h"
#include "review/PlaybackFile.h"

namespace sonavault {
namespace {

constexpr int kRate = 16000;  // the encoder's own choice at this bitrate
constexpr std::int64_t kFrameBytes = 108;
constexpr std::int64_t kFramesOfThreeMinutes = 5000;
constexpr int kPartsOfADay = 480;
constexpr int kSamplesOfAFrame = 576;
constexpr FrameCount kFirstSamples = 1024;

void encodeThreeMinutes(const std::filesystem::path& file) {
    NoLog log;
    DiskFlusher flusher;
    const auto encoder = LAMEEncoder::create(22050, 1, 24, log);
    std::filesystem::remove(file);
    if (!encoder->open(file, flusher)) std::abort();
    std::vector<float> second(22050);
    unsigned noise = 1;
    for (int i = 0; i < 182; ++i) {
        for (std::size_t at = 0; at < second.size(); ++at) {
            noise = noise * 1664525U + 1013904223U;
            const double t = i + static_cast<double>(at) / 22050;
            const double hiss = static_cast<double>(noise >> 16U) / 65536 - 0.5;
            second[at] = static_cast<float>(std::sin(t * 1382) * std::sin(t * 3.1) * 0.4 +
                                            hiss * std::pow(std::sin(t * 4), 4) * 0.5);
        }
        encoder->encodeMono(second);
    }
    encoder->close();
}

/// 24 hours at 24 kbps, made once and deleted at the end.
class Day {
  public:
    Day() {
        encodeThreeMinutes(file_);
        std::string part(static_cast<std::size_t>(kFramesOfThreeMinutes * kFrameBytes), '\0');
        std::ifstream(file_, std::ios::binary).read(part.data(), std::ssize(part));
        std::ofstream out(file_, std::ios::binary);
        for (int i = 0; i < kPartsOfADay; ++i) out.write(part.data(), std::ssize(part));
    }
    ~Day() {
        std::error_code ignored;
        std::filesystem::remove(file_, ignored);
    }
    Day(const Day&) = delete;
    Day& operator=(const Day&) = delete;

    const std::filesystem::path& file() const { return file_; }

    /// As a recording does in a second.
    void grow() const {
        const std::string second(28 * kFrameBytes, '\0');
        std::string frames(second.size(), '\0');
        std::ifstream(file_, std::ios::binary).read(frames.data(), std::ssize(frames));
        std::ofstream(file_, std::ios::binary | std::ios::app)
            .write(frames.data(), std::ssize(frames));
    }

  private:
    std::filesystem::path file_ =
        std::filesystem::temp_directory_path() / "sonavault-bench-seek.mp3";
};

const Day& theDay() {
    static const Day day;
    return day;
}

/// The yardstick: the library decodes these frames of the file and nothing is done with the sound.
double secondsToDecode(std::int64_t from, std::int64_t to) {
    const LibAvPtr<AVCodecContext> context(
        avcodec_alloc_context3(avcodec_find_decoder(AV_CODEC_ID_MP3)));
    if (avcodec_open2(context.get(), nullptr, nullptr) < 0) std::abort();
    const LibAvPtr<AVPacket> packet(av_packet_alloc());
    const LibAvPtr<AVFrame> frame(av_frame_alloc());
    const auto bytes = static_cast<std::size_t>((to - from) * kFrameBytes);
    std::vector<std::uint8_t> piece(bytes + AV_INPUT_BUFFER_PADDING_SIZE);
    std::ifstream in(theDay().file(), std::ios::binary);
    in.seekg(from * kFrameBytes);
    in.read(reinterpret_cast<char*>(piece.data()), static_cast<std::streamsize>(bytes));
    return secondsOf([&] {
        for (std::int64_t i = 0; i < to - from; ++i) {
            packet->data = piece.data() + i * kFrameBytes;
            packet->size = kFrameBytes;
            avcodec_send_packet(context.get(), packet.get());
            avcodec_receive_frame(context.get(), frame.get());
            benchmark::DoNotOptimize(frame->extended_data);
        }
    });
}

/// Presses Play at about 23:30 again and again, after `before` each time.
void playAtHalfPastEleven(benchmark::State& state,
                          const std::function<void(PlaybackFeeder&)>& before) {
    silenceLibAv();
    auto file = std::move(PlaybackFile::open(theDay().file()).value());
    if (!file.source()->index->await({})) std::abort();
    PlaybackFeeder feeder;
    double preRoll = 0;
    std::vector<double> all;
    FrameCount position = 84600LL * kRate + 100;
    for ([[maybe_unused]] auto _ : state) {
        before(feeder);
        position += kRate;  // not where the last one left off
        const double took = secondsOf([&] {
            if (!file.openAfresh()) std::abort();
            const auto sound = std::make_shared<AudioOutputSound>(file.info().sampleRate);
            feeder.feed(file.source(), position, sound);
            while (sound->ready() < kFirstSamples) std::this_thread::yield();
        });
        state.SetIterationTime(took);
        all.push_back(took);
        const std::int64_t frame = position / kSamplesOfAFrame;
        preRoll += secondsToDecode(frame - Mp3Decoder::kPreRollFrames, frame + 2);
    }
    state.counters["pre_roll_alone_ms"] =
        benchmark::Counter(preRoll * 1000, benchmark::Counter::kAvgIterations);
    // A busy machine lets the feeding thread wait for its turn now and then.
    std::sort(all.begin(), all.end());
    state.counters["median_ms"] = all[all.size() / 2] * 1000;
    state.counters["longest_ms"] = all.back() * 1000;
}

void playAfterStop(benchmark::State& state) {
    playAtHalfPastEleven(state, [](PlaybackFeeder& feeder) {
        feeder.stop();
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    });
}
BENCHMARK(playAfterStop)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(200);

void jumpWhilePlaying(benchmark::State& state) {
    playAtHalfPastEleven(state, [](PlaybackFeeder&) {});
}
BENCHMARK(jumpWhilePlaying)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(200);

void playOfADayThatGrows(benchmark::State& state) {
    playAtHalfPastEleven(state, [](PlaybackFeeder&) { theDay().grow(); });
}
BENCHMARK(playOfADayThatGrows)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(200);

}  // namespace
}  // namespace sonavault

BENCHMARK_MAIN();
