// How long a person waits who clicks on a full day with 10,000 markers, until it can be seen and
// played: all that the click does before it returns, with what lanes and the display then find the
// markers by, against `cat` of the same files. Cold means that the files were dropped from the
// system's file cache before.

#include <benchmark/benchmark.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <utility>

#include "Measuring.h"
#include "review/LaneMarkers.h"
#include "review/LoadedDay.h"
#include "review/NowPlaying.h"
#include "store/MarkerLogWriter.h"
#include "store/PeaksFile.h"

namespace sonavault {
namespace {

namespace fs = std::filesystem;

constexpr int kMarkers = 10'000;
constexpr std::int64_t kFrameBytes = 108;          // 24 kbps at 16,000 Hz
constexpr std::int64_t kFramesOfADay = 2'400'000;  // of 36 ms each
constexpr std::int64_t kFramesOfAPiece = 25;
constexpr std::size_t kBucketsOfADay = 345'600;

/// A finished day with all its sidecars in a folder of its own, deleted at the end. Its audio was
/// appended in small pieces, as a recording is; the system keeps such a file in smaller pages than
/// one written at once.
class Day {
  public:
    Day() {
        fs::remove_all(folder());
        fs::create_directories(folder());
        writeAudio();
        std::ofstream(sidecar("json")) << R"({"version": 1, "start_offset_sec": 0.5})";
        writeMarkers();
        if (!savePeaksFile({0.25, kSecondsInDay, std::vector<float>(kBucketsOfADay, 0.1F), 0.1F},
                           peaksURL(audio())))
            std::abort();
    }
    ~Day() {
        std::error_code ignored;
        fs::remove_all(home_, ignored);
    }
    Day(const Day&) = delete;
    Day& operator=(const Day&) = delete;

    const fs::path& home() const { return home_; }
    fs::path audio() const { return sidecar("mp3"); }

    double secondsOfCat() const { return secondsOfShell("cat " + quoted() + " > /dev/null"); }

    /// Takes the files out of the file cache; no other file is touched.
    void drop() const {
        secondsOfShell("sync " + quoted() + "; for file in " + quoted() +
                       "; do dd if=\"$file\" iflag=nocache count=0 status=none; done");
    }

  private:
    fs::path folder() const { return home_ / "Calderwave/Station/Logs/Audio"; }
    fs::path sidecar(const std::string& suffix) const {
        return folder() / ("Sonavault_2026-05-07." + suffix);
    }

    void writeAudio() const {
        std::string frame("\xFF\xF3\x38\xC4", 4);
        frame.resize(kFrameBytes, 'x');
        std::string piece;
        for (int i = 0; i < kFramesOfAPiece; ++i) piece += frame;
        std::ofstream out(audio(), std::ios::binary);
        for (std::int64_t i = 0; i < kFramesOfADay; i += kFramesOfAPiece)
            out.write(piece.data(), std::ssize(piece)).flush();
    }

    void writeMarkers() const {
        constexpr std::array kTypes{"vt_start", "custom",    "vt_end",
                                    "break",    "mic_start", "mic_end"};
        std::ofstream out(sidecar("csv"), std::ios::binary);
        out << kMarkerLogHeader;
        for (std::size_t i = 0; i < kMarkers; ++i)
            out << markerRow(formatTime(static_cast<double>(i) * kSecondsInDay / kMarkers),
                             kTypes.at(i % kTypes.size()),
                             i % 3 ? "An artist – a title" : "A title, \"live\" at the café", 6);
    }

    /// All of the day's files, for a shell.
    std::string quoted() const {
        std::string all;
        for (const auto* suffix : {"mp3", "json", "csv", "peaks"})
            all += " '" + sidecar(suffix).string() + "'";
        return all;
    }

    static double secondsOfShell(const std::string& command) {
        return secondsOf([&command] {
            if (std::system(("set -e; " + command).c_str()) != 0) std::abort();
        });
    }

    const fs::path home_ = fs::temp_directory_path() / "sonavault-bench-load";
};

/// Nothing is drawn, and nothing else goes on.
class NoWindow final : public LoadedDayHost, public PeaksHost, public DayListHost {
  public:
    void stopPlayback() override {}
    void updatePlayheadVisuals() override {}
    void renderDateList() override {}
    void renderTimeline() override {}
    void redrawSummaryBar() override {}
    void showEmptyState(const std::string&) override {}
    void showWarning(const std::string&, const std::string&) override {}
    std::optional<fs::path> lastRecordingURL() const override { return std::nullopt; }
    std::optional<fs::path> loadedFileURL() const override { return std::nullopt; }
    void setStatusBarText(const std::string&) override {}
    bool isRecording() const override { return false; }
    double currentRecordingDurationSec() const override { return 0; }
    void loadRecording(const fs::path&, bool) override {}
    void unloadRecording() override {}
    void loadStartupRecording() override {}
    void loadMarkersForLoadedRecording() override {}
    void updateRow(const DailyRecording&) override {}
    std::size_t ask(const DayListWarning&) override { return 0; }
};

/// Nothing is to be posted: the day's waveform has its sidecar.
class NoQueue final : public Executor {
  public:
    void post(std::function<void()>) override { std::abort(); }
};

/// A program with no window that reviews days.
class Review {
  public:
    explicit Review(const fs::path& home)
        : station_(home, Preferences(home / "shared.conf")), lengths_(home / "cache") {}

    LoadedDay& day() { return day_; }
    const std::optional<PeaksData>& peaks() const { return peaks_.peaksData(); }

  private:
    NoLog log_;
    NoWindow window_;
    NoQueue queue_;
    SystemClock clock_;
    StationFolder station_;
    AudioLengthCache lengths_;
    DayList days_{station_, clock_, log_, lengths_, window_};
    PeaksCache peaks_{window_, clock_, log_, queue_};
    LoadedDay day_{window_, days_, peaks_, clock_, log_};
};

enum class Cache { warm, cold };

void loadsADay(benchmark::State& state, Cache cache) {
    static const Day files;
    files.secondsOfCat();
    double load = 0;
    double markers = 0;
    double cat = 0;
    for ([[maybe_unused]] auto _ : state) {
        Review review(files.home());
        if (cache == Cache::cold) files.drop();
        const double took = secondsOf([&] {
            review.day().loadRecording(files.audio());
            benchmark::DoNotOptimize(LaneMarkers(review.day().allMarkers()));
            benchmark::DoNotOptimize(NowPlaying(review.day().allMarkers()));
        });
        if (review.day().allMarkers().size() != kMarkers ||
            review.day().loadedFile()->durationSec() != kSecondsInDay || !review.peaks())
            return state.SkipWithError("the day is not whole");
        state.SetIterationTime(took);
        load += took;
        markers += secondsOf([&] { review.day().loadMarkersForLoadedRecording(); });
        if (cache == Cache::cold) files.drop();
        cat += files.secondsOfCat();
    }
    state.counters["cat_ms"] = benchmark::Counter(cat * 1000, benchmark::Counter::kAvgIterations);
    state.counters["markers_alone_ms"] =
        benchmark::Counter(markers * 1000, benchmark::Counter::kAvgIterations);
    state.counters["load_to_cat"] = load / cat;
}
BENCHMARK_CAPTURE(loadsADay, warm, Cache::warm)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(20);
BENCHMARK_CAPTURE(loadsADay, cold, Cache::cold)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);

}  // namespace
}  // namespace sonavault

BENCHMARK_MAIN();
