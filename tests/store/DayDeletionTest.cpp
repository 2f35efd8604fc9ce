#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "DayListFixture.h"
#include "support/MeddlingLog.h"
#include "support/WithoutPrivileges.h"

namespace sonavault::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class DayDeletion : public DayListFixture {
  protected:
    void haveDays() {
        haveAudio(kToday);
        haveAudio(kYesterday);
        days_.reloadDailyRecordings();
    }

    void deleteDay(const std::string& date) {
        const auto row = days_.rowOf(date);
        ASSERT_TRUE(row);
        days_.deleteRecording(*row);
    }
};

TEST_F(DayDeletion, asks_first) {
    haveDays();
    deleteDay(kYesterday);
    ASSERT_THAT(host_.warnings, SizeIs(1));
    EXPECT_EQ(host_.warnings[0].message, "Delete 2026-05-07 (Thu)?");
    EXPECT_EQ(host_.warnings[0].information,
              "Permanently removes the audio file, marker CSV, manifest, peaks cache, and any "
              "leftover backup files for this day. This cannot be undone.");
    EXPECT_THAT(host_.warnings[0].buttons, ElementsAre("Delete", "Cancel"));
}

TEST_F(DayDeletion, changes_nothing_when_the_person_says_no) {
    haveDays();
    host_.answer = 1;
    deleteDay(kYesterday);
    EXPECT_TRUE(fs::exists(audioOf(kYesterday)));
    EXPECT_THAT(host_.heard(), IsEmpty());
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(DayDeletion, removes_all_files_of_the_day_and_no_others) {
    haveDays();
    for (const auto* name :
         {"Sonavault_2026-05-07.csv", "Sonavault_2026-05-07.json", "Sonavault_2026-05-07.peaks",
          "Sonavault_2026-05-07.m4a", "Sonavault_2026-05-07.m4a.orphan-0.bak",
          "Sonavault_2026-05-07_copy.mp3", "Sonavault_2026-05-070.mp3", "sonavault_2026-05-07.mp3"})
        writeFile(folder_ / name, "x");
    deleteDay(kYesterday);
    std::vector<std::string> left;
    for (const auto& entry : fs::directory_iterator(folder_))
        left.push_back(entry.path().filename().string());
    EXPECT_THAT(left, ::testing::UnorderedElementsAre(
                          "Sonavault_2026-05-08.mp3", "Sonavault_2026-05-07_copy.mp3",
                          "Sonavault_2026-05-070.mp3", "sonavault_2026-05-07.mp3"));
    EXPECT_THAT(log_.lines(),
                ElementsAre("Sonavault: deleted Sonavault_2026-05-07.csv",
                            "Sonavault: deleted Sonavault_2026-05-07.json",
                            "Sonavault: deleted Sonavault_2026-05-07.m4a",
                            "Sonavault: deleted Sonavault_2026-05-07.m4a.orphan-0.bak",
                            "Sonavault: deleted Sonavault_2026-05-07.mp3",
                            "Sonavault: deleted Sonavault_2026-05-07.peaks"));
}

TEST_F(DayDeletion, of_the_day_under_review_ends_with_the_startup_recording) {
    haveDays();
    host_.loaded = audioOf(kYesterday);
    deleteDay(kYesterday);
    EXPECT_THAT(host_.heard(), ElementsAre("unload", "render list", "load startup"));
    EXPECT_THAT(dates(), ElementsAre(kToday));
}

TEST_F(DayDeletion, unloads_before_the_files_are_gone) {
    haveDays();
    host_.loaded = audioOf(kYesterday);
    bool wereThere = false;
    host_.whileUnloading = [&] { wereThere = fs::exists(audioOf(kYesterday)); };
    deleteDay(kYesterday);
    EXPECT_TRUE(wereThere);
}

TEST_F(DayDeletion, of_another_day_leaves_the_day_under_review_alone) {
    haveDays();
    host_.loaded = audioOf(kToday);
    deleteDay(kYesterday);
    EXPECT_THAT(host_.heard(), ElementsAre("render list"));
    EXPECT_EQ(host_.loaded, audioOf(kToday));
}

TEST_F(DayDeletion, of_today_is_refused_while_it_is_recorded) {
    haveDays();
    host_.recording = true;
    deleteDay(kToday);
    ASSERT_THAT(host_.warnings, SizeIs(1));
    EXPECT_EQ(host_.warnings[0].message, "Recording is in progress");
    EXPECT_EQ(host_.warnings[0].information,
              "Sonavault is currently writing to today's file. Press ⌘R to stop the recording "
              "first, then try Delete again.");
    EXPECT_THAT(host_.warnings[0].buttons, SizeIs(1));
    EXPECT_TRUE(fs::exists(audioOf(kToday)));
    EXPECT_THAT(host_.heard(), IsEmpty());
}

TEST_F(DayDeletion, of_today_is_refused_when_recording_began_while_the_question_was_asked) {
    haveDays();
    host_.whileAsking = [this] { host_.recording = true; };
    deleteDay(kToday);
    ASSERT_THAT(host_.warnings, SizeIs(2));
    EXPECT_EQ(host_.warnings[1].message, "Recording is in progress");
    EXPECT_TRUE(fs::exists(audioOf(kToday)));
}

TEST_F(DayDeletion, of_the_day_to_which_the_clock_went_back_is_refused_while_it_is_recorded) {
    haveDays();
    clock_.advance(-24 * 3600);  // the recorder goes on in yesterday's file
    host_.recording = true;
    deleteDay(kYesterday);
    ASSERT_THAT(host_.warnings, SizeIs(1));
    EXPECT_EQ(host_.warnings[0].message, "Recording is in progress");
    EXPECT_TRUE(fs::exists(audioOf(kYesterday)));
}

TEST_F(DayDeletion, of_today_is_allowed_while_nothing_is_recorded) {
    haveDays();
    deleteDay(kToday);
    EXPECT_EQ(host_.warnings[0].message, "Delete 2026-05-08 (Fri)?");
    EXPECT_THAT(dates(), ElementsAre(kYesterday));
}

TEST_F(DayDeletion, of_another_day_is_allowed_while_today_is_recorded) {
    haveDays();
    host_.recording = true;
    deleteDay(kYesterday);
    EXPECT_THAT(dates(), ElementsAre(kToday));
}

TEST_F(DayDeletion, of_a_row_without_audio_reads_the_folder_again) {
    haveDays();
    DailyRecording row = *days_.rowOf(kYesterday);
    row.audioURL.reset();
    days_.deleteRecording(row);
    EXPECT_THAT(dates(), ElementsAre(kToday, kYesterday));
    EXPECT_THAT(host_.heard(), ElementsAre("render list", "load startup"));
}

TEST_F(DayDeletion, passes_over_a_folder_that_is_gone) {
    haveDays();
    // The row is from before its folder became another; nothing of the day is found there.
    DailyRecording row = *days_.rowOf(kYesterday);
    row.audioURL = home_.path() / "gone" / "Sonavault_2026-05-07.mp3";
    days_.deleteRecording(row);
    EXPECT_THAT(dates(), ElementsAre(kToday, kYesterday));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(DayDeletion, survives_the_list_being_read_again_while_the_question_is_asked) {
    haveDays();
    host_.whileAsking = [this] {
        fs::remove(audioOf(kToday));
        days_.reloadDailyRecordings();
    };
    days_.deleteRecording(days_.dailyRecordings().back());
    EXPECT_THAT(dates(), IsEmpty());
}

TEST_F(DayDeletion, tells_of_no_file_that_another_removed_first) {
    haveDays();
    writeFile(folder_ / "Sonavault_2026-05-07.csv", "x");
    MeddlingLog log(log_, [this] { fs::remove(audioOf(kYesterday)); });
    DayList days(station_, clock_, log, lengths_, host_);
    days.reloadDailyRecordings();
    days.deleteRecording(*days.rowOf(kYesterday));
    EXPECT_THAT(log_.lines(), ElementsAre("Sonavault: deleted Sonavault_2026-05-07.csv"));
}

TEST_F(DayDeletion, passes_over_what_cannot_be_removed_and_lists_a_day_whose_audio_stayed) {
    // What is in a folder that nobody may write can't be removed, not even with the folder.
    const auto stuck = audioOf(kYesterday);
    writeFile(stuck / "inside", "x");
    fs::permissions(stuck, fs::perms::owner_read | fs::perms::owner_exec);
    for (const auto* suffix : {"csv", "peaks"})
        writeFile(folder_ / ("Sonavault_2026-05-07." + std::string(suffix)), "x");
    fs::permissions(folder_, fs::perms::all);
    fs::permissions(home_.path(), fs::perms::all);
    days_.reloadDailyRecordings();
    {
        const WithoutPrivileges anybody;
        ASSERT_TRUE(anybody.works());
        deleteDay(kYesterday);
    }
    fs::permissions(stuck, fs::perms::owner_all);
    EXPECT_THAT(log_.lines(), ElementsAre("Sonavault: deleted Sonavault_2026-05-07.csv",
                                          "Sonavault: deleted Sonavault_2026-05-07.peaks"));
    EXPECT_THAT(host_.warnings, SizeIs(1)) << "the question, and nothing after it";
    EXPECT_THAT(dates(), ElementsAre(kYesterday));
}

TEST_F(DayDeletion, removes_a_link_and_not_what_it_leads_to) {
    writeFile(home_ / "elsewhere.mp3", dayRun(100, {24, 16000}));
    fs::create_symlink(home_ / "elsewhere.mp3", audioOf(kYesterday));
    days_.reloadDailyRecordings();
    deleteDay(kYesterday);
    EXPECT_THAT(dates(), IsEmpty());
    EXPECT_TRUE(fs::exists(home_ / "elsewhere.mp3"));
}

}  // namespace
}  // namespace sonavault::testing
