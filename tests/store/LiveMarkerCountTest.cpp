// How many markers today's row shows, which is looked at every two seconds.

#include <fstream>

#include "DayListFixture.h"

namespace sonavault::testing {
namespace {

class LiveMarkerCount : public DayListFixture {
  protected:
    LiveMarkerCount() {
        haveAudio(kToday);
        haveMarkers(kToday, 2);
        host_.recording = true;
        days_.reloadDailyRecordings();
    }

    int refreshed() {
        days_.liveRefreshTodayRow();
        return days_.rowOf(kToday)->markerCount;
    }
};

TEST_F(LiveMarkerCount, follows_the_log_as_it_grows_vanishes_and_comes_back) {
    EXPECT_EQ(refreshed(), 2);
    EXPECT_EQ(refreshed(), 2);
    haveMarkers(kToday, 5);
    EXPECT_EQ(refreshed(), 5);
    std::filesystem::remove(logOf(kToday));
    EXPECT_EQ(refreshed(), 0);
    haveMarkers(kToday, 3);
    EXPECT_EQ(refreshed(), 3);
}

TEST_F(LiveMarkerCount, does_not_read_a_log_again_that_nothing_was_written_to) {
    EXPECT_EQ(refreshed(), 2);
    const auto written = std::filesystem::last_write_time(logOf(kToday));
    std::string other = readFile(logOf(kToday));
    other[other.size() - 3] = '\n';
    // In place, and as if it had never happened.
    std::fstream(logOf(kToday), std::ios::in | std::ios::out | std::ios::binary) << other;
    std::filesystem::last_write_time(logOf(kToday), written);
    EXPECT_EQ(refreshed(), 2) << "the file was not opened";
    std::filesystem::last_write_time(logOf(kToday), written + std::chrono::seconds(1));
    EXPECT_EQ(refreshed(), 3);
}

}  // namespace
}  // namespace sonavault::testing
