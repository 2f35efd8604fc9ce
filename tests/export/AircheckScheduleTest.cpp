#include "export/AircheckSchedule.h"

#include <gmock/gmock.h>

#include "export/ExportFixture.h"
#include "export/LiteralFrameWalk.h"
#include "support/ManualClock.h"
#include "support/Moments.h"
#include "support/ScopedTimeZone.h"

namespace sonavault::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A station on Friday, 8 May 2026, whose day under review has one open microphone soon after
/// midnight.
class AircheckScheduleTest : public ExportFixture {
  protected:
    static WallTime moment(const std::string& clock, const std::string& date = "2026-05-08") {
        return at(date + "T" + clock + ".000+02:00");
    }

    /// A card for the first two hours of every day.
    static ScheduledAircheckCard nightShow(const std::string& label = "Night") {
        auto card = ScheduledAircheckCard::newDraft();
        card.label = label;
        card.daysOfWeek = {1, 2, 3, 4, 5, 6, 7};
        card.endHour = 1;
        card.mode = "liveMic";
        card.active = true;
        return card;
    }

    void haveShow() {
        loadDay(300);
        haveLog(
            "00:01:00,mic_start,,0\n00:01:30,mic_end,,0\n02:01:00,mic_start,,0\n"
            "02:01:30,mic_end,,0\n");
    }

    void tick() {
        schedule_.airchecksSchedulerTick();
        finishExports();
    }

    void tickDisplay() { schedule_.tickDisplay(secondsSince1970(clock_.now())); }

    std::filesystem::path outputFolder() const { return stationFolder() / "Logs/Airchecks"; }

    const ScopedTimeZone zone_{"Europe/Berlin"};
    ManualClock clock_{moment("15:00:00")};
    AircheckSchedule schedule_{{desk_, desk_, exporter_, preferences_, station_, clock_}};
    std::vector<ScheduledAircheckCard>& cards_ = schedule_.scheduledAirchecks();
};

TEST_F(AircheckScheduleTest, runs_a_card_whose_window_is_over_and_tells_of_it) {
    haveShow();
    cards_ = {nightShow("Morning/Drive ")};
    tick();
    const std::string name = "Aircheck_Morning_Drive_Live_2026-05-08_00-01.mp3";
    EXPECT_EQ(readFile(outputFolder() / name), LiteralFrameWalk::cut(day_, {{52, 98}}));
    EXPECT_THAT(desk_.status, ElementsAre("Scheduled export: \"Morning/Drive \" → " + name,
                                          "Aircheck saved: " + name));
    EXPECT_THAT(desk_.published, ElementsAre(AircheckSaved{.label = "Morning/Drive ",
                                                           .mode = "liveMic",
                                                           .date = "2026-05-08",
                                                           .startHour = 0,
                                                           .endHour = 1,
                                                           .outputURL = outputFolder() / name,
                                                           .segmentCount = 1,
                                                           .totalDurationSec = 46,
                                                           .source = "scheduled"}));
    EXPECT_THAT(desk_.alerts, IsEmpty());
}

TEST_F(AircheckScheduleTest, runs_a_card_once_a_day) {
    haveShow();
    cards_ = {nightShow()};
    clock_.set(moment("01:59:59"));
    tick();
    EXPECT_THAT(desk_.status, IsEmpty());
    clock_.set(moment("02:00:00"));
    tick();
    EXPECT_EQ(desk_.published.size(), 1u);
    tick();
    clock_.set(moment("23:59:59"));
    tick();
    EXPECT_EQ(desk_.published.size(), 1u);
    clock_.set(moment("02:00:00", "2026-05-09"));
    tick();
    ASSERT_EQ(desk_.published.size(), 2u);
    EXPECT_EQ(desk_.published[1].date, "2026-05-09");
}

TEST_F(AircheckScheduleTest, stores_the_run_before_anything_can_fail) {
    cards_ = {nightShow(), nightShow("Other")};
    cards_[1].active = false;
    tick();
    EXPECT_EQ(cards_[0].lastRunDate, "2026-05-08");
    EXPECT_EQ(schedule_.loadScheduledAirchecks(), cards_);
    EXPECT_EQ(cards_[1].lastRunDate, "");
}

TEST_F(AircheckScheduleTest, tells_when_the_window_has_no_segments) {
    cards_ = {nightShow()};
    tick();
    EXPECT_THAT(desk_.status, ElementsAre("Scheduled aircheck \"Night\": no segments in window."));
    haveShow();
    cards_ = {nightShow("Noon")};
    cards_[0].startHour = cards_[0].endHour = 12;
    tick();
    EXPECT_EQ(desk_.status.back(), "Scheduled aircheck \"Noon\": no segments in window.");
    tick();
    EXPECT_EQ(desk_.status.size(), 2u);
    EXPECT_FALSE(std::filesystem::exists(outputFolder()));
}

TEST_F(AircheckScheduleTest, tells_when_the_export_fails_and_does_not_try_again) {
    haveShow();
    cards_ = {nightShow()};
    writeFile(outputFolder(), "a file where the folder should be");
    tick();
    EXPECT_EQ(desk_.status.back(), "Aircheck failed: Could not write output: Not a directory");
    EXPECT_THAT(desk_.published, IsEmpty());
    tick();
    EXPECT_EQ(desk_.status.size(), 2u);
}

TEST_F(AircheckScheduleTest, says_nothing_without_a_station_folder_but_counts_the_day_as_done) {
    haveShow();
    std::filesystem::rename(stationFolder(), home_ / "moved");
    desk_.loaded = home_ / "moved/Logs/Audio/Sonavault_2026-05-08.mp3";
    cards_ = {nightShow()};
    tick();
    EXPECT_EQ(schedule_.airchecksOutputFolder(), std::nullopt);
    EXPECT_THAT(desk_.status, IsEmpty());
    EXPECT_EQ(cards_[0].lastRunDate, "2026-05-08");
}

TEST_F(AircheckScheduleTest, runs_all_cards_that_are_due_from_the_cards_as_they_were) {
    haveShow();
    cards_ = {nightShow("One"), nightShow("Two")};
    cards_[1].mode = "voicetracked";
    haveLog("00:01:00,mic_start\n00:01:30,mic_end\n00:02:00,vt_start\n00:02:30,vt_end\n");
    schedule_.airchecksSchedulerTick();
    cards_.clear();
    finishExports();
    EXPECT_TRUE(std::filesystem::exists(outputFolder() / "Aircheck_One_Live_2026-05-08_00-01.mp3"));
    EXPECT_TRUE(std::filesystem::exists(outputFolder() / "Aircheck_Two_VT_2026-05-08_00-01.mp3"));
    EXPECT_EQ(desk_.published.size(), 2u);
}

TEST_F(AircheckScheduleTest, compiles_whatever_day_is_under_review) {
    haveShow();
    const auto loaded = stationFolder() / "Logs/Audio/Sonavault_2026-05-01.mp3";
    std::filesystem::rename(dayFile(), loaded);
    std::filesystem::rename(dayFile("csv"), std::filesystem::path(loaded).replace_extension("csv"));
    desk_.loaded = loaded;
    // Today has its own sound and its own show.
    writeFile(dayFile(), SyntheticMp3().frames(5000).bytes());
    haveLog("00:02:00,mic_start,,0\n00:02:05,mic_end,,0\n");
    cards_ = {nightShow()};
    tick();
    const std::string name = "Aircheck_Night_Live_2026-05-08_00-01.mp3";
    EXPECT_EQ(readFile(outputFolder() / name), LiteralFrameWalk::cut(day_, {{52, 98}}));
    ASSERT_EQ(desk_.published.size(), 1u);
    EXPECT_EQ(desk_.published[0].outputURL, outputFolder() / name);
    EXPECT_EQ(desk_.published[0].totalDurationSec, 46);
    EXPECT_EQ(desk_.published[0].date, "2026-05-08");
}

TEST_F(AircheckScheduleTest, keeps_a_segment_that_runs_over_the_windows_end_whole) {
    haveShow();
    haveLog("00:00:59,mic_start\n02:30:00,mic_end\n");
    cards_ = {nightShow()};
    tick();
    ASSERT_EQ(desk_.published.size(), 1u);
    EXPECT_EQ(desk_.published[0].totalDurationSec, 2 * 3600 + 30 * 60 + 8 - 51);
}

TEST_F(AircheckScheduleTest, looks_at_the_cards_every_thirty_seconds) {
    cards_ = {nightShow()};
    tickDisplay();
    EXPECT_EQ(desk_.status.size(), 1u);
    cards_[0].lastRunDate = "";
    clock_.advance(30);
    tickDisplay();
    EXPECT_EQ(desk_.status.size(), 1u);
    clock_.advance(0.05);
    tickDisplay();
    EXPECT_EQ(desk_.status.size(), 2u);
}

TEST_F(AircheckScheduleTest, counts_the_thirty_seconds_in_the_ticks_own_moments) {
    cards_ = {nightShow()};
    schedule_.tickDisplay(1000);
    ASSERT_EQ(desk_.status.size(), 1u);
    cards_[0].lastRunDate = "";
    schedule_.tickDisplay(1030);
    EXPECT_EQ(desk_.status.size(), 1u);
    schedule_.tickDisplay(1030.05);
    EXPECT_EQ(desk_.status.size(), 2u);
}

TEST_F(AircheckScheduleTest, goes_on_looking_at_the_cards_when_the_clock_was_set_back) {
    cards_ = {nightShow()};
    tickDisplay();
    ASSERT_EQ(desk_.status.size(), 1u);
    cards_[0].lastRunDate = "";
    clock_.advance(-60);
    tickDisplay();
    EXPECT_EQ(desk_.status.size(), 2u);
}

TEST_F(AircheckScheduleTest, does_nothing_for_a_card_that_is_not_there) {
    schedule_.airchecksSchedulerTick();
    schedule_.runScheduledAircheck(0, "2026-05-08");
    EXPECT_THAT(desk_.status, IsEmpty());
    EXPECT_FALSE(preferences_.contains(kScheduledAirchecksKey));
}

TEST_F(AircheckScheduleTest, has_no_cards_when_none_are_stored_or_they_cannot_be_read) {
    EXPECT_THAT(schedule_.loadScheduledAirchecks(), IsEmpty());
    preferences_.setBytes(kScheduledAirchecksKey, "[{}]");
    EXPECT_THAT(schedule_.loadScheduledAirchecks(), IsEmpty());
    preferences_.setText(kScheduledAirchecksKey, "[]");
    EXPECT_THAT(schedule_.loadScheduledAirchecks(), IsEmpty());
    cards_ = {nightShow()};
    schedule_.saveScheduledAirchecks();
    EXPECT_EQ(schedule_.loadScheduledAirchecks(), cards_);
    EXPECT_TRUE(readFile(home_ / "sonavault.conf")
                    .starts_with("[General]\nSVScheduledAirchecks=\"@ByteArray([{\\\"active\\\":"
                                 "true,\\\"daysOfWeek\\\":[1,2,3,4,5,6,7],"))
        << readFile(home_ / "sonavault.conf");
}

}  // namespace
}  // namespace sonavault::testing
