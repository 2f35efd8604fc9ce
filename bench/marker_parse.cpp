// What it costs to read a day of 10,000 markers, and to count them.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>

#include "store/MarkerLogReader.h"
#include "store/MarkerLogWriter.h"

namespace {

using namespace sonavault;

constexpr int kMarkers = 10'000;

/// A log with labels as an automation sends them; made once and deleted at the end.
class MarkerLog {
  public:
    MarkerLog() : file_(std::filesystem::temp_directory_path() / "sonavault-bench-markers.csv") {
        std::ofstream out(file_, std::ios::binary);
        out << kMarkerLogHeader;
        for (int i = 0; i < kMarkers; ++i)
            out << markerRow("12:34:56", i % 2 ? "vt_pre" : "custom",
                             i % 3 ? "An artist – a title" : "A title, \"live\" at the café",
                             i * 0.125);
    }
    ~MarkerLog() {
        std::error_code ignored;
        std::filesystem::remove(file_, ignored);
    }
    const std::filesystem::path& file() const { return file_; }

  private:
    std::filesystem::path file_;
};

void parsesADay(benchmark::State& state) {
    const MarkerLog log;
    while (state.KeepRunning()) {
        const auto markers = parseMarkerCSV(log.file());
        if (!markers || markers->size() != kMarkers)
            return state.SkipWithError("markers are missing");
    }
}
BENCHMARK(parsesADay)->Unit(benchmark::kMillisecond);

void countsADay(benchmark::State& state) {
    const MarkerLog log;
    while (state.KeepRunning())
        if (countMarkerLines(log.file()) != kMarkers)
            return state.SkipWithError("markers are missing");
}
BENCHMARK(countsADay)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
