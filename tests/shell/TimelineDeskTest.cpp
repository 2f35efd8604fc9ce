// The day on the screen, as the person sees and marks it.

#include "shell/TimelineDesk.h"

#include <QAbstractButton>
#include <QLabel>
#include <QTest>

#include "shell/ShellFixture.h"
#include "store/MarkerLogWriter.h"
#include "views/ElidedTextView.h"

namespace sonavault::testing {
namespace {

class TimelineDeskTest : public ShellFixture {
  protected:
    // 144 s from 10:00:00, with a break in it.
    const DayOnDisk morning_{.frames = 4000,
                             .log = markerRow("10:00:30", "break_start", "Spots", 20),
                             .startOffsetSec = 36'000};

    TimelineDesk& timeline() { return controller().timeline(); }
    Playback& playback() { return controller().review().playback(); }

    template <class View = QLabel>
    View& view(const char* name) {
        auto* found = timeline().view().findChild<View*>(QString::fromLatin1(name));
        if (!found) throw std::runtime_error(std::string("no view ") + name);
        return *found;
    }
    std::string clock() { return view("transportTimeLabel").text().toStdString(); }
    std::string text(const char* name) {
        return view<QWidget>(name).accessibleName().toStdString();
    }
    void click(const char* button) { view<QAbstractButton>(button).click(); }

    /// Marks `count` ranges of ten seconds with the transport's buttons.
    void mark(int count) {
        for (int i = 0; i < count; ++i) {
            click("shuttle-in");
            playback().jumpTo({36'010.0 + 20 * i});
            click("shuttle-out");
            playback().jumpTo({36'020.0 + 20 * i});
        }
    }
};

TEST_F(TimelineDeskTest, of_an_empty_station_shows_no_place_on_the_clock) {
    launch();
    tickOnce();
    EXPECT_EQ(clock(), "00:00:00");
    EXPECT_EQ(text("nowPlayingLabel"), "Now playing: —");
    EXPECT_EQ(text("selectionInfoLabel"), "Selections: —");
}

TEST_F(TimelineDeskTest, shows_where_a_day_begins_and_what_played_there) {
    haveDay("2026-03-01", morning_);
    launch();
    EXPECT_EQ(clock(), "10:00:00");
    EXPECT_EQ(text("nowPlayingLabel"), "Now playing: music / programming");
    playback().jumpTo({36'035});
    EXPECT_EQ(clock(), "10:00:35");
    EXPECT_EQ(text("nowPlayingLabel"), "Now playing: Stopset — Spots");
}

TEST_F(TimelineDeskTest, follows_the_markers_of_the_day_that_is_loaded) {
    haveDay("2026-03-01", morning_);
    launch();
    playback().jumpTo({36'100});
    writeFile(fileOf("2026-03-01", "csv"),
              kMarkerLogHeader + markerRow("10:01:30", "break_start", "News", 20));
    controller().review().day().loadMarkersForLoadedRecording();
    EXPECT_EQ(text("nowPlayingLabel"), "Now playing: Stopset — News");
}

TEST_F(TimelineDeskTest, tells_no_longer_of_the_day_before_one_that_cannot_be_opened) {
    haveDay("2026-03-01", morning_);
    launch();
    writeFile(fileOf("2026-02-28", "mp3"), "");
    controller().review().days().reloadDailyRecordings();
    playback().jumpTo({36'035});
    ASSERT_EQ(text("nowPlayingLabel"), "Now playing: Stopset — Spots");
    controller().review().day().selectAndLoadRecording("2026-02-28");
    ASSERT_FALSE(controller().review().day().loadedFileURL());
    EXPECT_EQ(clock(), "00:00:00");
    EXPECT_EQ(text("nowPlayingLabel"), "Now playing: music / programming");
    controller().review().day().selectAndLoadRecording("2026-03-01");
    EXPECT_EQ(clock(), "10:00:00");
}

TEST_F(TimelineDeskTest, tells_no_longer_of_the_only_day_once_it_is_deleted) {
    haveDay("2026-03-01", morning_);
    launch();
    playback().jumpTo({36'035});
    ASSERT_EQ(text("nowPlayingLabel"), "Now playing: Stopset — Spots");
    controller().review().days().deleteRecording(*controller().review().days().rowOf("2026-03-01"));
    ASSERT_FALSE(controller().review().day().loadedFileURL());
    EXPECT_EQ(clock(), "00:00:00");
    EXPECT_EQ(text("nowPlayingLabel"), "Now playing: music / programming");
}

TEST_F(TimelineDeskTest, carries_three_ranges_over_to_another_day_with_their_undo) {
    haveDay("2026-02-28", morning_);
    haveDay("2026-03-01", morning_);
    launch();
    mark(3);
    ASSERT_EQ(timeline().selections().selections().size(), 3U);
    controller().review().day().selectAndLoadRecording("2026-02-28");
    ASSERT_EQ(controller().review().day().loadedFileURL(), fileOf("2026-02-28"));
    EXPECT_EQ(text("selectionInfoLabel"), "3 selections, total 00:00:30");
    EXPECT_EQ(view<QAbstractButton>("exportSelectionsButton").text(),
              "Export 3 selections to file");
    EXPECT_FALSE(view<QWidget>("exportSelectionsButton").isHidden());
    EXPECT_TRUE(view<QWidget>("exportButton").isEnabled());
    EXPECT_EQ(timeline().selections().selections()[2].startSec, 36'040);
    for (const char* expected : {"2 selections, total 00:00:20",
                                 "1 selection: 10:00:00 – 10:00:10 (00:00:10)", "Selections: —"}) {
        timeline().selections().undoLastChange();
        EXPECT_EQ(text("selectionInfoLabel"), expected);
    }
    EXPECT_TRUE(view<QWidget>("exportSelectionsButton").isHidden());
    EXPECT_FALSE(view<QWidget>("exportButton").isEnabled());
}

TEST_F(TimelineDeskTest, exports_by_either_button) {
    haveDay("2026-03-01", morning_);
    launch();
    mark(1);
    click("exportButton");
    click("exportSelectionsButton");
    ASSERT_EQ(alerts_.shown.size(), 2U);
    EXPECT_EQ(alerts_.shown[1].message, "Save 1 selection into a single file");
}

TEST_F(TimelineDeskTest, steps_and_plays_with_the_shuttle) {
    haveDay("2026-03-01", morning_);
    launch();
    click("shuttle-next");
    EXPECT_EQ(clock(), "10:00:30");
    click("shuttle-play");
    EXPECT_TRUE(playback().isPlaying());
    passSeconds(2);
    EXPECT_EQ(clock(), "10:00:32");
    click("shuttle-play");
    click("shuttle-prev");
    EXPECT_EQ(clock(), "10:00:30");
}

TEST_F(TimelineDeskTest, zooms_to_a_preset_around_the_playhead) {
    haveDay("2026-03-01", morning_);
    launch();
    click("24");
    EXPECT_EQ(timeline().zoom().zoomMult(), 24);
    EXPECT_TRUE(view<QAbstractButton>("24").isChecked());
    EXPECT_FALSE(view<QAbstractButton>("1").isChecked());
    auto& scroll = timeline().view().lanesScroll();
    const auto extent = scroll.extent();
    const double x = 36'000 / kSecondsInDay * scroll.lanesInnerView().timelineWidth();
    EXPECT_NEAR(scroll.scrollX(), x - extent.clipWidth / 2, 1);
}

TEST_F(TimelineDeskTest, hides_a_lane_whose_tick_is_taken_away) {
    haveDay("2026-03-01", morning_);
    launch();
    click("break");
    EXPECT_FALSE(timeline().filters().visibleLanes().contains(Lane::breaks));
    click("voicetracksOnlyButton");
    EXPECT_TRUE(timeline().filters().visibleLanes().contains(Lane::vt));
}

}  // namespace
}  // namespace sonavault::testing
