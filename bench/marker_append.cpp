// What a marker costs: its whole way into the day's log against nothing but opening the file,
// writing the same row and closing it.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "Measuring.h"
#include "recorder/MarkerIngestion.h"
#include "store/MarkerLogWriter.h"

namespace sonavault {
namespace {

constexpr int kMarkers = 10'000;

class CountingLog final : public Log {
  public:
    void line(std::string_view) override { ++lines; }
    int lines = 0;
};

/// A station of its own, gone at the end.
class Station {
  public:
    Station()
        : home_(std::filesystem::temp_directory_path() / "sonavault-bench-markers"),
          folder_(home_, Preferences(home_ / "shared.conf")) {
        std::filesystem::remove_all(home_);
        std::filesystem::create_directories(home_ / "Calderwave/Station");
    }
    ~Station() {
        std::error_code ignored;
        std::filesystem::remove_all(home_, ignored);
    }
    Station(const Station&) = delete;
    Station& operator=(const Station&) = delete;

    const StationFolder& folder() const { return folder_; }
    const std::filesystem::path& home() const { return home_; }

  private:
    std::filesystem::path home_;
    StationFolder folder_;
};

std::vector<MarkerWire> aBusyDay() {
    std::vector<MarkerWire> markers;
    markers.reserve(kMarkers);
    for (int i = 0; i < kMarkers; ++i)
        markers.push_back({.type = i % 3 == 0 ? "break_start" : "vt_pre",
                           .clockTime = "14:05:09",
                           .wallClockIso8601 = "2026-03-02T13:05:09.100Z",
                           .label = "Spot number " + std::to_string(i) + ", long",
                           .durationSec = 30.5});
    return markers;
}

void appendBare(const std::filesystem::path& file, const std::vector<std::string>& rows) {
    for (const auto& row : rows) {
        std::FILE* out = std::fopen(file.c_str(), "ab");
        if (!out || std::fwrite(row.data(), 1, row.size(), out) != row.size()) std::abort();
        std::fclose(out);
    }
}

void wholeIngestion(benchmark::State& state) {
    const Station station;
    const SystemClock clock;
    const auto markers = aBusyDay();
    std::vector<std::string> rows;
    rows.reserve(markers.size());
    for (const auto& each : markers)
        rows.push_back(markerRow(each.clockTime, each.type, *each.label, *each.durationSec));
    double bare = 0;
    double whole = 0;
    for ([[maybe_unused]] auto _ : state) {
        const auto bareFile = station.home() / "bare.csv";
        std::filesystem::remove(bareFile);
        bare += secondsOf([&] { appendBare(bareFile, rows); });

        CountingLog log;
        DiskFlusher flusher;
        MarkerIngestion ingestion(clock, log, station.folder(), flusher,
                                  [](const NonSilentWatch&) {});
        const double took = secondsOf([&] {
            for (const auto& each : markers) ingestion.handleIncomingMarker(each);
        });
        whole += took;
        state.SetIterationTime(took);
        const auto written = station.folder().makeOutputURLs(clock.now(), log)->csv;
        if (log.lines != 2 * kMarkers ||
            std::filesystem::file_size(written) !=
                std::filesystem::file_size(bareFile) + std::string(kMarkerLogHeader).size())
            return state.SkipWithError("a marker was lost");
        std::filesystem::remove(written);
    }
    const auto markersInAll = static_cast<double>(state.iterations()) * kMarkers;
    state.counters["us_a_marker"] = whole / markersInAll * 1e6;
    state.counters["us_bare"] = bare / markersInAll * 1e6;
    state.counters["of_bare_append"] = whole / bare;
}
BENCHMARK(wholeIngestion)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
}  // namespace sonavault

BENCHMARK_MAIN();
