// What the waveform of a full day costs, against the library's decoder alone on the same cores, and
// what it costs again when the day has grown.

#include "store/PeaksGeneration.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "SoundingDay.h"

namespace sonavault {
namespace {

constexpr std::int64_t kFramesOfAMinute = kFramesOfADay / 24 / 60;

/// What all threads took of the processors, which other programs' load does not change much.
double processorSecondsOf(const std::function<void()>& work) {
    const std::clock_t begin = std::clock();
    work();
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

const SoundingDay& theDay() {
    static const SoundingDay day;
    return day;
}

void decodeFrames(const std::filesystem::path& file, std::int64_t from, std::int64_t to) {
    constexpr std::int64_t kFramesOfAPiece = 1000;
    BareDecoder decoder;
    std::ifstream in(file, std::ios::binary);
    for (std::int64_t i = from; i < to; i += kFramesOfAPiece) {
        decoder.read(in, i, std::min(kFramesOfAPiece, to - i));
        decoder.decode();
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
    const auto file = theDay().file();
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
    const auto file = theDay().beside("grown.mp3");
    std::filesystem::copy_file(theDay().file(), file,
                               std::filesystem::copy_options::overwrite_existing);
    PeaksGenerator generator;
    const double whole = secondsOf([&] { (void)generator.generate(file, 0.25); });
    double grown = 0;
    for ([[maybe_unused]] auto _ : state) {
        growByFrames(file, kFramesOfAMinute);
        const double took = secondsOf([&] { (void)generator.generate(file, 0.25); });
        state.SetIterationTime(took);
        grown += took;
    }
    state.counters["buckets_decoded"] = static_cast<double>(generator.lastDecodedBuckets());
    state.counters["grown_to_whole"] = grown / static_cast<double>(state.iterations()) / whole;
    std::filesystem::remove(file);
}
BENCHMARK(peaksOfAGrownDay)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

}  // namespace
}  // namespace sonavault

BENCHMARK_MAIN();
