// The waveform that the built program stores beside a past day.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <csignal>

#include "system/Station.h"
#include "system/StoredPeaks.h"

namespace sonavault::testing {
namespace {

using namespace std::chrono_literals;

constexpr float kTolerance = 1e-4F;

struct Quality {
    const char* name;
    int level;
    double sampleRate;  ///< of the file, as the encoder chooses it
};

class PeaksOfAPastDay : public ::testing::TestWithParam<Quality> {
  protected:
    PeaksOfAPastDay() {
        station_.useLink();
        station_.chooseQuality(GetParam().level);
    }

    /// Records some seconds and makes them a day of the past.
    void recordPastDay() {
        station_.resumeOnLaunch();
        auto program = station_.start();
        auto automation = station_.startAutomation({"--signal", "noise", "--duration", "5.3"});
        ASSERT_TRUE(program->waitForLine("Sonavault recorder: stopped → ", 30s)) << program->text();
        program->signal(SIGKILL);
        program->waitForEnd(5s);
        for (const char* suffix : {"mp3", "json", "csv"})
            std::filesystem::rename(station_.dayFile(suffix), pastFile(suffix));
        // A waveform of today, should there be one, does not belong to the past day.
        std::filesystem::remove(station_.dayFile("peaks"));
    }

    std::filesystem::path pastFile(const std::string& suffix) const {
        return station_.audioFolder() / ("Sonavault_2026-01-05." + suffix);
    }

    Station station_;
};

TEST_P(PeaksOfAPastDay, are_what_another_decoder_hears_and_are_made_once) {
    recordPastDay();
    station_.choose("SonavaultAutoResumeOnLaunch", "false");
    auto program = station_.start();
    const auto cached = program->waitForLine("Sonavault: Peaks generated and cached (", 20s);
    ASSERT_TRUE(cached) << program->text();

    const auto heard = listenTo(pastFile("mp3"));
    ASSERT_EQ(heard.sampleRate, GetParam().sampleRate);
    const auto expected = peaksOf(heard);
    const auto stored = readStoredPeaks(pastFile("peaks"));
    EXPECT_EQ(stored.magic, expected.magic);
    EXPECT_EQ(stored.version, expected.version);
    EXPECT_EQ(stored.bucketSec, expected.bucketSec);
    EXPECT_NEAR(stored.totalDurationSec, expected.totalDurationSec, 1e-9);
    EXPECT_NEAR(stored.maxRMS, expected.maxRMS, kTolerance);
    EXPECT_EQ(stored.bytesBehind, 0U);
    ASSERT_EQ(stored.rms.size(), expected.rms.size());
    EXPECT_GT(stored.rms.size(), 12U);
    float most = 0;
    for (std::size_t i = 0; i < stored.rms.size(); ++i) {
        EXPECT_NEAR(stored.rms[i], expected.rms[i], kTolerance) << "bucket " << i;
        most = std::max(most, std::abs(stored.rms[i] - expected.rms[i]));
    }
    RecordProperty("largest_difference", std::to_string(most));
    EXPECT_GT(stored.rms[8], 0.01F) << "there is sound in it";
    EXPECT_EQ(number(cached->text, "cached ("), static_cast<double>(stored.rms.size()));

    const auto bytes = readFile(pastFile("peaks"));
    const auto written = std::filesystem::last_write_time(pastFile("peaks"));
    program->signal(SIGKILL);
    program->waitForEnd(5s);
    program = station_.start();
    EXPECT_TRUE(program->waitForLine("Sonavault: Loaded peaks from cache (", 20s))
        << program->text();
    EXPECT_EQ(std::filesystem::last_write_time(pastFile("peaks")), written);
    EXPECT_EQ(readFile(pastFile("peaks")), bytes);
}

INSTANTIATE_TEST_SUITE_P(Quality, PeaksOfAPastDay,
                         ::testing::Values(Quality{"8_kbps", 0, 8000}, Quality{"24_kbps", 2, 16000},
                                           Quality{"96_kbps", 4, 22050}),
                         [](const auto& quality) { return quality.param.name; });

}  // namespace
}  // namespace sonavault::testing
