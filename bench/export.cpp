// What an export of three ranges of a full day costs, against reading the day with cat, and against
// ffmpeg cutting the same ranges out of it without encoding.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "FullDay.h"
#include "Measuring.h"
#include "export/FrameWalkExport.h"

namespace sonavault {
namespace {

struct Hours {
    int first;
    double length;  // Units: hours
};

// Morning, noon and late at night, so that nearly all of the day has to be walked.
constexpr Hours kRanges[] = {{6, 1}, {12, 1}, {22, 1}};
constexpr double kSecondsOfARange = 3600;

std::optional<double> secondsOfFfmpeg(const FullDay& day, const std::filesystem::path& cut) {
    const auto ranges = day.beside("ranges.txt");
    std::ofstream list(ranges);
    for (const auto& range : kRanges)
        list << "file '" << day.file().string() << "'\ninpoint " << range.first * 3600
             << "\noutpoint " << range.first * 3600 + kSecondsOfARange << '\n';
    list.close();
    return secondsOfCommand("ffmpeg -nostdin -v error -y -f concat -safe 0 -i '" + ranges.string() +
                            "' -c copy '" + cut.string() + "'");
}

void exportsThreeHoursOfADay(benchmark::State& state) {
    const FullDay day;
    const auto cut = day.beside("cut.mp3");
    const auto ffmpegsCut = day.beside("ffmpegs-cut.mp3");
    ExportSource source{.loadedFileURL = day.file()};
    for (const auto& range : kRanges)
        source.selections.push_back(Selection{.startSec = range.first * 3600.0,
                                              .endSec = range.first * 3600.0 + kSecondsOfARange});
    if (!secondsOfCat(day.file())) return state.SkipWithError("cat failed");
    double took = 0;
    double cat = 0;
    for ([[maybe_unused]] auto _ : state) {
        std::filesystem::remove(cut);
        bool exported = false;
        const double once =
            secondsOf([&] { exported = bool(performFrameWalkExport(source, std::nullopt, cut)); });
        // Frames of 36 ms fit an hour exactly, but their added-up times don't always.
        const auto frames =
            exported ? static_cast<std::int64_t>(std::filesystem::file_size(cut)) / kFrameBytes : 0;
        if (frames < 300'000 || frames > 300'006) return state.SkipWithError("the cut is wrong");
        state.SetIterationTime(once);
        took += once;
        const auto reading = secondsOfCat(day.file());
        if (!reading) return state.SkipWithError("cat failed");
        cat += *reading;
    }
    const double exporting = took / static_cast<double>(state.iterations());
    const auto ffmpeg = secondsOfFfmpeg(day, ffmpegsCut);
    if (!ffmpeg) return state.SkipWithError("ffmpeg failed");
    state.counters["cat_ms"] = benchmark::Counter(cat * 1000, benchmark::Counter::kAvgIterations);
    state.counters["export_to_cat"] = took / cat;
    state.counters["ffmpeg_ms"] = *ffmpeg * 1000;
    state.counters["ffmpeg_to_export"] = *ffmpeg / exporting;
    state.counters["ffmpeg_cut_MB"] =
        static_cast<double>(std::filesystem::file_size(ffmpegsCut)) / 1e6;
}
BENCHMARK(exportsThreeHoursOfADay)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

}  // namespace
}  // namespace sonavault

BENCHMARK_MAIN();
