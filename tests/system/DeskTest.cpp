// The window as a person at the desk uses it, by the mouse above all.

#include <gtest/gtest.h>

#include <thread>

#include "review/DateRow.h"
#include "review/SummaryBar.h"
#include "store/MarkerLogWriter.h"
#include "support/Eventually.h"
#include "system/Desk.h"
#include "system/Listening.h"
#include "system/ReviewedDay.h"

namespace sonavault::testing {
namespace {

using namespace std::chrono_literals;

constexpr auto kLoaded = "Sonavault: Loaded recording";

constexpr auto kSettings = "Sonavault Settings";
constexpr auto kHelp = "Sonavault Help";

// A press has to be longer than this to delete a selection.
constexpr auto kLongPress = 900ms;

constexpr double kBusinessHours = 10 * 3600;

/// The window with a day in it.
class DeskTest : public ::testing::Test {
  protected:
    void openToday() {
        today_ = std::make_unique<ReviewedDay>(desk_.station,
                                               markerRow("06:55:00", "mic_start", "News", 0) +
                                                   markerRow("06:55:40", "mic_end", "News", 0) +
                                                   markerRow("07:00:00", "custom", "Note", 0));
        desk_.open();
        ASSERT_TRUE(desk_.eventuallySays(kLoaded)) << desk_.program->text();
    }

    /// Where the presets are on, of which only one ever is.
    std::vector<bool> presetsOn(const ScreenPicture& screen) const {
        constexpr int kDark = 160;
        std::vector<bool> on;
        for (std::size_t i = 0; i < 5; ++i)
            on.push_back(screen.at(desk_.places().zoomPresetGround(i)).brightness() < kDark);
        return on;
    }

    bool eventuallyOn(const std::vector<bool>& expected) const {
        return desk_.desktop.awaitSight(
            [&](const ScreenPicture& screen) { return presetsOn(screen) == expected; });
    }

    /// Whether the bar shows a selection that begins and ends there; its edges are seen.
    bool eventuallySelected(double from, double to) const {
        return desk_.desktop.awaitSight([&](const ScreenPicture& screen) {
            return isBand(screen, from + 900) && isBand(screen, to - 900) &&
                   !isBand(screen, from - 900) && !isBand(screen, to + 900);
        });
    }
    bool eventuallyBare(double second) const {
        return desk_.desktop.awaitSight(
            [&](const ScreenPicture& screen) { return !isBand(screen, second); });
    }

    /// Selections are yellow; the bar is blue where there is audio, and grey elsewhere.
    bool isBand(const ScreenPicture& screen, double second) const {
        const Pixel seen = screen.at(desk_.places().onSummaryBar(second));
        return seen.red - seen.blue > 30;
    }

    Desk desk_;
    std::unique_ptr<ReviewedDay> today_;
};

// Recording

TEST_F(DeskTest, a_recording_begins_and_ends_by_the_menu_with_a_red_light_while_it_runs) {
    desk_.open();
    desk_.chooseFromMenu(2, 0);
    ASSERT_TRUE(desk_.eventuallySays("Sonavault recorder: started (line input) → "))
        << desk_.program->text();
    const Box light = desk_.places().dateRowLight(0);
    const auto isLit = [&](const ScreenPicture& screen) {
        return screen.at(middleOf(light)) == pixelOf(kColorRec);
    };
    EXPECT_TRUE(desk_.desktop.awaitSight(isLit));
    desk_.desktop.takePicture("recording");

    desk_.chooseFromMenu(2, 0);
    ASSERT_TRUE(desk_.eventuallySays("Sonavault recorder: stopped → ")) << desk_.program->text();
    EXPECT_TRUE(
        desk_.desktop.awaitSight([&](const ScreenPicture& screen) { return !isLit(screen); }));
    EXPECT_GT(std::filesystem::file_size(desk_.station.dayFile("mp3")), 0U);
}

TEST_F(DeskTest, the_source_and_the_resuming_are_chosen_by_the_menu_and_kept) {
    desk_.open();
    desk_.chooseFromMenu(2, 3);
    EXPECT_TRUE(desk_.eventuallyPrefers("SonavaultAutoResumeOnLaunch", "true"));

    // Into the submenu, and its second item.
    desk_.chooseFromMenu(2, 2);
    desk_.desktop.press({"Down", "Return"});
    EXPECT_TRUE(desk_.eventuallyPrefers("SonavaultSourceMode", "cadenzo_tcp"));
    const Point dot = middleOf(desk_.places().connectionDot());
    EXPECT_TRUE(desk_.desktop.awaitSight([&](const ScreenPicture& screen) {
        return screen.at(dot) == Pixel{255, 59, 48};
    })) << "nothing is connected";
}

// The days

TEST_F(DeskTest, a_day_is_opened_by_its_row_and_deleted_by_the_rows_menu) {
    const ReviewedDay today(desk_.station);
    const auto past = [&](const std::string& suffix) {
        return desk_.station.audioFolder() / ("Sonavault_2025-03-01." + suffix);
    };
    for (const std::string suffix : {"mp3", "json", "csv"})
        std::filesystem::copy_file(desk_.station.dayFile(suffix), past(suffix));
    desk_.open();
    ASSERT_TRUE(desk_.eventuallySays(kLoaded)) << desk_.program->text();

    const std::size_t before = desk_.program->lineCount();
    desk_.desktop.click(desk_.places().dateRow(1));
    EXPECT_TRUE(desk_.program->waitForLine(kLoaded, 20s, before)) << desk_.program->text();
    const Box row = desk_.places().dateRowBox(1);
    const Point ground{row.right() - 5, row.y + 10};
    EXPECT_TRUE(desk_.desktop.awaitSight([&](const ScreenPicture& screen) {
        return screen.at(ground) == pixelOf(kColorDateSelected);
    }));
    desk_.desktop.takePicture("another_day");

    const auto openMenu = [&] {
        desk_.desktop.rightClick(desk_.places().dateRow(1));
        desk_.desktop.press({"Down", "Return"});
        desk_.desktop.awaitFront(Desk::kAlert);
    };
    openMenu();
    desk_.desktop.takePicture("deleting_a_day");
    desk_.dismiss();
    desk_.desktop.awaitFront(Desk::kWindow);
    EXPECT_TRUE(std::filesystem::exists(past("mp3"))) << "the person thought better of it";

    openMenu();
    desk_.confirm();
    EXPECT_TRUE(desk_.eventuallySays("Sonavault: deleted Sonavault_2025-03-01.mp3"))
        << desk_.program->text();
    EXPECT_TRUE(eventually([&] {
        return !std::filesystem::exists(past("mp3")) && !std::filesystem::exists(past("json")) &&
               !std::filesystem::exists(past("csv"));
    }));
    EXPECT_TRUE(std::filesystem::exists(desk_.station.dayFile("mp3")));
    EXPECT_TRUE(desk_.desktop.awaitSight([&](const ScreenPicture& screen) {
        return screen.at(ground) == pixelOf(kColorDateListBG);
    })) << "the row is gone";
}

// The timeline

TEST_F(DeskTest, clicks_on_lanes_bar_markers_and_buttons_move_the_playhead) {
    openToday();
    EXPECT_TRUE(desk_.eventuallyShowsPlayheadAt(ReviewedDay::kStartsAt));
    desk_.desktop.click(desk_.places().onLane(Lane::hour, kBusinessHours));
    EXPECT_TRUE(desk_.eventuallyShowsPlayheadAt(kBusinessHours));
    desk_.desktop.click(desk_.places().onSummaryBar(4 * 3600));
    EXPECT_TRUE(desk_.eventuallyShowsPlayheadAt(4 * 3600));

    // Beside the middle of the note, and still the note's own second.
    Point note = desk_.places().onLane(Lane::custom, 7 * 3600);
    note.x += 2;
    desk_.desktop.click(note);
    EXPECT_TRUE(desk_.eventuallyShowsPlayheadAt(7 * 3600));
    desk_.desktop.takePicture("whole_day");

    // Previous: the end of the talk, and its beginning. Next: the end again.
    constexpr double kTalk = 6 * 3600 + 55 * 60;
    desk_.desktop.click(desk_.places().shuttle(0));
    desk_.desktop.click(desk_.places().shuttle(0));
    desk_.desktop.click(desk_.places().onLane(Lane::hour, 20 * 3600));
    EXPECT_TRUE(desk_.eventuallyShowsPlayheadAt(20 * 3600));
    desk_.desktop.click(desk_.places().shuttle(0));
    EXPECT_TRUE(desk_.eventuallyShowsPlayheadAt(7 * 3600));
    desk_.desktop.click(desk_.places().shuttle(0));
    desk_.desktop.click(desk_.places().shuttle(0));
    EXPECT_TRUE(desk_.eventuallyShowsPlayheadAt(kTalk));
    desk_.desktop.click(desk_.places().shuttle(2));
    desk_.desktop.click(desk_.places().shuttle(2));
    EXPECT_TRUE(desk_.eventuallyShowsPlayheadAt(7 * 3600));
}

TEST_F(DeskTest, the_wheel_and_the_presets_zoom_and_light_their_button) {
    openToday();
    EXPECT_TRUE(eventuallyOn({true, false, false, false, false}));
    const ScreenPicture whole = desk_.desktop.look();
    desk_.desktop.click(desk_.places().zoomPreset(2));
    // Away from the button, which looks another way under the pointer.
    desk_.desktop.moveTo({desk_.places().content().x + 700, desk_.places().content().y + 20});
    EXPECT_TRUE(eventuallyOn({false, false, true, false, false}));
    const Box axis = desk_.places().axis();
    EXPECT_TRUE(desk_.desktop.awaitSight([&](const ScreenPicture& screen) {
        return screen.differences(axis, whole) > 100;
    })) << "the ticks of an hour are others than those of a day";
    desk_.desktop.takePicture("one_hour");

    desk_.desktop.turnWheel(middleOf(desk_.places().lanes()), 2);
    EXPECT_TRUE(eventuallyOn(std::vector<bool>(5, false))) << "a factor of its own";
    desk_.desktop.click(desk_.places().zoomPreset(4));
    desk_.desktop.turnWheel(middleOf(desk_.places().lanes()), 3);
    EXPECT_TRUE(eventuallyOn({false, false, false, false, true})) << "it goes no further";

    desk_.desktop.turnWheel(middleOf(desk_.places().lanes()), -40);
    EXPECT_TRUE(eventuallyOn({true, false, false, false, false}));
    EXPECT_TRUE(desk_.desktop.awaitSight([&](const ScreenPicture& screen) {
        return screen.differences(axis, whole) == 0;
    })) << "the whole day again, as it was";
}

TEST_F(DeskTest, selections_are_dragged_resized_undone_and_deleted_by_a_long_press) {
    openToday();
    const DeskPlaces places = desk_.places();
    desk_.desktop.drag(places.onSummaryBar(8 * 3600), places.onSummaryBar(10 * 3600));
    EXPECT_TRUE(eventuallySelected(8 * 3600, 10 * 3600));
    desk_.desktop.drag(places.onSummaryBar(10 * 3600), places.onSummaryBar(12 * 3600));
    EXPECT_TRUE(eventuallySelected(8 * 3600, 12 * 3600));
    // From right to left, and another one.
    desk_.desktop.drag(places.onSummaryBar(18 * 3600), places.onSummaryBar(15 * 3600));
    EXPECT_TRUE(eventuallySelected(15 * 3600, 18 * 3600));
    EXPECT_TRUE(eventuallySelected(8 * 3600, 12 * 3600));
    desk_.desktop.takePicture("selections");

    desk_.desktop.hold(places.onSummaryBar(9 * 3600), 200ms);
    desk_.desktop.hold(places.onSummaryBar(16 * 3600), kLongPress);
    EXPECT_TRUE(eventuallyBare(16 * 3600));
    EXPECT_TRUE(eventuallySelected(8 * 3600, 12 * 3600)) << "a short press deletes nothing";
    desk_.desktop.press({"ctrl+z"});
    EXPECT_TRUE(eventuallySelected(15 * 3600, 18 * 3600));
    desk_.desktop.press({"ctrl+z", "ctrl+z"});
    EXPECT_TRUE(eventuallyBare(16 * 3600));
    EXPECT_TRUE(eventuallySelected(8 * 3600, 10 * 3600));
    desk_.desktop.press({"c"});
    EXPECT_TRUE(eventuallyBare(9 * 3600));
}

TEST_F(DeskTest, a_range_marked_by_the_mouse_is_exported_by_the_golden_button) {
    const auto folder = desk_.station.home() / "cuts";
    std::filesystem::create_directories(folder);
    desk_.station.choose("SonavaultLastExportFolder", folder.string());
    openToday();
    const std::string date = desk_.station.dayFile("mp3").stem().string().substr(10);
    const DeskPlaces places = desk_.places();
    desk_.desktop.click(places.onLane(Lane::custom, 7 * 3600));
    desk_.desktop.click(places.shuttle(3));
    desk_.desktop.press({"shift+Right", "shift+Right", "shift+Right"});
    desk_.desktop.click(places.shuttle(4));
    EXPECT_TRUE(desk_.desktop.awaitSight([&](const ScreenPicture& screen) {
        const Point button = places.exportButton();
        return screen.at({button.x - 110, button.y}) == pixelOf({0.97, 0.78, 0.2});
    })) << "the button is there once there is something to export";
    desk_.desktop.click(places.exportButton());
    desk_.confirm();
    desk_.desktop.awaitFront("Save Selections");
    desk_.desktop.takePicture("saving");
    desk_.desktop.fillIn("mine.mp3");
    desk_.desktop.press({"Return"});
    desk_.dismiss();
    desk_.desktop.awaitFront(Desk::kWindow);
    const auto cut = folder / "mine.mp3";
    ASSERT_TRUE(std::filesystem::exists(cut));
    EXPECT_TRUE(isPieceOf(cut, today_->audio));
    EXPECT_NEAR(listenTo(cut).durationSec(), 30, 0.1);
    EXPECT_EQ(burstsIn(cut).size(), 2U) << "and the one with which the cut begins";
}

TEST_F(DeskTest, the_summary_bar_is_dragged_higher_and_stays_so) {
    openToday();
    const Point handle = desk_.places().resizeHandle();
    desk_.desktop.drag(handle, {handle.x, handle.y - 70});
    EXPECT_TRUE(desk_.eventuallyPrefers("SonavaultActionBarHeight", "120"))
        << desk_.preference("SonavaultActionBarHeight");
    const auto isHigher = [&](const ScreenPicture& screen) {
        const Box bar = desk_.places(120).summaryBar();
        const Pixel rule = screen.at({bar.x + 30, bar.y});
        const Pixel above = screen.at({bar.x + 30, bar.y - 2});
        return above.brightness() - rule.brightness() > 20;
    };
    EXPECT_TRUE(desk_.desktop.awaitSight(isHigher));
    desk_.desktop.takePicture("higher_summary_bar");

    desk_.program.reset();
    desk_.open();
    EXPECT_TRUE(desk_.desktop.awaitSight(isHigher)) << "as it was left";
}

// Hover texts

TEST_F(DeskTest, the_status_line_tells_what_is_under_the_pointer_and_then_its_own_text_again) {
    openToday();
    const Box text = desk_.places().statusText();
    const auto goToNothing = [&] {
        const Box content = desk_.places().content();
        desk_.desktop.moveTo({content.x + 700, content.y + 20});
    };
    goToNothing();
    // From here on the line has nothing of its own to tell.
    ASSERT_TRUE(desk_.eventuallyIsCalm(text));
    const ScreenPicture before = desk_.desktop.look();
    const auto eventuallyChanged = [&](bool changed) {
        return desk_.desktop.awaitSight([&](const ScreenPicture& screen) {
            return (screen.differences(text, before) > 0) == changed;
        });
    };
    desk_.desktop.moveTo(desk_.places().zoomPreset(1));
    EXPECT_TRUE(eventuallyChanged(true));
    const ScreenPicture ofPreset = desk_.desktop.look();
    desk_.desktop.takePicture("hint");
    desk_.desktop.moveTo(desk_.places().onLane(Lane::custom, 7 * 3600));
    EXPECT_TRUE(desk_.desktop.awaitSight([&](const ScreenPicture& screen) {
        return screen.differences(text, ofPreset) > 0 && screen.differences(text, before) > 0;
    })) << "the note's own words";
    goToNothing();
    EXPECT_TRUE(eventuallyChanged(false));
}

// Airchecks

class DeskAircheckTest : public DeskTest {
  protected:
    DeskAircheckTest() {
        std::filesystem::create_directories(folder_);
        desk_.station.choose("SonavaultLastExportFolder", folder_.string());
    }

    std::string cards() const { return desk_.preference("SVScheduledAirchecks"); }
    bool eventuallyCards(const std::function<bool(const std::string&)>& areSo) const {
        return eventually([&] { return areSo(cards()); });
    }

    /// The question's two choices of an hour stand side by side above its buttons.
    void chooseHour(std::size_t index, const std::string& hour) const {
        constexpr double kAboveTheFoot = 76;
        constexpr double kFromTheMiddle[] = {-45, 130};
        const Box box = desk_.desktop.windowBox(Desk::kAlert);
        desk_.desktop.click(
            {middleOf(box).x + kFromTheMiddle[index], box.bottom() - kAboveTheFoot});
        desk_.desktop.typeOn(hour);
    }

    const std::filesystem::path folder_ = desk_.station.home() / "cuts";
};

TEST_F(DeskAircheckTest, one_is_built_of_the_hours_that_were_chosen) {
    openToday();
    desk_.desktop.press({"a"});
    desk_.desktop.awaitFront(Desk::kAlert);
    chooseHour(0, "06");
    chooseHour(1, "06");
    desk_.desktop.takePicture("building_an_aircheck");
    desk_.confirm();
    desk_.desktop.awaitFront("Save Aircheck");
    desk_.desktop.press({"Return"});
    desk_.dismiss();
    desk_.desktop.awaitFront(Desk::kWindow);
    const std::string date = desk_.station.dayFile("mp3").stem().string().substr(10);
    const auto cut = folder_ / ("Aircheck_Live_" + date + "_06-06.mp3");
    ASSERT_TRUE(std::filesystem::exists(cut)) << "named after the hours";
    EXPECT_TRUE(isPieceOf(cut, today_->audio));
    EXPECT_NEAR(listenTo(cut).durationSec(), 40 + 2 * 8, 0.1) << "the talk, and a little around it";
}

TEST_F(DeskAircheckTest, cards_are_named_added_and_removed_and_kept_at_once) {
    openToday();
    const DeskPlaces places = desk_.places();
    desk_.desktop.click(places.tab(1));
    desk_.desktop.click(places.inCard(0, 200, 270));
    desk_.desktop.fillIn("Morning show");
    desk_.desktop.press({"Return"});
    EXPECT_TRUE(eventuallyCards([](const std::string& all) {
        return all.find("Morning show") != std::string::npos;
    })) << cards();

    // Monday and Voicetracks are the second card's, below it.
    desk_.desktop.click(places.inCard(0, 531, 36));
    EXPECT_TRUE(eventuallyCards([](const std::string& all) {
        return all.find("New aircheck") != std::string::npos;
    })) << cards();
    desk_.desktop.click(places.inCard(1, 100, 213));
    EXPECT_TRUE(eventuallyCards([](const std::string& all) {
        return all.find("\\\"daysOfWeek\\\":[1]") != std::string::npos;
    })) << cards();
    desk_.desktop.click(places.inCard(0, 98, 102));
    EXPECT_TRUE(eventuallyCards([](const std::string& all) {
        return all.find("\\\"mode\\\":\\\"liveMic\\\"") != std::string::npos;
    })) << cards();
    desk_.desktop.takePicture("airchecks");

    desk_.desktop.click(places.inCard(0, 483, 36));
    EXPECT_TRUE(eventuallyCards([](const std::string& all) {
        return all.find("Morning show") == std::string::npos &&
               all.find("\\\"daysOfWeek\\\":[1]") != std::string::npos;
    })) << cards();

    // A key that is a command on the other tab is a letter here, and no command.
    desk_.desktop.click(places.inCard(0, 200, 270));
    desk_.desktop.fillIn("a e [");
    desk_.desktop.press({"Return"});
    EXPECT_TRUE(eventuallyCards([](const std::string& all) {
        return all.find("a e [") != std::string::npos;
    })) << cards();
    EXPECT_EQ(desk_.desktop.windowCount(Desk::kAlert), 0);
}

// The other windows

TEST_F(DeskTest, the_quality_is_chosen_in_the_settings_and_the_program_ends_with_its_main_window) {
    openToday();
    const auto size = std::filesystem::file_size(today_->audio);
    desk_.desktop.click(desk_.places().settingsButton());
    desk_.desktop.awaitFront(kSettings);
    const Box settings = desk_.desktop.windowBox(kSettings);
    EXPECT_EQ(settings.width, 580);
    EXPECT_EQ(settings.height, 320);
    // The rightmost end of the slider, which stands 150 above the window's foot.
    desk_.desktop.click({settings.x + 60 + 450, settings.bottom() - 160});
    EXPECT_TRUE(desk_.eventuallyPrefers("SVQualityLevel", "4"));
    desk_.desktop.takePicture("settings");
    desk_.desktop.drag({settings.x + 60 + 450, settings.bottom() - 160},
                       {settings.x + 60 + 10, settings.bottom() - 160});
    EXPECT_TRUE(desk_.eventuallyPrefers("SVQualityLevel", "0"));

    desk_.desktop.activate(Desk::kWindow);
    desk_.desktop.closeFront(Desk::kWindow);
    EXPECT_EQ(desk_.program->waitForEnd(10s), 0);
    EXPECT_EQ(std::filesystem::file_size(today_->audio), size);
}

TEST_F(DeskTest, closing_the_settings_leaves_the_program_running) {
    desk_.open();
    desk_.desktop.click(desk_.places().settingsButton());
    desk_.desktop.closeFront(kSettings);
    desk_.desktop.awaitFront(Desk::kWindow);
    EXPECT_TRUE(desk_.program->isAlive());

    desk_.chooseFromMenu(0, 0);
    desk_.desktop.awaitFront(Desk::kAlert);
    desk_.desktop.takePicture("about");
    desk_.desktop.press({"Return"});
    desk_.desktop.awaitFront(Desk::kWindow);
}

TEST_F(DeskTest, the_help_opens_once_however_often_it_is_asked_for) {
    // Neither a browser is found nor a help program but the one that was built.
    desk_.station.setEnvironment({{"PATH", "/nonexistent"}});
    desk_.open();
    const auto clickHelp = [&] {
        desk_.desktop.activate(Desk::kWindow);
        desk_.desktop.click(desk_.places().helpButton());
        desk_.desktop.awaitFront(kHelp);
    };
    clickHelp();
    desk_.desktop.takePicture("help");
    EXPECT_TRUE(eventually([&] { return desk_.desktop.windowCount(kHelp) == 1; }));
    clickHelp();
    EXPECT_TRUE(eventually([&] { return desk_.desktop.windowCount(kHelp) == 1; }));
    desk_.desktop.closeFront(kHelp);
    desk_.desktop.awaitFront(Desk::kWindow);
    clickHelp();
}

// Sizes

TEST_F(DeskTest, the_least_window_holds_everything) {
    openToday();
    desk_.resize({1100, 600});
    const DeskPlaces places = desk_.places();
    EXPECT_TRUE(desk_.desktop.awaitSight([&](const ScreenPicture& screen) {
        const Pixel foot = screen.at({places.content().x + 300, places.content().bottom() - 3});
        return foot == Pixel{0, 0, 0} && presetsOn(screen)[0];
    })) << "the status bar is at the foot";
    // The lanes have their least height, and the foot of the timeline is out of sight.
    desk_.desktop.click(places.onLane(Lane::hour, 8 * 3600));
    const Point line = places.onLane(Lane::custom, 8 * 3600);
    EXPECT_TRUE(desk_.desktop.awaitSight([&](const ScreenPicture& screen) {
        return screen.count({line.x - 2, line.y, 4, 1}, pixelOf(kColorPlayhead)) >= 2;
    }));
    desk_.desktop.takePicture("least_size");
    desk_.desktop.click(places.zoomPreset(4));
    desk_.desktop.moveTo({places.content().x + 700, places.content().y + 20});
    EXPECT_TRUE(eventuallyOn({false, false, false, false, true}));
    desk_.desktop.takePicture("least_size_one_minute");
    desk_.desktop.click(places.zoomPreset(0));
    desk_.desktop.click(places.settingsButton());
    desk_.desktop.closeFront(kSettings);

    desk_.desktop.awaitFront(Desk::kWindow);
    desk_.resize({1300, 800});
    desk_.desktop.resizeWindow(Desk::kWindow, {800, 400});
    EXPECT_TRUE(eventually([&] { return desk_.desktop.windowBox(Desk::kWindow).width == 1100; }))
        << "and it gets no smaller";
}

}  // namespace
}  // namespace sonavault::testing
