#include "export/AircheckExport.h"

#include <gmock/gmock.h>

#include "export/ExportFixture.h"
#include "export/LiteralFrameWalk.h"

namespace sonavault::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::size_t kLive = 0;
constexpr std::size_t kVoicetracks = 1;
constexpr std::size_t kCancel = 2;

class AircheckExportTest : public ExportFixture {
  protected:
    void exportAircheck(const AircheckAnswer& answer) {
        desk_.aircheckAnswer = answer;
        desk_.output = home_ / "aircheck.mp3";
        aircheckExport_.exportAircheck();
        finishExports();
    }

    AircheckExport aircheckExport_{desk_, desk_, folder_, exporter_};
};

TEST_F(AircheckExportTest, needs_a_day_under_review) {
    exportAircheck({kLive, 0, 23});
    EXPECT_THAT(desk_.alerts, ElementsAre(ExportAlert{
                                  .message = "No recording loaded",
                                  .information = "Open a recording first, then press A again.",
                                  .buttons = {"OK"}}));
    EXPECT_THAT(desk_.questions, IsEmpty());
}

TEST_F(AircheckExportTest, asks_for_the_kind_and_the_hours) {
    loadDay(1);
    exportAircheck({kCancel, 0, 23});
    ASSERT_EQ(desk_.questions.size(), 1u);
    const AircheckQuestion& question = desk_.questions[0];
    EXPECT_EQ(question.message, "Build an aircheck");
    EXPECT_EQ(question.information,
              "Sonavault can compile two kinds of aircheck from the loaded recording's marker "
              "log:\n\n  • Live DJ — pairs of Live On/Off (every time the mic was open)\n  • "
              "Voicetracks — every voicetrack from setup through ending\n\nEach segment is "
              "extended by 8\xC2\xA0seconds before and after so the bed audio reads clearly. "
              "Overlapping segments are merged.\n\nUse the hour dropdowns to limit the export to a "
              "window — e.g. one DJ's show. Defaults cover the full day.");
    EXPECT_THAT(question.buttons, ElementsAre("Live DJ", "Voicetracks", "Cancel"));
    EXPECT_EQ(question.startLabel, "Starting with:");
    EXPECT_EQ(question.endLabel, "Ending with:");
    ASSERT_EQ(question.hours.size(), 24u);
    EXPECT_EQ(question.hours[0], "00:00");
    EXPECT_EQ(question.hours[9], "09:00");
    EXPECT_EQ(question.hours[23], "23:00");
    EXPECT_EQ(question.startHour, 0);
    EXPECT_EQ(question.endHour, 23);
    EXPECT_THAT(desk_.alerts, IsEmpty());
    EXPECT_THAT(desk_.panels, IsEmpty());
    EXPECT_THAT(desk_.status, IsEmpty());
}

TEST_F(AircheckExportTest, saves_and_publishes_the_live_segments_of_a_whole_day) {
    loadDay(300);
    haveLog(
        "00:01:00,mic_start,,0\n00:01:30,mic_end,,0\n00:03:00,mic_start,,0\n"
        "00:03:30,mic_end,,0\n");
    exportAircheck({kLive, 0, 23});
    EXPECT_THAT(desk_.panels,
                ElementsAre(SavePanel{.title = "Save Aircheck",
                                      .message = "Save the 2 Live DJ segments into one MP3 file",
                                      .directory = stationFolder(),
                                      .nameField = "Aircheck_Live_2026-05-08.mp3"}));
    EXPECT_EQ(readFile(home_ / "aircheck.mp3"),
              LiteralFrameWalk::cut(day_, {{52, 98}, {172, 218}}));
    EXPECT_THAT(desk_.published, ElementsAre(AircheckSaved{.label = "manual",
                                                           .mode = "liveMic",
                                                           .date = "2026-05-08",
                                                           .startHour = 0,
                                                           .endHour = 23,
                                                           .outputURL = home_ / "aircheck.mp3",
                                                           .segmentCount = 2,
                                                           .totalDurationSec = 92,
                                                           .source = "manual"}));
    EXPECT_THAT(
        desk_.alerts,
        ElementsAre(ExportAlert{.message = "Aircheck saved",
                                .information = "Wrote 2 Live DJ segments (total 00:01:32) to:\n\n" +
                                               (home_ / "aircheck.mp3").string(),
                                .buttons = {"Reveal in Finder", "OK"}}));
    EXPECT_THAT(desk_.revealed, ElementsAre(home_ / "aircheck.mp3"));
    EXPECT_THAT(desk_.status, ElementsAre("Exporting aircheck…", ""));
    EXPECT_EQ(preferences_.text(kLastExportFolderKey), home_.path().string());
}

TEST_F(AircheckExportTest, takes_no_sound_from_a_day_that_was_opened_while_the_panel_was_open) {
    loadDay(300);
    haveLog("00:01:00,mic_start,,0\n00:01:30,mic_end,,0\n");
    desk_.whileChoosing = [this] { desk_.loaded = home_ / "Sonavault_2026-05-09.mp3"; };
    exportAircheck({kLive, 0, 23});
    ASSERT_EQ(desk_.alerts.size(), 1U);
    EXPECT_EQ(desk_.alerts[0].message, "Aircheck failed");
    EXPECT_TRUE(desk_.alerts[0].isWarning);
    EXPECT_THAT(desk_.published, IsEmpty());
    EXPECT_THAT(desk_.status, IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(home_ / "aircheck.mp3"));
}

TEST_F(AircheckExportTest, saves_one_voicetrack_of_a_window) {
    loadDay(300);
    haveLog("00:01:00,vt_start,,0\n00:01:30,vt_end,,0\n01:01:00,vt_start,,0\n01:01:30,vt_end,,0\n");
    exportAircheck({kVoicetracks, 0, 0});
    ASSERT_EQ(desk_.panels.size(), 1u);
    EXPECT_EQ(desk_.panels[0].message, "Save the 1 voicetrack segment into one MP3 file");
    EXPECT_EQ(desk_.panels[0].nameField, "Aircheck_VT_2026-05-08_00-00.mp3");
    ASSERT_EQ(desk_.published.size(), 1u);
    EXPECT_EQ(desk_.published[0].mode, "voicetracked");
    EXPECT_EQ(desk_.published[0].endHour, 0);
    EXPECT_TRUE(
        desk_.alerts.at(0).information.starts_with("Wrote 1 voicetrack segment (total 00:00:46)"));
}

TEST_F(AircheckExportTest, swaps_hours_that_stand_the_wrong_way_round) {
    loadDay(1);
    haveLog(
        "09:59:59,mic_start\n10:00:30,mic_end\n10:00:00,vt_start\n10:00:30,vt_end\n"
        "14:59:00,vt_start\n15:30:00,vt_end\n15:31:00,vt_start\n15:32:00,vt_end\n");
    exportAircheck({kVoicetracks, 14, 10});
    ASSERT_EQ(desk_.panels.size(), 1u);
    EXPECT_EQ(desk_.panels[0].nameField, "Aircheck_VT_2026-05-08_10-14.mp3");
    // The one that opens in the window's first eight seconds begins before it.
    EXPECT_EQ(desk_.panels[0].message, "Save the 1 voicetrack segment into one MP3 file");
}

TEST_F(AircheckExportTest, says_that_a_day_has_no_segments) {
    loadDay(1);
    haveLog("");
    exportAircheck({kLive, 0, 23});
    exportAircheck({kVoicetracks, 0, 23});
    EXPECT_THAT(
        desk_.alerts,
        ElementsAre(
            ExportAlert{.message = "No Live DJ segments found",
                        .information = "The recording's marker log has no matched Live On/Off "
                                       "pairs to use. Make sure Cadenzo has captured them.",
                        .buttons = {"OK"}},
            ExportAlert{.message = "No voicetrack segments found",
                        .information = "The recording's marker log has no matched voicetrack pairs "
                                       "to use. Make sure Cadenzo has captured them.",
                        .buttons = {"OK"}}));
    EXPECT_THAT(desk_.panels, IsEmpty());
}

TEST_F(AircheckExportTest, says_that_a_window_has_no_segments) {
    loadDay(1);
    haveLog("11:00:08,mic_start\n11:30:00,mic_end\n");
    exportAircheck({kLive, 10, 10});
    EXPECT_THAT(desk_.alerts,
                ElementsAre(ExportAlert{
                    .message = "No Live DJ segments found in 10:00–10:59",
                    .information = "The recording's marker log has no matched Live On/Off pairs in "
                                   "the chosen hour window to use. Make sure Cadenzo has captured "
                                   "them.",
                    .buttons = {"OK"}}));
}

TEST_F(AircheckExportTest, leaves_out_a_show_that_is_still_on_air) {
    loadDay(1);
    haveLog("00:00:10,mic_start\n");
    exportAircheck({kLive, 0, 23});
    EXPECT_EQ(desk_.alerts.at(0).message, "No Live DJ segments found");
}

TEST_F(AircheckExportTest, changes_nothing_when_the_panel_is_cancelled) {
    loadDay(1);
    haveLog("00:00:10,mic_start\n00:00:20,mic_end\n");
    desk_.aircheckAnswer = {kLive, 0, 23};
    aircheckExport_.exportAircheck();
    EXPECT_EQ(desk_.panels.size(), 1u);
    EXPECT_THAT(desk_.status, IsEmpty());
    EXPECT_FALSE(preferences_.contains(kLastExportFolderKey));
}

TEST_F(AircheckExportTest, refuses_a_legacy_day_at_the_very_end_and_publishes_nothing) {
    desk_.loaded = dayFile("m4a");
    haveLog("00:00:10,mic_start\n00:00:20,mic_end\n");
    exportAircheck({kLive, 0, 23});
    EXPECT_EQ(desk_.panels.size(), 1u);
    EXPECT_THAT(desk_.alerts,
                ElementsAre(ExportAlert{
                    .isWarning = true,
                    .message = "Aircheck failed",
                    .information = "Export only supports MP3 sources right now. The loaded "
                                   "recording is .m4a (legacy). Open or record an MP3 first.",
                    .buttons = {"OK"}}));
    EXPECT_THAT(desk_.published, IsEmpty());
    EXPECT_THAT(desk_.status, ElementsAre("Exporting aircheck…", ""));
}

TEST_F(AircheckExportTest, does_not_touch_the_reviewers_selections) {
    loadDay(300);
    desk_.chosen = {selection(1, 2)};
    haveLog("00:01:00,mic_start\n00:01:30,mic_end\n");
    exportAircheck({kLive, 0, 23});
    EXPECT_EQ(desk_.chosen.size(), 1u);
    EXPECT_EQ(readFile(home_ / "aircheck.mp3"), LiteralFrameWalk::cut(day_, {{52, 98}}));
}

}  // namespace
}  // namespace sonavault::testing
