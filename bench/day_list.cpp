// What it costs to list a year of full days, 365 files of 259 MB, against reading the folder's
// entries and the first and last 64 KiB of each file. Cold means that the system's file cache was
// emptied before, which takes the right to write /proc/sys/vm/drop_caches; without it the cold runs
// are refused.
//
// The files are sparse: frames stand in the first and last 64 KiB and in 64 KiB around each 64th
// part of a file, and nothing in between, so that a year fits on a disk. A list that read anything
// else would find no frames there and show a wrong length, which ends the run.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "Measuring.h"
#include "platform/LocalTime.h"
#include "store/DayList.h"
#include "store/MarkerLogWriter.h"

namespace sonavault {
namespace {

namespace fs = std::filesystem;

constexpr int kDays = 365;
constexpr int kMarkersOfADay = 400;
constexpr std::int64_t kFrameBytes = 108;  // 24 kbps at 16,000 Hz
constexpr std::int64_t kDayBytes = 2'400'000 * kFrameBytes;
constexpr std::int64_t kBlockBytes = std::int64_t{64} << 10;
constexpr std::int64_t kParts = 64;

/// Nothing is recorded and nothing is under review.
class IdleHost final : public DayListHost {
  public:
    bool isRecording() const override { return false; }
    double currentRecordingDurationSec() const override { return 0; }
    std::optional<fs::path> loadedFileURL() const override { return std::nullopt; }
    void loadRecording(const fs::path&, bool) override {}
    void unloadRecording() override {}
    void loadStartupRecording() override {}
    void loadMarkersForLoadedRecording() override {}
    void redrawSummaryBar() override {}
    void renderDateList() override {}
    void updateRow(const DailyRecording&) override {}
    std::size_t ask(const DayListWarning&) override { return 1; }
};

/// The bytes of the day's stream from `begin` on, as many as a block has.
std::string framesFrom(std::int64_t begin) {
    std::string block(static_cast<std::size_t>(kBlockBytes), 'x');
    const std::string header("\xFF\xF3\x38\xC4", 4);
    for (std::int64_t i = 0; i < kBlockBytes; ++i) {
        const auto inFrame = static_cast<std::size_t>((begin + i) % kFrameBytes);
        if (inFrame < header.size()) block[static_cast<std::size_t>(i)] = header[inFrame];
    }
    return block;
}

void makeDay(const fs::path& file) {
    std::ofstream out(file, std::ios::binary);
    for (std::int64_t part = 0; part <= kParts; ++part) {
        const std::int64_t begin = std::min(part * (kDayBytes / kParts), kDayBytes - kBlockBytes);
        const auto block = framesFrom(begin);
        out.seekp(begin);
        out.write(block.data(), kBlockBytes);
    }
}

void makeMarkers(const fs::path& file) {
    std::ofstream out(file, std::ios::binary);
    out << kMarkerLogHeader;
    for (int i = 0; i < kMarkersOfADay; ++i)
        out << markerRow("08:00:00", "custom", "A title, \"as it is\"", 180.5);
}

/// A station with a year of days in a folder of its own; made once and deleted at the end.
class Year {
  public:
    Year() : home_(fs::temp_directory_path() / "sonavault-bench-year") {
        fs::remove_all(home_);
        fs::create_directories(folder());
        const WallTime first{std::chrono::hours(24 * 20'000 + 12)};
        for (int i = 0; i < kDays; ++i) {
            const auto date = isoDateString(first + std::chrono::hours(24 * i));
            files_.push_back(folder() / ("Sonavault_" + date + ".mp3"));
            makeDay(files_.back());
            makeMarkers(folder() / ("Sonavault_" + date + ".csv"));
        }
    }
    ~Year() {
        std::error_code ignored;
        fs::remove_all(home_, ignored);
    }

    fs::path folder() const { return home_ / "Calderwave" / "Station" / "Logs" / "Audio"; }
    fs::path cache() const { return home_ / "cache"; }
    const fs::path& home() const { return home_; }

  private:
    fs::path home_;
    std::vector<fs::path> files_;
};

const Year& year() {
    static const Year made;
    return made;
}

bool emptyFileCache() {
    if (std::system("sync") != 0) return false;
    std::ofstream drop("/proc/sys/vm/drop_caches");
    return static_cast<bool>(drop << "3" << std::flush);
}

/// A launch's list. False when a row is wrong.
bool listYear() {
    NoLog log;
    IdleHost host;
    const SystemClock clock;
    AudioLengthCache lengths(year().cache());
    const StationFolder station(year().home(), Preferences(year().home() / "shared.conf"));
    DayList days(station, clock, log, lengths, host);
    days.reloadDailyRecordings();
    for (const auto& row : days.dailyRecordings())
        if (row.recorded != "24:00" || row.markerCount != kMarkersOfADay) return false;
    return days.dailyRecordings().size() == kDays;
}

void readEnds() {
    std::vector<char> block(static_cast<std::size_t>(kBlockBytes));
    for (const auto& entry : fs::directory_iterator(year().folder())) {
        if (entry.path().extension() != ".mp3") continue;
        std::ifstream in(entry.path(), std::ios::binary);
        in.read(block.data(), kBlockBytes);
        in.seekg(-kBlockBytes, std::ios::end);
        in.read(block.data(), kBlockBytes);
        benchmark::DoNotOptimize(block.data());
    }
}

enum class Lengths { unknown, known };

/// The list and the yardstick take turns, so that both meet the machine in the same mood.
void listAgainstReadingBothEnds(benchmark::State& state, Lengths lengths, bool cold) {
    if (!listYear()) return state.SkipWithError("a row is wrong");
    double list = 0;
    double ends = 0;
    while (state.KeepRunning()) {
        if (lengths == Lengths::unknown) fs::remove_all(year().cache());
        if (cold && !emptyFileCache())
            return state.SkipWithError("the file cache can't be emptied");
        bool isRight = false;
        const double took = secondsOf([&isRight] { isRight = listYear(); });
        if (!isRight) return state.SkipWithError("a row is wrong");
        state.SetIterationTime(took);
        list += took;
        if (cold) emptyFileCache();
        ends += secondsOf(readEnds);
    }
    state.counters["ends_ms"] = benchmark::Counter(ends * 1000, benchmark::Counter::kAvgIterations);
    state.counters["list_to_ends"] = list / ends;
}

}  // namespace

BENCHMARK_CAPTURE(listAgainstReadingBothEnds, cold_first_launch, Lengths::unknown, true)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);
BENCHMARK_CAPTURE(listAgainstReadingBothEnds, cold_later_launch, Lengths::known, true)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);
BENCHMARK_CAPTURE(listAgainstReadingBothEnds, warm_first_launch, Lengths::unknown, false)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(20);
BENCHMARK_CAPTURE(listAgainstReadingBothEnds, warm_later_launch, Lengths::known, false)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(20);

}  // namespace sonavault

BENCHMARK_MAIN();
