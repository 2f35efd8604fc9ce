#include "store/PeaksCache.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <fstream>
#include <map>
#include <thread>

#include "support/ManualClock.h"
#include "support/ManualQueue.h"
#include "support/NoThreads.h"
#include "support/RecordedLog.h"
#include "support/SyntheticMp3.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

class Desk final : public PeaksHost {
  public:
    std::optional<std::filesystem::path> lastRecordingURL() const override { return recorded; }
    std::optional<std::filesystem::path> loadedFileURL() const override { return loaded; }
    void setStatusBarText(const std::string& text) override { status = text; }
    void redrawSummaryBar() override { ++redraws; }

    std::optional<std::filesystem::path> recorded;
    std::optional<std::filesystem::path> loaded;
    std::string status = "untouched";
    int redraws = 0;
};

/// Peaks that come when the test says so. Shared with the jobs.
class HeldGenerator {
  public:
    PeaksResult generate(const std::filesystem::path& audio, const std::stop_token& stop) {
        std::unique_lock lock(mutex_);
        begun_.push_back(audio);
        changed_.notify_all();
        changed_.wait(lock, [&] { return results_.contains(audio) || stop.stop_requested(); });
        if (!results_.contains(audio))
            return PeaksResult::failure({PeaksError::Code::passedOn, "Stopped"});
        return results_.at(audio);
    }

    void release(const std::filesystem::path& audio, PeaksResult result) {
        const std::scoped_lock lock(mutex_);
        results_.insert_or_assign(audio, std::move(result));
        changed_.notify_all();
    }

    /// Jobs that come now wait again.
    void forget() {
        const std::scoped_lock lock(mutex_);
        results_.clear();
    }

    /// Waits until so many jobs came here.
    void awaitBegun(std::size_t count) {
        std::unique_lock lock(mutex_);
        ASSERT_TRUE(changed_.wait_for(lock, std::chrono::seconds(30),
                                      [&] { return begun_.size() >= count; }));
    }

    std::vector<std::filesystem::path> begun() {
        const std::scoped_lock lock(mutex_);
        return begun_;
    }

    /// So that jobs which wait look whether they were asked to stop.
    void wake() {
        const std::scoped_lock lock(mutex_);
        changed_.notify_all();
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::filesystem::path> begun_;
    std::map<std::filesystem::path, PeaksResult> results_;
};

PeaksData someBuckets(std::size_t count) {
    return {0.25, 0.25 * static_cast<double>(count), std::vector<float>(count, 0.5F), 0.5F};
}

class PeaksCacheTest : public ::testing::Test {
  protected:
    PeaksCacheTest() {
        writeFile(day, SyntheticMp3().frames(100).bytes());
        writeFile(otherDay, SyntheticMp3().frames(200).bytes());
    }

    std::unique_ptr<PeaksCache> makeCache() {
        return std::make_unique<PeaksCache>(
            desk, clock, log, queue,
            [held = held](const std::filesystem::path& audio, double, const std::stop_token& stop) {
                // A stop must be seen though nobody releases the result.
                const std::stop_callback waking(stop, [held] { held->wake(); });
                return held->generate(audio, stop);
            });
    }

    void growDay() const {
        std::ofstream(day, std::ios::app | std::ios::binary) << SyntheticMp3().frames(1).bytes();
    }

    /// Runs what jobs post until `done` holds.
    template <class Condition>
    ::testing::AssertionResult eventually(Condition done) {
        const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (!done()) {
            if (std::chrono::steady_clock::now() > until) return ::testing::AssertionFailure();
            queue.runAll();
            std::this_thread::yield();
        }
        return ::testing::AssertionSuccess();
    }

    TempFolder folder;
    std::filesystem::path day = folder / "Sonavault_2026-05-08.mp3";
    std::filesystem::path otherDay = folder / "Sonavault_2026-05-07.mp3";
    std::filesystem::path sidecar = folder / "Sonavault_2026-05-08.peaks";
    Desk desk;
    ManualClock clock{WallTime{} + std::chrono::hours(500'000)};
    RecordedLog log;
    ManualQueue queue;
    std::shared_ptr<HeldGenerator> held = std::make_shared<HeldGenerator>();
    std::unique_ptr<PeaksCache> cache = makeCache();
};

TEST_F(PeaksCacheTest, begins_with_nothing) {
    EXPECT_FALSE(cache->peaksData());
    EXPECT_FALSE(cache->isGeneratingPeaks());
    EXPECT_EQ(cache->lastLivePeakRepaint(), 0);
}

TEST_F(PeaksCacheTest, shows_a_finished_days_sidecar_at_once) {
    ASSERT_TRUE(savePeaksFile(someBuckets(7), sidecar));
    cache->loadOrGeneratePeaks(day);
    ASSERT_TRUE(cache->peaksData());
    EXPECT_EQ(cache->peaksData()->rms.size(), 7U);
    EXPECT_FALSE(cache->isGeneratingPeaks());
    EXPECT_EQ(log.lines(),
              std::vector<std::string>{"Sonavault: Loaded peaks from cache (7 buckets)"});
    EXPECT_EQ(desk.redraws, 1);
    EXPECT_EQ(desk.status, "untouched");
    EXPECT_TRUE(held->begun().empty());
}

TEST_F(PeaksCacheTest, has_a_days_peaks_made_and_kept_when_it_has_no_sidecar) {
    cache->loadOrGeneratePeaks(day);
    EXPECT_TRUE(cache->isGeneratingPeaks());
    EXPECT_EQ(desk.status, "Preparing waveform…");
    EXPECT_FALSE(cache->peaksData());
    EXPECT_EQ(desk.redraws, 0);

    held->release(day, someBuckets(9));
    ASSERT_TRUE(eventually([&] { return !cache->isGeneratingPeaks(); }));
    ASSERT_TRUE(cache->peaksData());
    EXPECT_EQ(cache->peaksData()->rms.size(), 9U);
    EXPECT_EQ(desk.status, "");
    EXPECT_EQ(desk.redraws, 1);
    EXPECT_EQ(log.lines(),
              std::vector<std::string>{"Sonavault: Peaks generated and cached (9 buckets)"});
    EXPECT_EQ(loadPeaksFile(sidecar).value().rms.size(), 9U);
}

TEST_F(PeaksCacheTest, makes_a_real_days_peaks) {
    PeaksCache real(desk, clock, log, queue);
    real.loadOrGeneratePeaks(day);
    ASSERT_TRUE(eventually([&] { return !real.isGeneratingPeaks(); }));
    ASSERT_TRUE(real.peaksData());
    EXPECT_EQ(real.peaksData()->rms.size(), 15U);  // 57,600 frames at 16,000 Hz
    EXPECT_TRUE(std::filesystem::exists(sidecar));
}

TEST_F(PeaksCacheTest, makes_anew_what_an_older_version_kept_and_replaces_it) {
    std::string bytes = encodePeaks(someBuckets(3));
    bytes[4] = '\1';
    writeFile(sidecar, bytes);
    cache->loadOrGeneratePeaks(day);
    EXPECT_TRUE(std::filesystem::exists(sidecar));
    EXPECT_TRUE(log.lines().empty());
    held->release(day, someBuckets(5));
    ASSERT_TRUE(eventually([&] { return !cache->isGeneratingPeaks(); }));
    EXPECT_EQ(loadPeaksFile(sidecar).value().rms.size(), 5U);
}

TEST_F(PeaksCacheTest, uses_the_peaks_though_they_can_not_be_kept) {
    std::filesystem::create_directories(sidecar / "in the way");
    cache->loadOrGeneratePeaks(day);
    held->release(day, someBuckets(5));
    ASSERT_TRUE(eventually([&] { return !cache->isGeneratingPeaks(); }));
    EXPECT_EQ(cache->peaksData()->rms.size(), 5U);
    EXPECT_TRUE(log.has("Sonavault: Peaks generated and cached (5 buckets)"));
}

TEST_F(PeaksCacheTest, says_that_it_failed_and_keeps_what_it_had) {
    desk.recorded = desk.loaded = day;
    cache->appendLivePeak(0.5F, 0.25);
    const int redraws = desk.redraws;
    cache->loadOrGeneratePeaks(day);
    held->release(day, PeaksResult::failure({PeaksError::Code::passedOn, "no sound"}));
    ASSERT_TRUE(eventually([&] { return !cache->isGeneratingPeaks(); }));
    EXPECT_EQ(desk.status, "Waveform generation failed.");
    EXPECT_EQ(log.lines(),
              std::vector<std::string>{"Sonavault: Peaks generation failed: no sound"});
    ASSERT_TRUE(cache->peaksData());
    EXPECT_EQ(cache->peaksData()->rms.size(), 1U);
    EXPECT_EQ(desk.redraws, redraws);
    EXPECT_FALSE(std::filesystem::exists(sidecar));
}

TEST_F(PeaksCacheTest, removes_the_sidecar_of_the_day_being_recorded_and_makes_it_anew) {
    ASSERT_TRUE(savePeaksFile(someBuckets(7), sidecar));
    desk.recorded = day;
    cache->loadOrGeneratePeaks(day);
    EXPECT_FALSE(std::filesystem::exists(sidecar));
    EXPECT_FALSE(cache->peaksData());
    EXPECT_TRUE(cache->isGeneratingPeaks());
    held->release(day, someBuckets(8));
    ASSERT_TRUE(eventually([&] { return !cache->isGeneratingPeaks(); }));
    EXPECT_TRUE(std::filesystem::exists(sidecar));

    // Each play of that file does it again.
    held->forget();
    cache->loadOrGeneratePeaks(day);
    EXPECT_FALSE(std::filesystem::exists(sidecar));
    EXPECT_TRUE(cache->isGeneratingPeaks());
    held->release(day, someBuckets(8));
    ASSERT_TRUE(eventually([&] { return !cache->isGeneratingPeaks(); }));
    EXPECT_EQ(held->begun().size(), 2U);
}

TEST_F(PeaksCacheTest, removes_the_live_sidecar_also_while_a_job_runs) {
    desk.recorded = day;
    cache->loadOrGeneratePeaks(day);
    ASSERT_TRUE(savePeaksFile(someBuckets(7), sidecar));
    cache->loadOrGeneratePeaks(day);
    EXPECT_FALSE(std::filesystem::exists(sidecar));
}

TEST_F(PeaksCacheTest, keeps_nothing_beside_a_day_that_was_deleted_meanwhile) {
    cache->loadOrGeneratePeaks(day);
    held->awaitBegun(1);
    std::filesystem::remove(day);
    held->release(day, someBuckets(3));
    ASSERT_TRUE(eventually([&] { return !cache->isGeneratingPeaks(); }));
    EXPECT_FALSE(std::filesystem::exists(peaksURL(day)));
}

TEST_F(PeaksCacheTest, reports_a_job_that_had_no_memory_like_any_failure) {
    PeaksCache starved(desk, clock, log, queue,
                       [](const std::filesystem::path&, double,
                          const std::stop_token&) -> PeaksResult { throw std::bad_alloc(); });
    starved.loadOrGeneratePeaks(day);
    ASSERT_TRUE(eventually([&] { return !starved.isGeneratingPeaks(); }));
    EXPECT_EQ(desk.status, "Waveform generation failed.");
}

TEST_F(PeaksCacheTest, reports_a_job_for_which_no_thread_is_to_be_had_like_any_failure) {
    {
        const NoThreads none;
        cache->loadOrGeneratePeaks(day);
    }
    EXPECT_TRUE(cache->isGeneratingPeaks()) << "told later, as ever";
    queue.runAll();
    EXPECT_FALSE(cache->isGeneratingPeaks());
    EXPECT_EQ(desk.status, "Waveform generation failed.");
    EXPECT_EQ(log.lines(),
              std::vector<std::string>{
                  "Sonavault: Peaks generation failed: Resource temporarily unavailable"});

    held->release(day, someBuckets(3));
    cache->loadOrGeneratePeaks(day);
    EXPECT_TRUE(eventually([&] { return cache->peaksData().has_value(); }));
}

TEST_F(PeaksCacheTest, keeps_no_waveform_of_a_day_that_grew_while_it_was_measured) {
    cache->loadOrGeneratePeaks(day);
    held->awaitBegun(1);
    growDay();
    held->release(day, someBuckets(3));
    ASSERT_TRUE(eventually([&] { return !cache->isGeneratingPeaks(); }));
    EXPECT_EQ(cache->peaksData()->rms.size(), 3U) << "it is shown all the same";
    EXPECT_FALSE(std::filesystem::exists(sidecar));
}

TEST_F(PeaksCacheTest, keeps_nothing_behind_the_back_of_a_recording_that_stopped_meanwhile) {
    desk.recorded = desk.loaded = day;
    cache->loadOrGeneratePeaks(day);
    held->awaitBegun(1);
    growDay();                         // the encoder's last frames,
    std::filesystem::remove(sidecar);  // and what a stop removes
    held->release(day, someBuckets(3));
    ASSERT_TRUE(eventually([&] { return !cache->isGeneratingPeaks(); }));
    EXPECT_FALSE(std::filesystem::exists(sidecar));
}

TEST_F(PeaksCacheTest, measures_the_day_that_is_shown_anew_when_a_recording_goes_on_in_it) {
    ASSERT_TRUE(savePeaksFile(someBuckets(2), sidecar));
    desk.loaded = day;
    cache->loadOrGeneratePeaks(day);
    ASSERT_EQ(cache->peaksData()->rms.size(), 2U);
    desk.status = "Recording";
    desk.recorded = day;
    cache->recordingBegan();
    held->release(day, someBuckets(9));
    ASSERT_TRUE(eventually([&] { return !cache->isGeneratingPeaks(); }));
    EXPECT_EQ(cache->peaksData()->rms.size(), 9U);
    EXPECT_EQ(desk.status, "Recording") << "nobody asked for it";
}

TEST_F(PeaksCacheTest, leaves_what_is_shown_alone_when_a_recording_begins_in_another_day) {
    desk.loaded = otherDay;
    cache->recordingBegan();
    desk.recorded = day;
    cache->recordingBegan();
    EXPECT_FALSE(cache->isGeneratingPeaks());
}

TEST_F(PeaksCacheTest, measures_again_what_was_under_way_when_the_recording_began) {
    desk.loaded = day;
    cache->loadOrGeneratePeaks(day);
    held->awaitBegun(1);
    desk.recorded = day;
    cache->recordingBegan();
    held->release(day, someBuckets(3));
    ASSERT_TRUE(eventually([&] { return held->begun().size() == 2; }));
    ASSERT_TRUE(eventually([&] { return !cache->isGeneratingPeaks(); }));
    EXPECT_EQ(held->begun(), (std::vector<std::filesystem::path>{day, day}));
}

TEST_F(PeaksCacheTest, makes_up_once_for_the_live_values_that_came_while_it_measured) {
    desk.loaded = desk.recorded = day;
    const auto measureWhile = [&](int liveValues) {
        const auto before = held->begun().size();
        cache->loadOrGeneratePeaks(day);
        held->awaitBegun(before + 1);
        for (int i = 0; i < liveValues; ++i) cache->appendLivePeak(0.5F, 0.25);
        held->release(day, someBuckets(3));
        EXPECT_TRUE(eventually([&] { return !cache->isGeneratingPeaks(); }));
        held->forget();
        return held->begun().size() - before;
    };
    EXPECT_EQ(measureWhile(4), 1U);
    EXPECT_EQ(measureWhile(5), 2U);
}

TEST_F(PeaksCacheTest, has_live_values_drawn_on_when_the_clock_was_set_back) {
    desk.loaded = desk.recorded = day;
    cache->appendLivePeak(0.5F, 0.25);
    const int before = desk.redraws;
    clock.advance(-3600);
    cache->appendLivePeak(0.5F, 0.25);
    EXPECT_EQ(desk.redraws, before + 1);
}

TEST_F(PeaksCacheTest, starts_one_job_for_two_calls_without_a_load_between) {
    cache->loadOrGeneratePeaks(day);
    cache->loadOrGeneratePeaks(day);
    cache->loadOrGeneratePeaks(otherDay);
    held->awaitBegun(1);
    held->release(day, someBuckets(5));
    ASSERT_TRUE(eventually([&] { return !cache->isGeneratingPeaks(); }));
    EXPECT_EQ(held->begun(), std::vector<std::filesystem::path>{day});
}

TEST_F(PeaksCacheTest, takes_a_sidecar_though_a_job_runs) {
    cache->loadOrGeneratePeaks(otherDay);
    ASSERT_TRUE(savePeaksFile(someBuckets(7), sidecar));
    cache->loadOrGeneratePeaks(day);
    EXPECT_EQ(cache->peaksData()->rms.size(), 7U);
    EXPECT_TRUE(cache->isGeneratingPeaks());
}

TEST_F(PeaksCacheTest, lets_a_newly_loaded_day_start_its_own_job_beside_the_old_one) {
    cache->loadOrGeneratePeaks(otherDay);
    cache->clear();
    EXPECT_FALSE(cache->isGeneratingPeaks());
    EXPECT_EQ(desk.redraws, 1);
    cache->loadOrGeneratePeaks(day);
    EXPECT_TRUE(cache->isGeneratingPeaks());
    held->awaitBegun(2);

    held->release(day, someBuckets(5));
    ASSERT_TRUE(eventually([&] { return cache->peaksData().has_value(); }));
    EXPECT_EQ(cache->peaksData()->rms.size(), 5U);
    // The later finisher's peaks stay, whatever day is shown; each day has its own sidecar.
    held->release(otherDay, someBuckets(6));
    ASSERT_TRUE(eventually([&] { return cache->peaksData()->rms.size() == 6; }));
    EXPECT_EQ(loadPeaksFile(sidecar).value().rms.size(), 5U);
    EXPECT_EQ(loadPeaksFile(peaksURL(otherDay)).value().rms.size(), 6U);
}

TEST_F(PeaksCacheTest, is_told_free_by_the_old_job_while_the_new_one_still_runs) {
    cache->loadOrGeneratePeaks(otherDay);
    cache->clear();
    cache->loadOrGeneratePeaks(day);
    held->awaitBegun(2);
    held->release(otherDay, someBuckets(6));
    ASSERT_TRUE(eventually([&] { return cache->peaksData().has_value(); }));
    EXPECT_FALSE(cache->isGeneratingPeaks());
    EXPECT_EQ(desk.status, "");
}

TEST_F(PeaksCacheTest, clears_what_it_shows) {
    desk.recorded = desk.loaded = day;
    cache->appendLivePeak(0.5F, 0.25);
    cache->clear();
    EXPECT_FALSE(cache->peaksData());
    EXPECT_EQ(desk.redraws, 2);
}

TEST_F(PeaksCacheTest, ends_with_a_job_under_way_and_says_nothing_more) {
    cache->loadOrGeneratePeaks(day);
    held->awaitBegun(1);
    const auto begun = std::chrono::steady_clock::now();
    cache.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::milliseconds(900));
    EXPECT_EQ(queue.runAll(), 0);
    EXPECT_FALSE(std::filesystem::exists(sidecar));
    EXPECT_EQ(desk.status, "Preparing waveform…");
}

TEST_F(PeaksCacheTest, ends_in_the_midst_of_a_long_day) {
    SyntheticMp3 mp3;
    writeFile(day, mp3.frames(400'000).bytes());
    auto real = std::make_unique<PeaksCache>(desk, clock, log, queue);
    real->loadOrGeneratePeaks(day);
    real.reset();
    EXPECT_EQ(queue.runAll(), 0);
    EXPECT_FALSE(std::filesystem::exists(sidecar));
}

TEST_F(PeaksCacheTest, ends_between_a_jobs_end_and_its_delivery) {
    cache->loadOrGeneratePeaks(day);
    held->release(day, someBuckets(5));
    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!std::filesystem::exists(sidecar) && std::chrono::steady_clock::now() < until)
        std::this_thread::yield();
    cache.reset();
    queue.runAll();
    EXPECT_TRUE(log.lines().empty());
    EXPECT_EQ(desk.status, "Preparing waveform…");
}

TEST_F(PeaksCacheTest, takes_live_values_of_the_day_that_is_shown) {
    desk.recorded = desk.loaded = day;
    cache->appendLivePeak(0.5F, 0.25);
    ASSERT_TRUE(cache->peaksData());
    EXPECT_EQ(cache->peaksData()->bucketSec, 0.25);
    EXPECT_EQ(cache->peaksData()->totalDurationSec, 0.25);
    EXPECT_EQ(cache->peaksData()->rms, std::vector<float>{0.5F});
    EXPECT_EQ(cache->peaksData()->maxRMS, 0.5F);
    cache->appendLivePeak(0.75F, 0.25);
    cache->appendLivePeak(0.1F, 0.25);
    EXPECT_EQ(cache->peaksData()->rms, (std::vector<float>{0.5F, 0.75F, 0.1F}));
    EXPECT_EQ(cache->peaksData()->maxRMS, 0.75F);
    EXPECT_EQ(cache->peaksData()->totalDurationSec, 0.75);
    EXPECT_FALSE(std::filesystem::exists(sidecar));
}

TEST_F(PeaksCacheTest, takes_a_silent_first_live_value_as_the_largest_so_far) {
    desk.recorded = desk.loaded = day;
    cache->appendLivePeak(0, 0.25);
    EXPECT_EQ(cache->peaksData()->maxRMS, 0);
    cache->appendLivePeak(0.01F, 0.25);
    EXPECT_EQ(cache->peaksData()->maxRMS, 0.01F);
}

TEST_F(PeaksCacheTest, goes_on_with_live_values_at_the_length_of_the_buckets_it_has) {
    ASSERT_TRUE(savePeaksFile({0.5, 1.0, {0.1F, 0.2F}, 0.2F}, sidecar));
    cache->loadOrGeneratePeaks(day);
    desk.recorded = desk.loaded = day;
    cache->appendLivePeak(0.05F, 0.25);
    EXPECT_EQ(cache->peaksData()->bucketSec, 0.5);
    EXPECT_EQ(cache->peaksData()->totalDurationSec, 1.5);
    EXPECT_EQ(cache->peaksData()->maxRMS, 0.2F);
}

TEST_F(PeaksCacheTest, takes_no_live_value_while_another_day_or_none_is_shown) {
    cache->appendLivePeak(0.5F, 0.25);
    desk.recorded = day;
    cache->appendLivePeak(0.5F, 0.25);
    desk.loaded = otherDay;
    cache->appendLivePeak(0.5F, 0.25);
    desk.recorded.reset();
    cache->appendLivePeak(0.5F, 0.25);
    EXPECT_FALSE(cache->peaksData());
    EXPECT_EQ(desk.redraws, 0);
}

TEST_F(PeaksCacheTest, has_live_values_drawn_no_more_than_twice_a_second) {
    desk.recorded = desk.loaded = day;
    cache->appendLivePeak(0.5F, 0.25);
    EXPECT_EQ(desk.redraws, 1);
    EXPECT_EQ(cache->lastLivePeakRepaint(), secondsSince1970(clock.now()));
    clock.advance(0.5);
    cache->appendLivePeak(0.5F, 0.25);
    EXPECT_EQ(desk.redraws, 1);
    clock.advance(0.01);
    cache->appendLivePeak(0.5F, 0.25);
    EXPECT_EQ(desk.redraws, 2);
}

}  // namespace
}  // namespace sonavault::testing
