#include "review/LoadedDay.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "review/ReviewFixture.h"
#include "support/SyntheticMp3.h"

namespace sonavault::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr auto kNoMarkers =
    "Audio came from the computer's line input, so no markers are visible for this recording. All "
    "other features are available.";

using LoadedDayTest = ReviewFixture;

TEST_F(LoadedDayTest, tells_what_was_loaded_and_where_it_stands_on_the_clock) {
    haveAudio("2026-05-07");
    writeFile(fileOf("2026-05-07", "json"),
              R"({"version": 1, "start_offset_sec": 23415.0, "source_mode": "cadenzo_tcp"})");
    day_.loadRecording(fileOf("2026-05-07"));
    EXPECT_EQ(day_.currentRecordingOffset().value, 23415);
    EXPECT_EQ(day_.playheadSec(), 23415) << "opened at its first audio";
    EXPECT_GE(window_.playheadsShown, 1);
    EXPECT_THAT(log_.lines(), ElementsAre("Sonavault: Loaded manifest — start_offset_sec=23415.0, "
                                          "source=cadenzo_tcp",
                                          "Sonavault: Loaded recording — 36.0s @ 16000.0Hz from " +
                                              fileOf("2026-05-07").string()));
    EXPECT_TRUE(window_.warnings.empty());
}

TEST_F(LoadedDayTest, stops_playback_before_another_is_looked_at) {
    writeFile(fileOf("2026-05-07"), "no audio");
    log_.onLine = [this](const std::string&) { EXPECT_EQ(window_.stops, 1); };
    day_.loadRecording(fileOf("2026-05-07"));
    EXPECT_EQ(log_.lines().size(), 1U);
}

TEST_F(LoadedDayTest, without_a_manifest_begins_at_midnight) {
    haveAudio("2026-05-07");
    day_.loadRecording(fileOf("2026-05-07"));
    EXPECT_EQ(day_.currentRecordingOffset().value, 0);
    EXPECT_TRUE(log_.has("Sonavault: No manifest sidecar; using fallback offset 0.0s"));
}

TEST_F(LoadedDayTest, with_a_manifest_that_names_no_source_says_so) {
    haveAudio("2026-05-07");
    writeFile(fileOf("2026-05-07", "json"), R"({"version": 1, "start_offset_sec": 0.5})");
    day_.loadRecording(fileOf("2026-05-07"));
    EXPECT_TRUE(log_.has("Sonavault: Loaded manifest — start_offset_sec=0.5, source=?"));
}

TEST_F(LoadedDayTest, has_its_waveform_made_and_its_markers_read) {
    haveAudio("2026-05-07");
    haveLog("2026-05-07", "08:00:00,hour,,0\n08:10:00,break_start,Spots,120\n");
    day_.loadRecording(fileOf("2026-05-07"));
    EXPECT_EQ(window_.status, "Preparing waveform…");
    EXPECT_EQ(day_.allMarkers().size(), 2U);
    EXPECT_EQ(day_.allMarkers()[1].type, "break");
    EXPECT_EQ(window_.emptyState, "");
    EXPECT_GE(window_.timelinesRendered, 1);
    EXPECT_GE(window_.summariesDrawn, 1);
}

TEST_F(LoadedDayTest, with_hours_alone_counts_as_one_without_events) {
    EXPECT_EQ(emptyStateText({}), kNoMarkers);
    EXPECT_EQ(emptyStateText({{.type = "hour"}, {.type = "hour"}}), kNoMarkers);
    EXPECT_EQ(emptyStateText({{.type = "hour"}, {.type = "break"}}), std::nullopt);
    haveAudio("2026-05-07");
    haveLog("2026-05-07", "08:00:00,hour,,0\n");
    day_.loadRecording(fileOf("2026-05-07"));
    EXPECT_EQ(window_.emptyState, kNoMarkers);
}

TEST_F(LoadedDayTest, without_a_log_or_with_one_that_is_no_text_has_no_markers) {
    haveAudio("2026-05-07");
    day_.loadRecording(fileOf("2026-05-07"));
    EXPECT_THAT(day_.allMarkers(), IsEmpty());
    writeFile(fileOf("2026-05-07", "csv"), "timestamp\n08:00:00,hour,\xFF\xFE,0\n");
    day_.loadMarkersForLoadedRecording();
    EXPECT_THAT(day_.allMarkers(), IsEmpty());
    EXPECT_EQ(window_.emptyState, kNoMarkers);
}

TEST_F(LoadedDayTest, that_was_clicked_and_cannot_be_opened_leaves_none_and_alerts) {
    loadWholeDay();
    writeFile(fileOf("2026-05-06"), "");
    days_.reloadDailyRecordings();
    log_.clear();
    day_.selectAndLoadRecording("2026-05-06");
    EXPECT_FALSE(day_.loadedFileURL());
    EXPECT_FALSE(day_.loadedFile());
    EXPECT_FALSE(day_.loadedManifest());
    EXPECT_FALSE(peaks_.peaksData());
    EXPECT_THAT(day_.allMarkers(), IsEmpty());
    EXPECT_FALSE(peaks_.isGeneratingPeaks());
    ASSERT_EQ(window_.warnings.size(), 1U);
    EXPECT_EQ(window_.warnings[0].first, "Couldn't load recording");
    EXPECT_THAT(window_.warnings[0].second,
                HasSubstr("The audio file at Sonavault_2026-05-06.mp3 couldn't be opened. It may "
                          "be empty (0-byte) or corrupted.\n\nDetails: "));
    ASSERT_EQ(log_.lines().size(), 1U);
    EXPECT_THAT(log_.lines()[0], HasSubstr("Sonavault: Failed to load recording at " +
                                           fileOf("2026-05-06").string() + ": "));
}

TEST_F(LoadedDayTest, that_nobody_asked_for_fails_in_silence) {
    writeFile(fileOf("2026-05-08"), "");
    days_.reloadDailyRecordings();
    day_.loadStartupRecording();
    EXPECT_FALSE(day_.loadedFileURL());
    EXPECT_TRUE(window_.warnings.empty());
    EXPECT_EQ(days_.selectedDate(), "2026-05-08");
    ASSERT_EQ(log_.lines().size(), 2U);
    EXPECT_EQ(log_.lines()[0],
              "Sonavault: Auto-loading today's recording at launch — Sonavault_2026-05-08.mp3");
    EXPECT_THAT(log_.lines()[1], HasSubstr("Sonavault: Failed to load recording at " +
                                           fileOf("2026-05-08").string() + ": "));
}

TEST_F(LoadedDayTest, at_launch_is_todays) {
    haveAudio("2026-05-07");
    haveAudio("2026-05-08");
    haveAudio("2026-05-09");
    day_.loadStartupRecording();
    EXPECT_EQ(day_.loadedFileURL(), fileOf("2026-05-08"));
    EXPECT_EQ(days_.selectedDate(), "2026-05-08");
    EXPECT_TRUE(
        log_.has("Sonavault: Auto-loading today's recording at launch — Sonavault_2026-05-08.mp3"));
}

TEST_F(LoadedDayTest, at_launch_is_the_newest_when_today_has_none) {
    haveAudio("2026-05-06");
    haveAudio("2026-05-07");
    day_.loadStartupRecording();
    EXPECT_EQ(day_.loadedFileURL(), fileOf("2026-05-07"));
    EXPECT_EQ(days_.selectedDate(), "2026-05-07");
    EXPECT_TRUE(
        log_.has("Sonavault: Auto-loading newest recording at launch — Sonavault_2026-05-07.mp3"));
}

TEST_F(LoadedDayTest, at_launch_is_none_without_recordings) {
    day_.loadStartupRecording();
    EXPECT_FALSE(day_.loadedFileURL());
    EXPECT_TRUE(log_.lines().empty());
}

TEST_F(LoadedDayTest, follows_a_choice_of_date_and_shows_it_in_the_list) {
    haveAudio("2026-05-06");
    haveAudio("2026-05-07");
    day_.selectAndLoadRecording("2026-05-06");
    EXPECT_EQ(day_.loadedFileURL(), fileOf("2026-05-06"));
    EXPECT_EQ(days_.selectedDate(), "2026-05-06");
    EXPECT_EQ(window_.listsRendered, 1);
    day_.selectAndLoadRecording("2026-01-01");
    EXPECT_EQ(day_.loadedFileURL(), fileOf("2026-05-06")) << "there is no such row";
    EXPECT_EQ(window_.listsRendered, 1);
}

TEST_F(LoadedDayTest, stays_when_a_row_without_audio_is_chosen) {
    loadWholeDay();
    log_.clear();
    const int stopsBefore = window_.stops;
    day_.selectAndLoad({.date = "2026-05-06"});
    EXPECT_EQ(days_.selectedDate(), "2026-05-06");
    EXPECT_THAT(log_.lines(), ElementsAre("Sonavault: row 2026-05-06 has no audio file on disk; "
                                          "selection only"));
    EXPECT_EQ(day_.loadedFileURL(), fileOf("2026-05-07"));
    EXPECT_TRUE(day_.loadedFile());
    EXPECT_TRUE(day_.loadedManifest());
    EXPECT_EQ(day_.allMarkers().size(), 1U);
    EXPECT_TRUE(peaks_.peaksData());
    EXPECT_EQ(window_.stops, stopsBefore) << "what plays plays on";
    EXPECT_EQ(window_.listsRendered, 1);
    EXPECT_TRUE(window_.warnings.empty());
}

TEST_F(LoadedDayTest, draws_the_summary_bar_anew_once) {
    haveAudio("2026-05-07");
    day_.loadRecording(fileOf("2026-05-07"));
    EXPECT_EQ(window_.summariesDrawn, 1);
    writeFile(fileOf("2026-05-07"), "");
    day_.loadRecording(fileOf("2026-05-07"), true);
    EXPECT_EQ(window_.summariesDrawn, 2);
}

TEST_F(LoadedDayTest, names_the_file_that_cannot_be_read_again) {
    haveAudio("2026-05-07");
    day_.loadRecording(fileOf("2026-05-07"));
    writeFile(fileOf("2026-05-07"), "");
    day_.loadRecording(*day_.loadedFileURL());
    ASSERT_EQ(window_.warnings.size(), 1U);
    EXPECT_THAT(window_.warnings[0].second, HasSubstr("at Sonavault_2026-05-07.mp3 couldn't"));
}

TEST_F(LoadedDayTest, is_gone_whole_when_it_is_unloaded) {
    loadWholeDay();
    const int stopsBefore = window_.stops;
    day_.unload();
    EXPECT_EQ(window_.stops, stopsBefore + 1);
    EXPECT_FALSE(day_.loadedFileURL());
    EXPECT_FALSE(day_.loadedManifest());
    EXPECT_FALSE(day_.loadedFile());
    EXPECT_THAT(day_.allMarkers(), IsEmpty());
    EXPECT_FALSE(peaks_.peaksData());
}

}  // namespace
}  // namespace sonavault::testing
