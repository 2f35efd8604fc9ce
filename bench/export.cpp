// What an export of three ranges of a full day costs, against reading the day with cat, and against
// ffmpeg cutting the same ranges out of it without encoding.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "export/FrameWalkExport.h"

namespace sonavault {
namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr std::int64_t kFrameBytes = 108;          // 24 kbps at 16,000 Hz
constexpr std::int64_t kFramesOfADay = 2'400'000;  // of 36 ms each
constexpr std::int64_t kFramesOfAPiece = 25;

/// A folder that is deleted at the end, with a day in the file cache that was appended in small
/// pieces, as a recording is; the system keeps such a file in smaller pages than one written at
/// once.
class Day {
  public:
    Day() {
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
        std::string frame("\xFF\xF3\x38\xC4", 4);
        frame.resize(kFrameBytes, 'x');
        std::string block;
        for (int i = 0; i < kFramesOfAPiece; ++i) block += frame;
        std::ofstream out(file(), std::ios::binary);
        for (std::int64_t i = 0; i < kFramesOfADay; i += kFramesOfAPiece)
            out.write(block.data(), static_cast<std::streamsize>(block.size())).flush();
    }
    ~Day() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    Day(const Day&) = delete;
    Day& operator=(const Day&) = delete;

    std::filesystem::path file() const { return folder_ / "day.mp3"; }
    std::filesystem::path cut() const { return folder_ / "cut.mp3"; }
    std::filesystem::path ffmpegsCut() const { return folder_ / "ffmpegs-cut.mp3"; }
    std::filesystem::path listOfRanges() const { return folder_ / "ranges.txt"; }

  private:
    std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() / "sonavault-bench-export";
};

struct Hours {
    int first;
    double length;  // Units: hours
};

// Morning, noon and late at night, so that nearly all of the day has to be walked.
constexpr Hours kRanges[] = {{6, 1}, {12, 1}, {22, 1}};
constexpr double kSecondsOfARange = 3600;

double secondsSince(SteadyClock::time_point begun) {
    return std::chrono::duration<double>(SteadyClock::now() - begun).count();
}

double secondsOfCommand(const std::string& command) {
    const auto begun = SteadyClock::now();
    if (std::system(command.c_str()) != 0) std::fprintf(stderr, "failed: %s\n", command.c_str());
    return secondsSince(begun);
}

double secondsOfCat(const Day& day) {
    return secondsOfCommand("cat '" + day.file().string() + "' > /dev/null");
}

double secondsOfFfmpeg(const Day& day) {
    std::ofstream list(day.listOfRanges());
    for (const auto& range : kRanges)
        list << "file '" << day.file().string() << "'\ninpoint " << range.first * 3600
             << "\noutpoint " << range.first * 3600 + kSecondsOfARange << '\n';
    list.close();
    return secondsOfCommand("ffmpeg -nostdin -v error -y -f concat -safe 0 -i '" +
                            day.listOfRanges().string() + "' -c copy '" +
                            day.ffmpegsCut().string() + "'");
}

void exportsThreeHoursOfADay(benchmark::State& state) {
    const Day day;
    ExportSource source{.loadedFileURL = day.file()};
    for (const auto& range : kRanges)
        source.selections.push_back(Selection{.startSec = range.first * 3600.0,
                                              .endSec = range.first * 3600.0 + kSecondsOfARange});
    secondsOfCat(day);
    double took = 0;
    double cat = 0;
    for ([[maybe_unused]] auto _ : state) {
        std::filesystem::remove(day.cut());
        const auto begun = SteadyClock::now();
        const auto exported = performFrameWalkExport(source, std::nullopt, day.cut());
        const double once = secondsSince(begun);
        // Frames of 36 ms fit an hour exactly, but their added-up times don't always.
        const auto frames =
            static_cast<std::int64_t>(std::filesystem::file_size(day.cut())) / kFrameBytes;
        if (!exported || frames < 300'000 || frames > 300'006)
            return state.SkipWithError("the cut is wrong");
        state.SetIterationTime(once);
        took += once;
        cat += secondsOfCat(day);
    }
    const double exporting = took / static_cast<double>(state.iterations());
    const double ffmpeg = secondsOfFfmpeg(day);
    state.counters["cat_ms"] = benchmark::Counter(cat * 1000, benchmark::Counter::kAvgIterations);
    state.counters["export_to_cat"] = took / cat;
    state.counters["ffmpeg_ms"] = ffmpeg * 1000;
    state.counters["ffmpeg_to_export"] = ffmpeg / exporting;
    state.counters["ffmpeg_cut_MB"] =
        static_cast<double>(std::filesystem::file_size(day.ffmpegsCut())) / 1e6;
}
BENCHMARK(exportsThreeHoursOfADay)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

}  // namespace
}  // namespace sonavault

BENCHMARK_MAIN();
