#include "store/DayList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "DayListFixture.h"

namespace sonavault::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DayListScan : public DayListFixture {};

TEST_F(DayListScan, is_empty_and_keeps_its_placeholder_without_a_station_folder) {
    clock_.advance(24 * 3600);
    fs::remove_all(stationPath_);
    writeFile(home_.path() / "Documents" / "Calderwave_Recordings" / "Sonavault_2026-05-08.mp3",
              dayRun(100, {24, 16000}));
    days_.reloadDailyRecordings();
    EXPECT_THAT(days_.dailyRecordings(), IsEmpty());
    EXPECT_EQ(days_.selectedDate(), "2026-05-08");
}

TEST_F(DayListScan, falls_through_to_the_home_folders_station_when_the_chosen_one_is_missing) {
    Preferences(shared_).setText("StationFolderPath", (home_ / "missing").string());
    haveAudio(kYesterday);
    days_.reloadDailyRecordings();
    EXPECT_THAT(dates(), ElementsAre(kYesterday));
}

TEST_F(DayListScan, is_empty_when_the_folder_cannot_be_listed) {
    fs::remove_all(stationPath_);
    writeFile(stationPath_, "the station is a file");
    days_.reloadDailyRecordings();
    EXPECT_THAT(days_.dailyRecordings(), IsEmpty());
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(DayListScan, empties_when_the_folder_disappears_and_keeps_what_was_selected) {
    haveAudio(kYesterday);
    days_.reloadDailyRecordings();
    fs::remove_all(stationPath_);
    days_.reloadDailyRecordings();
    EXPECT_THAT(days_.dailyRecordings(), IsEmpty());
    EXPECT_EQ(days_.selectedDate(), kYesterday);
}

TEST_F(DayListScan, gives_each_day_its_row) {
    haveAudio(kYesterday, 3725);
    haveMarkers(kYesterday, 3);
    days_.reloadDailyRecordings();
    ASSERT_EQ(days_.dailyRecordings().size(), 1U);
    const auto& row = days_.dailyRecordings().front();
    EXPECT_EQ(row.date, "2026-05-07");
    EXPECT_EQ(row.dayOfWeek, "Thu");
    EXPECT_FALSE(row.live);
    EXPECT_EQ(row.recorded, "01:02");
    EXPECT_EQ(row.markerCount, 3);
    EXPECT_EQ(row.warning, std::nullopt);
    EXPECT_EQ(row.expiresInDays, std::nullopt);
    EXPECT_EQ(row.audioURL, audioOf(kYesterday));
}

TEST_F(DayListScan, sorts_the_newest_first_and_selects_it) {
    for (const auto* date : {"2026-04-30", "2025-12-31", "2026-05-07"}) haveAudio(date);
    days_.reloadDailyRecordings();
    EXPECT_THAT(dates(), ElementsAre("2026-05-07", "2026-04-30", "2025-12-31"));
    EXPECT_EQ(days_.selectedDate(), "2026-05-07");
}

TEST_F(DayListScan, selects_today_even_below_a_day_that_is_still_to_come) {
    haveAudio(kToday);
    haveAudio("2027-01-01");
    days_.reloadDailyRecordings();
    EXPECT_EQ(days_.selectedDate(), kToday);
    EXPECT_TRUE(days_.rowOf(kToday)->live);
    EXPECT_FALSE(days_.rowOf("2027-01-01")->live);
}

TEST_F(DayListScan, selects_anew_at_each_reload) {
    haveAudio(kYesterday);
    haveAudio("2026-05-01");
    days_.setSelectedDate("2026-05-01");
    EXPECT_EQ(days_.selectedDate(), "2026-05-01");
    days_.reloadDailyRecordings();
    EXPECT_EQ(days_.selectedDate(), kYesterday);
}

TEST_F(DayListScan, lists_a_suffix_in_capitals_but_no_other_name_and_no_copy) {
    writeFile(folder_ / "Sonavault_2026-05-08.MP3", "x");
    writeFile(folder_ / "sonavault_2026-05-07.mp3", "x");
    writeFile(folder_ / "Sonavault_2026-05-06_copy.mp3", "x");
    writeFile(folder_ / "Sonavault_2026-05-05.csv", "x");
    days_.reloadDailyRecordings();
    EXPECT_THAT(dates(), ElementsAre("2026-05-08"));
}

TEST_F(DayListScan, lists_a_date_that_no_calendar_has_without_a_day_of_the_week) {
    writeFile(folder_ / "Sonavault_2026-13-45.mp3", "x");
    days_.reloadDailyRecordings();
    EXPECT_EQ(days_.rowOf("2026-13-45")->dayOfWeek, "");
}

TEST_F(DayListScan, lists_an_empty_or_broken_file_and_a_folder_of_that_name_without_a_length) {
    writeFile(audioOf("2026-05-01"), "");
    writeFile(audioOf("2026-05-02"), "no audio at all");
    fs::create_directories(audioOf("2026-05-03"));
    fs::create_symlink("nowhere", audioOf("2026-05-04"));
    days_.reloadDailyRecordings();
    ASSERT_EQ(days_.dailyRecordings().size(), 4U);
    for (const auto& row : days_.dailyRecordings()) EXPECT_EQ(row.recorded, "") << row.date;
}

TEST_F(DayListScan, gives_a_day_with_two_files_one_row_of_the_file_that_still_grows) {
    haveAudio(kYesterday);
    writeFile(folder_ / "Sonavault_2026-05-07.m4a", "legacy");
    EXPECT_EQ(days_.scanOneRecordingsFolder(folder_).size(), 2U);
    EXPECT_EQ(days_.scanRecordingsFolder().size(), 1U);
    EXPECT_EQ(days_.scanRecordingsFolder().front().audioURL, audioOf(kYesterday));
}

TEST_F(DayListScan, counts_the_rows_of_each_log) {
    for (const auto* date : {"2026-05-01", "2026-05-02", "2026-05-03", "2026-05-04"})
        haveAudio(date);
    writeFile(logOf("2026-05-01"), kMarkerLogHeader);
    writeFile(logOf("2026-05-02"),
              std::string(kMarkerLogHeader) + "08:00:00,hour,,0\n09:00:00,hour,,0\n\n");
    writeFile(logOf("2026-05-03"), std::string(kMarkerLogHeader) + "08:00:00,hour,\xFF,0\n");
    days_.reloadDailyRecordings();
    EXPECT_EQ(days_.rowOf("2026-05-01")->markerCount, 0);
    EXPECT_EQ(days_.rowOf("2026-05-02")->markerCount, 2);
    EXPECT_EQ(days_.rowOf("2026-05-03")->markerCount, 0);
    EXPECT_EQ(days_.rowOf("2026-05-04")->markerCount, 0);
}

TEST_F(DayListScan, shows_23_hours_as_a_full_day) {
    haveAudio(kYesterday, 82800);
    haveAudio("2026-05-06", 82799);
    days_.reloadDailyRecordings();
    EXPECT_EQ(days_.rowOf(kYesterday)->recorded, "24:00");
    EXPECT_EQ(days_.rowOf("2026-05-06")->recorded, "22:59");
}

TEST_F(DayListScan, remembers_the_length_of_a_file_that_has_not_changed) {
    haveAudio(kYesterday, 120.024);
    days_.reloadDailyRecordings();
    // The same length, stamped as it was: a file that nobody can tell from the one before.
    const auto time = fs::last_write_time(audioOf(kYesterday));
    std::ofstream(audioOf(kYesterday), std::ios::in | std::ios::binary)
        << std::string(fs::file_size(audioOf(kYesterday)), 'x');
    fs::last_write_time(audioOf(kYesterday), time);
    AudioLengthCache nextLaunch(home_ / "cache");
    DayList days(station_, clock_, log_, nextLaunch, host_);
    EXPECT_EQ(days.recordingDurationLabel(audioOf(kYesterday)), "00:02");
    fs::last_write_time(audioOf(kYesterday), time + std::chrono::nanoseconds(1));
    EXPECT_EQ(days.recordingDurationLabel(audioOf(kYesterday)), "");
}

TEST_F(DayListScan, forgets_the_lengths_of_days_that_are_gone) {
    haveAudio(kYesterday);
    haveAudio(kToday);
    days_.reloadDailyRecordings();
    fs::remove(audioOf(kYesterday));
    days_.reloadDailyRecordings();
    const auto kept = readFile(lengths_.file());
    EXPECT_EQ(kept.find(kYesterday), std::string::npos);
    EXPECT_NE(kept.find(kToday), std::string::npos);
}

class DayListLabels : public DayListFixture {};

TEST_F(DayListLabels, come_from_the_recorder_for_the_day_that_is_recorded) {
    haveAudio(kToday);
    days_.reloadDailyRecordings();
    host_.recording = true;
    host_.recordedSec = 3725.9;
    EXPECT_EQ(days_.liveDurationLabel(kToday), "01:02");
}

TEST_F(DayListLabels, show_23_hours_as_23_while_they_are_recorded) {
    host_.recording = true;
    host_.recordedSec = 82800;
    EXPECT_EQ(days_.liveDurationLabel(kToday), "23:00");
}

TEST_F(DayListLabels, come_from_the_file_for_any_other_day_or_when_nothing_is_recorded) {
    haveAudio(kToday, 60.012);
    haveAudio(kYesterday, 120.024);
    days_.reloadDailyRecordings();
    host_.recordedSec = 3600;
    EXPECT_EQ(days_.liveDurationLabel(kToday), "00:01");
    host_.recording = true;
    EXPECT_EQ(days_.liveDurationLabel(kYesterday), "00:02");
    EXPECT_EQ(days_.liveDurationLabel(kToday), "01:00");
}

TEST_F(DayListLabels, are_zero_for_a_date_without_a_row) {
    EXPECT_EQ(days_.liveDurationLabel(kToday), "00:00");
    EXPECT_EQ(days_.liveDurationLabel("2020-01-01"), "00:00");
}

class DayListLiveRow : public DayListFixture {
  protected:
    /// Today is listed, with a minute and two markers, and recorded.
    void recordToday() {
        haveAudio(kToday, 60.012);
        haveMarkers(kToday, 2);
        days_.reloadDailyRecordings();
        host_.recording = true;
        host_.recordedSec = 60.1;
    }
};

TEST_F(DayListLiveRow, is_left_alone_while_nothing_changes) {
    recordToday();
    host_.loaded = audioOf(kToday);
    days_.liveRefreshTodayRow();
    EXPECT_THAT(host_.heard(), IsEmpty());
}

TEST_F(DayListLiveRow, takes_the_new_length_and_redraws_the_summary_of_the_day_under_review) {
    recordToday();
    host_.loaded = audioOf(kToday);
    host_.recordedSec = 120;
    days_.liveRefreshTodayRow();
    EXPECT_THAT(host_.heard(), ElementsAre("row 2026-05-08 00:02 2", "redraw summary"));
    EXPECT_EQ(days_.rowOf(kToday)->recorded, "00:02");
    EXPECT_EQ(days_.rowOf(kToday)->dayOfWeek, "Fri");
    EXPECT_TRUE(days_.rowOf(kToday)->live);
}

TEST_F(DayListLiveRow, reads_the_markers_of_the_day_under_review_again_when_their_number_changes) {
    recordToday();
    host_.loaded = audioOf(kToday);
    haveMarkers(kToday, 5);
    days_.liveRefreshTodayRow();
    EXPECT_THAT(host_.heard(),
                ElementsAre("row 2026-05-08 00:01 5", "load markers", "redraw summary"));
    EXPECT_EQ(days_.rowOf(kToday)->markerCount, 5);
}

TEST_F(DayListLiveRow, leaves_another_day_under_review_alone) {
    recordToday();
    haveAudio(kYesterday);
    host_.loaded = audioOf(kYesterday);
    haveMarkers(kToday, 5);
    days_.liveRefreshTodayRow();
    EXPECT_THAT(host_.heard(), ElementsAre("row 2026-05-08 00:01 5"));
}

TEST_F(DayListLiveRow, follows_the_file_when_nothing_is_recorded) {
    recordToday();
    host_.recording = false;
    days_.liveRefreshTodayRow();
    EXPECT_THAT(host_.heard(), IsEmpty());
    haveAudio(kToday, 180.036);
    days_.liveRefreshTodayRow();
    EXPECT_THAT(host_.heard(), ElementsAre("row 2026-05-08 00:03 2"));
}

TEST_F(DayListLiveRow, shows_what_is_left_of_a_folder_that_disappears) {
    recordToday();
    host_.recording = false;
    fs::remove_all(stationPath_);
    days_.liveRefreshTodayRow();
    EXPECT_THAT(host_.heard(), ElementsAre("row 2026-05-08  0"));
}

TEST_F(DayListLiveRow, is_not_made_up_while_nothing_is_recorded) {
    haveAudio(kToday);
    days_.liveRefreshTodayRow();
    EXPECT_THAT(host_.heard(), IsEmpty());
    EXPECT_THAT(days_.dailyRecordings(), IsEmpty());
}

TEST_F(DayListLiveRow, comes_with_the_first_recording_of_a_day_which_is_loaded_by_itself) {
    haveAudio(kYesterday);
    days_.reloadDailyRecordings();
    host_.loaded = audioOf(kYesterday);
    host_.recording = true;
    days_.liveRefreshTodayRow();
    EXPECT_THAT(host_.heard(), ElementsAre("render list"));

    haveAudio(kToday);
    days_.liveRefreshTodayRow();
    EXPECT_THAT(host_.heard(),
                ElementsAre("render list", "load Sonavault_2026-05-08.mp3 silently"));
    EXPECT_THAT(dates(), ElementsAre(kToday, kYesterday));
    EXPECT_EQ(days_.selectedDate(), kToday);
    EXPECT_EQ(host_.loaded, audioOf(kToday));
}

TEST_F(DayListLiveRow, is_not_loaded_again_when_it_is_under_review_already) {
    haveAudio(kToday);
    host_.loaded = audioOf(kToday);
    host_.recording = true;
    days_.liveRefreshTodayRow();
    EXPECT_THAT(host_.heard(), ElementsAre("render list"));
}

TEST_F(DayListLiveRow, is_loaded_as_soon_as_a_file_that_was_empty_at_first_has_something) {
    writeFile(audioOf(kToday), "");
    host_.recording = true;
    days_.liveRefreshTodayRow();
    EXPECT_EQ(host_.loaded, std::nullopt);
    host_.heard();

    days_.liveRefreshTodayRow();
    EXPECT_EQ(host_.loaded, std::nullopt);
    host_.heard();

    haveAudio(kToday);
    days_.liveRefreshTodayRow();
    EXPECT_THAT(host_.heard(), ::testing::Contains("load Sonavault_2026-05-08.mp3 silently"));
    EXPECT_EQ(host_.loaded, audioOf(kToday));

    host_.loaded.reset();
    days_.liveRefreshTodayRow();
    EXPECT_THAT(host_.heard(), IsEmpty()) << "once is enough";
}

TEST_F(DayListLiveRow, gives_way_to_the_day_that_the_person_chose_meanwhile) {
    haveAudio(kYesterday);
    writeFile(audioOf(kToday), "");
    host_.recording = true;
    days_.liveRefreshTodayRow();
    host_.loaded = audioOf(kYesterday);
    haveAudio(kToday);
    host_.recordedSec = 36;
    days_.liveRefreshTodayRow();
    days_.liveRefreshTodayRow();
    EXPECT_EQ(host_.loaded, audioOf(kYesterday));
}

TEST_F(DayListLiveRow, moves_on_to_the_new_day_after_midnight) {
    recordToday();
    host_.loaded = audioOf(kToday);
    clock_.advance(9 * 3600);  // 01:00 in Berlin
    haveAudio("2026-05-09");
    days_.liveRefreshTodayRow();
    EXPECT_THAT(host_.heard(),
                ElementsAre("render list", "load Sonavault_2026-05-09.mp3 silently"));
    EXPECT_TRUE(days_.rowOf("2026-05-09")->live);
    EXPECT_FALSE(days_.rowOf(kToday)->live);
}

TEST_F(DayListLiveRow, stays_live_after_midnight_until_the_next_scan) {
    recordToday();
    host_.recording = false;
    clock_.advance(9 * 3600);
    days_.liveRefreshTodayRow();
    EXPECT_TRUE(days_.rowOf(kToday)->live);
    days_.reloadDailyRecordings();
    EXPECT_FALSE(days_.rowOf(kToday)->live);
}

TEST_F(DayListLiveRow, is_refreshed_when_more_than_two_seconds_have_passed) {
    recordToday();
    const auto refreshes = [this](double now) {
        host_.recordedSec += 60;
        days_.liveRefreshTodayRowIfDue(now);
        return !host_.heard().empty();
    };
    EXPECT_TRUE(refreshes(1000));
    EXPECT_FALSE(refreshes(1000.05));
    EXPECT_FALSE(refreshes(1002));
    EXPECT_TRUE(refreshes(1002.05));
    EXPECT_FALSE(refreshes(1003));
}

TEST_F(DayListLiveRow, does_not_wait_for_a_clock_that_was_set_back) {
    recordToday();
    days_.liveRefreshTodayRowIfDue(10'000);
    host_.recordedSec = 180;
    days_.liveRefreshTodayRowIfDue(6400);
    EXPECT_EQ(days_.rowOf(kToday)->recorded, "00:03");
}

}  // namespace
}  // namespace sonavault::testing
