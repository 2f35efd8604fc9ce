#include "store/StalePeaks.h"

#include <gtest/gtest.h>

#include "store/PeaksFile.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

class StalePeaks : public ::testing::Test {
  protected:
    fs::path file(const std::string& name) const {
        return home_ / "Calderwave/Station/Logs/Audio" / name;
    }

    /// A day whose audio last grew `grownFor` after its waveform was made.
    void haveDay(const std::string& audio, std::chrono::milliseconds grownFor) const {
        writeFile(file(audio), "audio");
        writeFile(peaksURL(file(audio)), "waveform");
        fs::last_write_time(file(audio), fs::last_write_time(peaksURL(file(audio))) + grownFor);
    }

    bool hasPeaks(const std::string& audio) const { return fs::exists(peaksURL(file(audio))); }

    TempFolder home_;
    const StationFolder station_{home_.path(), Preferences(home_ / "shared.conf")};
};

TEST_F(StalePeaks, are_those_of_a_day_that_went_on_growing) {
    haveDay("Sonavault_2026-05-06.mp3", 1h);
    haveDay("Sonavault_2026-05-07.mp3", -1h);
    haveDay("Sonavault_2026-05-08.MP3", 2001ms);
    removeStalePeaks(station_);
    EXPECT_FALSE(hasPeaks("Sonavault_2026-05-06.mp3"));
    EXPECT_TRUE(hasPeaks("Sonavault_2026-05-07.mp3"));
    EXPECT_FALSE(hasPeaks("Sonavault_2026-05-08.MP3"));
    EXPECT_TRUE(fs::exists(file("Sonavault_2026-05-06.mp3")));
}

TEST_F(StalePeaks, are_not_those_of_a_disk_that_tells_the_time_to_two_seconds) {
    haveDay("Sonavault_2026-05-07.mp3", 2s);
    removeStalePeaks(station_);
    EXPECT_TRUE(hasPeaks("Sonavault_2026-05-07.mp3"));
}

TEST_F(StalePeaks, are_only_those_of_days) {
    haveDay("Sonavault_2026-05-07_copy.mp3", 1h);
    haveDay("jingle.mp3", 1h);
    writeFile(file("Sonavault_2026-05-06.peaks"), "of no audio");
    removeStalePeaks(station_);
    EXPECT_TRUE(hasPeaks("Sonavault_2026-05-07_copy.mp3"));
    EXPECT_TRUE(hasPeaks("jingle.mp3"));
    EXPECT_TRUE(hasPeaks("Sonavault_2026-05-06.mp3"));
}

TEST_F(StalePeaks, are_none_without_a_station_folder) {
    removeStalePeaks(station_);
    EXPECT_FALSE(fs::exists(home_ / "Calderwave"));
}

}  // namespace
}  // namespace sonavault::testing
