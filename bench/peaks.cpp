// What the waveform of a full day costs, against the library's decoder alone on the same cores;
// what it costs again when the day has grown; and how soon a day is heard at 23:30.

#include "store/PeaksGeneration.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "Measuring.h"
#include "platform/DiskFlusher.h"
#include "platform/LibAv.h"
#include "platform/Mp3Decoder.h"
#include "recorder/LAMEEncoder.h"

namespace sonavault {
namespace {

constexpr std::int64_t kFrameBytes = 108;
constexpr std::int64_t kFramesOfADay = 2'400'000;  // 24 hours at 16,000 Hz
constexpr std::int64_t kFramesOfAnHour = kFramesOfADay / 24;
constexpr int kSamplesOfAFrame = 576;

/// What all threads took of the processors, which other programs' load does not change much.
double processorSecondsOf(const std::function<void()>& work) {
    const std::clock_t begin = std::clock();
    work();
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

/// Half an hour like speech and half like music, as the recorder would write them.
void encodeAnHour(const std::filesystem::path& file) {
    NoLog log;
    DiskFlusher flusher;
    const auto encoder = LAMEEncoder::create(22050, 1, 24, log);
    std::filesystem::remove(file);
    if (!encoder->open(file, flusher)) std::abort();
    std::vector<float> second(22050);
    unsigned noise = 1;
    for (int i = 0; i < 3605; ++i) {
        for (std::size_t at = 0; at < second.size(); ++at) {
            noise = noise * 1664525U + 1013904223U;
            const double t = i + static_cast<double>(at) / 22050;
            const double hiss = static_cast<double>(noise >> 16U) / 65536 - 0.5;
            const double speech = hiss * std::pow(std::sin(t * 4), 4);
            const double music = std::sin(t * 1382) * std::sin(t * 3.1) + std::sin(t * 4146) * 0.3;
            second[at] = static_cast<float>(i % 120 < 60 ? speech * 0.5 : music * 0.4 + hiss * 0.1);
        }
        encoder->encodeMono(second);
    }
    encoder->close();
}

/// A day of 24 such hours, made once and deleted at the end.
class Day {
  public:
    Day() {
        encodeAnHour(file_);
        std::string hour(static_cast<std::size_t>(kFramesOfAnHour * kFrameBytes), '\0');
        std::ifstream(file_, std::ios::binary).read(hour.data(), std::ssize(hour));
        std::ofstream out(file_, std::ios::binary);
        for (int i = 0; i < 24; ++i) out.write(hour.data(), std::ssize(hour));
    }
    ~Day() {
        std::error_code ignored;
        std::filesystem::remove(file_, ignored);
    }
    Day(const Day&) = delete;
    Day& operator=(const Day&) = delete;

    const std::filesystem::path& file() const { return file_; }

  private:
    std::filesystem::path file_ =
        std::filesystem::temp_directory_path() / "sonavault-bench-peaks.mp3";
};

const Day& theDay() {
    static const Day day;
    return day;
}

/// The yardstick: the library decodes these frames and nothing is done with the sound.
void decodeFrames(const std::filesystem::path& file, std::int64_t from, std::int64_t to) {
    const LibAvPtr<AVCodecContext> context(
        avcodec_alloc_context3(avcodec_find_decoder(AV_CODEC_ID_MP3)));
    if (avcodec_open2(context.get(), nullptr, nullptr) < 0) std::abort();
    const LibAvPtr<AVPacket> packet(av_packet_alloc());
    const LibAvPtr<AVFrame> frame(av_frame_alloc());
    constexpr std::int64_t kFramesOfAPiece = 1000;
    std::vector<std::uint8_t> piece(kFramesOfAPiece * kFrameBytes + AV_INPUT_BUFFER_PADDING_SIZE);
    std::ifstream in(file, std::ios::binary);
    in.seekg(from * kFrameBytes);
    for (std::int64_t i = from; i < to; ++i) {
        const std::int64_t inPiece = (i - from) % kFramesOfAPiece;
        if (inPiece == 0)
            in.read(reinterpret_cast<char*>(piece.data()), kFramesOfAPiece * kFrameBytes);
        packet->data = piece.data() + inPiece * kFrameBytes;
        packet->size = kFrameBytes;
        avcodec_send_packet(context.get(), packet.get());
        avcodec_receive_frame(context.get(), frame.get());
        benchmark::DoNotOptimize(frame->extended_data);
    }
}

void decodeOnAllCores(const std::filesystem::path& file) {
    const std::int64_t cores = std::max(1U, std::thread::hardware_concurrency());
    std::vector<std::thread> threads;
    for (std::int64_t i = 0; i < cores; ++i)
        threads.emplace_back(decodeFrames, file, kFramesOfADay * i / cores,
                             kFramesOfADay * (i + 1) / cores);
    for (auto& thread : threads) thread.join();
}

/// What this line of the process's own account says. Units: megabytes
double accountOf(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(name + ":")) return std::stod(line.substr(name.size() + 1)) / 1024;
    return 0;
}

void peaksOfADay(benchmark::State& state) {
    silenceLibAv();
    const auto& file = theDay().file();
    double peaks = 0;
    double decode = 0;
    double memory = 0;
    double peaksProcessor = 0;
    double decodeProcessor = 0;
    for ([[maybe_unused]] auto _ : state) {
        decodeProcessor +=
            processorSecondsOf([&] { decode += secondsOf([&] { decodeOnAllCores(file); }); });
        std::ofstream("/proc/self/clear_refs") << "5";  // the highest mark begins anew
        const double before = accountOf("VmRSS");
        std::size_t buckets = 0;
        double took = 0;
        peaksProcessor += processorSecondsOf([&] {
            took = secondsOf([&] {
                const auto made = PeaksGenerator().generate(file, 0.25);
                if (made) buckets = made.value().rms.size();
            });
        });
        if (buckets != 345'600) return state.SkipWithError("the day's peaks are wrong");
        memory = std::max(memory, accountOf("VmHWM") - before);
        state.SetIterationTime(took);
        peaks += took;
    }
    state.counters["decode_alone_s"] =
        benchmark::Counter(decode, benchmark::Counter::kAvgIterations);
    state.counters["peaks_to_decode"] = peaks / decode;
    state.counters["processor_to_processor"] = peaksProcessor / decodeProcessor;
    state.counters["memory_MB"] = memory;
}
BENCHMARK(peaksOfADay)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

/// A minute more at the end of a day whose peaks are known.
void peaksOfAGrownDay(benchmark::State& state) {
    const auto file = theDay().file().string() + ".grown.mp3";
    std::filesystem::copy_file(theDay().file(), file,
                               std::filesystem::copy_options::overwrite_existing);
    std::string minute(static_cast<std::size_t>(kFramesOfAnHour / 60 * kFrameBytes), '\0');
    std::ifstream(file, std::ios::binary).read(minute.data(), std::ssize(minute));
    PeaksGenerator generator;
    const double whole = secondsOf([&] { (void)generator.generate(file, 0.25); });
    double grown = 0;
    for ([[maybe_unused]] auto _ : state) {
        std::ofstream(file, std::ios::binary | std::ios::app)
            .write(minute.data(), std::ssize(minute));
        const double took = secondsOf([&] { (void)generator.generate(file, 0.25); });
        state.SetIterationTime(took);
        grown += took;
    }
    state.counters["buckets_decoded"] = static_cast<double>(generator.lastDecodedBuckets());
    state.counters["grown_to_whole"] = grown / static_cast<double>(state.iterations()) / whole;
    std::filesystem::remove(file);
}
BENCHMARK(peaksOfAGrownDay)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

/// From the press of Play at 23:30 to the first 1,024 samples, with the day open: the index is
/// extended and handed over, the file opened, the place found, the frames before it decoded.
void firstSoundAtHalfPastEleven(benchmark::State& state) {
    auto index = std::move(Mp3FrameIndex::of(theDay().file()).value());
    std::vector<float> samples(1024);
    float* const plane = samples.data();
    double play = 0;
    double preRoll = 0;
    const FrameCount position = 84600LL * 16000 + 100;
    for ([[maybe_unused]] auto _ : state) {
        const double took = secondsOf([&] {
            if (!index.extend()) std::abort();
            const auto decoder =
                std::move(openMp3(std::make_shared<const Mp3FrameIndex>(index)).value());
            decoder->seek(position);
            if (decoder->read({&plane, 1}, 1024) != 1024) std::abort();
        });
        state.SetIterationTime(took);
        play += took;
        const std::int64_t frame = position / kSamplesOfAFrame;
        preRoll += secondsOf(
            [&] { decodeFrames(theDay().file(), frame - Mp3Decoder::kPreRollFrames, frame + 2); });
    }
    state.counters["pre_roll_alone_ms"] =
        benchmark::Counter(preRoll * 1000, benchmark::Counter::kAvgIterations);
}
BENCHMARK(firstSoundAtHalfPastEleven)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(200);

}  // namespace
}  // namespace sonavault

BENCHMARK_MAIN();
