#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/AudioFileInfo.h"

namespace {

using namespace sonavault;
using SteadyClock = std::chrono::steady_clock;

constexpr std::int64_t kFramesOfADay = 2'400'000;  // 24 hours at 16,000 Hz
constexpr std::int64_t kFramesOfAPiece = 25;       // 2,700 bytes

/// A day at 24 kbps in the file cache, appended in small pieces as a recording is (which the system
/// keeps in smaller pages than a file written at once); made once and deleted at the end.
class Day {
  public:
    Day() : file_(std::filesystem::temp_directory_path() / "sonavault-bench-day.mp3") {
        std::string frame("\xFF\xF3\x38\xC4", 4);
        frame.resize(108, 'x');
        std::string block;
        for (int i = 0; i < kFramesOfAPiece; ++i) block += frame;
        std::ofstream out(file_, std::ios::binary);
        for (std::int64_t i = 0; i < kFramesOfADay; i += kFramesOfAPiece)
            out.write(block.data(), static_cast<std::streamsize>(block.size())).flush();
    }
    ~Day() {
        std::error_code ignored;
        std::filesystem::remove(file_, ignored);
    }
    const std::filesystem::path& file() const { return file_; }

  private:
    std::filesystem::path file_;
};

double secondsSince(SteadyClock::time_point begun) {
    return std::chrono::duration<double>(SteadyClock::now() - begun).count();
}

double secondsOfCat(const std::filesystem::path& file) {
    const std::string command = "cat '" + file.string() + "' > /dev/null";
    const auto begun = SteadyClock::now();
    if (std::system(command.c_str()) != 0) std::fputs("cat failed\n", stderr);
    return secondsSince(begun);
}

/// The walk and the yardstick take turns, so that both meet the machine in the same mood.
void walksADayInTheTimeOfCat(benchmark::State& state) {
    const Day day;
    secondsOfCat(day.file());
    double walk = 0;
    double cat = 0;
    while (state.KeepRunning()) {
        const auto begun = SteadyClock::now();
        const auto info = readAudioFileInfo(day.file());
        const double took = secondsSince(begun);
        if (!info || info.value().frames != kFramesOfADay * 576)
            return state.SkipWithError("the day's length is wrong");
        state.SetIterationTime(took);
        walk += took;
        cat += secondsOfCat(day.file());
    }
    state.counters["cat_ms"] = benchmark::Counter(cat * 1000, benchmark::Counter::kAvgIterations);
    state.counters["walk_to_cat"] = walk / cat;
}

}  // namespace

BENCHMARK(walksADayInTheTimeOfCat)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(30);

BENCHMARK_MAIN();
