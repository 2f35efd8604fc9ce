// What the parts of the window do to each other.

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QTest>
#include <QWheelEvent>
#include <set>
#include <span>

#include "platform/Mp3Header.h"
#include "recorder/SVQualityLevel.h"
#include "review/TimelineMapping.h"
#include "shell/QualitySlider.h"
#include "shell/ShellFixture.h"
#include "store/MarkerLogWriter.h"
#include "views/ViewProbe.h"

namespace sonavault::testing {
namespace {

constexpr auto kNoMarkers =
    "Audio came from the computer's line input, so no markers are visible for this recording. All "
    "other features are available.";

class WindowStoriesTest : public ShellFixture {
  protected:
    LogsTabView& tab() { return controller().timeline().view(); }
    LanesInnerView& inner() { return tab().lanesScroll().lanesInnerView(); }
    double playhead() { return controller().review().day().playheadSec(); }
    QWidget& named(const char* name) {
        auto* found = controller().rootView().findChild<QWidget*>(QString::fromLatin1(name));
        if (!found) throw std::runtime_error(std::string("no view ") + name);
        return *found;
    }
    void click(const char* name) { dynamic_cast<QAbstractButton&>(named(name)).click(); }

    QString emptyState() { return dynamic_cast<QLabel&>(named("emptyStateLabel")).text(); }

    static std::vector<QWidget*> settingsWindows() {
        std::vector<QWidget*> found;
        for (QWidget* each : QApplication::topLevelWidgets())
            if (each->windowTitle() == QLatin1String("Sonavault Settings")) found.push_back(each);
        return found;
    }
    /// Of the settings that were opened.
    static QualitySlider& slider() { return *allOf<QualitySlider>(*settingsWindows().at(0)).at(0); }

    /// Those that the file's frames name, each in its header. Units: kbps
    static std::set<int> bitratesOf(const std::filesystem::path& file) {
        const std::string bytes = readFile(file);
        const std::span data(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        std::set<int> found;
        std::size_t place = 0;
        while (place < data.size()) {
            const auto header = parseMp3Header(data.subspan(place));
            if (!header) ADD_FAILURE() << "no frame at byte " << place;
            if (!header) break;
            found.insert(header->bitrateKbps);
            place += static_cast<std::size_t>(header->frameBytes);
        }
        return found;
    }

    QPoint inSummaryBar(double x) {
        const Box bar = inner().summaryBarFrame();
        return {static_cast<int>(x), static_cast<int>(bar.y + bar.height / 2)};
    }
    void turnWheel(QWidget& over, int notches) {
        const QPointF at(over.width() / 2.0, 10);
        QWheelEvent event(at, over.mapToGlobal(at), QPoint(), QPoint(0, 120 * notches),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&over, &event);
    }
};

TEST_F(WindowStoriesTest, a_click_at_the_end_of_the_axis_stays_within_the_day) {
    haveDay("2026-03-01");
    launch();
    QTest::mouseClick(&inner(), Qt::LeftButton, {}, {inner().width() - 1, inner().height() - 5});
    EXPECT_GT(playhead(), 86'000);
    controller().review().playback().jumpTo(secAt(inner().width() + 500.0, inner().width()));
    EXPECT_DOUBLE_EQ(playhead(), 86'400 - 0.01);
}

TEST_F(WindowStoriesTest, the_hours_alone_fill_the_height_above_the_summary_bar) {
    haveDay("2026-03-01");
    launch();
    for (const char* lane : {"break", "vt", "mic", "eas", "custom"}) click(lane);
    EXPECT_EQ(controller().timeline().filters().visibleLanes(), LaneSet{Lane::hour});
    const Size clip = tab().lanesScroll().clipSize();
    EXPECT_DOUBLE_EQ(inner().summaryBarFrame().y, clip.height - 50 - kTimeAxisHeight);
    EXPECT_EQ(inner().height(), static_cast<int>(clip.height));
}

TEST_F(WindowStoriesTest, a_wheel_zooms_and_takes_every_preset_off) {
    haveDay("2026-03-01");
    launch();
    turnWheel(*tab().lanesScroll().viewport(), 1);
    EXPECT_GT(controller().timeline().zoom().zoomMult(), 1.1);
    EXPECT_FALSE(controller().timeline().zoom().activePreset());
    EXPECT_GT(inner().width(), tab().lanesScroll().clipSize().width);
}

TEST_F(WindowStoriesTest, a_drag_in_the_summary_bar_makes_a_selection_and_its_button) {
    haveDay("2026-03-01");
    launch();
    EXPECT_FALSE(named("exportSelectionsButton").isVisible());
    QTest::mousePress(&inner(), Qt::LeftButton, {}, inSummaryBar(200));
    QTest::mouseMove(&inner(), inSummaryBar(260));
    QTest::mouseMove(&inner(), inSummaryBar(300));
    QTest::mouseRelease(&inner(), Qt::LeftButton, {}, inSummaryBar(300));
    ASSERT_EQ(controller().timeline().selections().selections().size(), 1U);
    EXPECT_NEAR(controller().timeline().selections().selections()[0].durationSec(),
                100 * 86'400.0 / inner().width(), 86'400.0 / inner().width());
    EXPECT_TRUE(named("exportSelectionsButton").isVisible());
}

TEST_F(WindowStoriesTest, the_height_of_the_summary_bar_is_kept_for_the_next_launch) {
    haveDay("2026-03-01");
    launch();
    QWidget& handle = named("actionBarResizeHandle");
    QTest::mousePress(&handle, Qt::LeftButton, {}, {50, 4});
    QTest::mouseMove(&handle, {50, -36});
    QTest::mouseRelease(&handle, Qt::LeftButton, {}, {50, 4});
    const double height = controller().timeline().actionBarHeight();
    EXPECT_GT(height, 60);
    EXPECT_EQ(preferences_.real(kActionBarHeightKey), height);
    quit();
    launch();
    EXPECT_EQ(controller().timeline().actionBarHeight(), height);
}

TEST_F(WindowStoriesTest, the_first_tick_fires_every_throttled_job) {
    haveDay("2026-03-02");
    const ScheduledAircheckCard card{.id = "a",
                                     .label = "Morning",
                                     .daysOfWeek = {1},
                                     .startHour = 0,
                                     .endHour = 0,
                                     .mode = "liveMic",
                                     .active = true};
    preferences_.setBytes(kScheduledAirchecksKey, encodeCards({card}));
    launch();
    writeFile(fileOf("2026-03-02", "csv"),
              kMarkerLogHeader + markerRow("00:10:00", "break_start", "Spots", 20));
    ASSERT_EQ(hub_.timesSet[kSwitchboardStateKeyCurrentRecording], 0);
    tickOnce();
    EXPECT_EQ(controller().review().days().rowOf("2026-03-02")->markerCount, 1);
    EXPECT_EQ(controller().exports().schedule().scheduledAirchecks().at(0).lastRunDate,
              "2026-03-02");
    EXPECT_EQ(hub_.timesSet[kSwitchboardStateKeyCurrentRecording], 1);
}

TEST_F(WindowStoriesTest, a_note_takes_the_place_of_the_sentence_over_empty_lanes) {
    haveDay("2026-03-01", {.log = markerRow("00:00:00", "hour", "", 0)});
    launch();
    EXPECT_TRUE(named("emptyStateLabel").isVisible());
    EXPECT_EQ(emptyState(), kNoMarkers);
    writeFile(fileOf("2026-03-01", "csv"),
              kMarkerLogHeader + markerRow("00:10:00", "custom", "Guest", 0));
    controller().review().day().loadMarkersForLoadedRecording();
    EXPECT_FALSE(named("emptyStateLabel").isVisible());
}

TEST_F(WindowStoriesTest, the_sentence_over_empty_lanes_is_there_before_any_day_is) {
    launch();
    ASSERT_FALSE(controller().review().day().loadedFileURL());
    EXPECT_TRUE(named("emptyStateLabel").isVisible());
    EXPECT_EQ(emptyState(), kNoMarkers);
}

TEST_F(WindowStoriesTest, what_the_recorder_says_under_a_hover_text_is_lost_with_it) {
    launch();
    const std::string before = statusText();
    controller().rootView().statusBar().showHint("Jump to the next marker on the timeline.");
    controller().setSourceCadenzoTCP();
    EXPECT_EQ(statusText(), "Listening for Cadenzo (audio :9171, markers :9172)…");
    controller().rootView().statusBar().restoreStatus();
    EXPECT_EQ(statusText(), before);
}

TEST_F(WindowStoriesTest, another_quality_leaves_the_running_recording_as_it_is) {
    const ExpectedQtWarnings toTheFront("This plugin does not support raise()");
    launch();
    controller().toggleRecordingFromMenu();
    playSeconds(2, 0.5F);
    const auto manifest = readFile(fileOf("2026-03-02", "json"));
    click("statusBarSettings");
    QTest::keyClick(&slider(), Qt::Key_End);
    EXPECT_EQ(preferences_.integer(kQualityLevelKey), 4);
    const auto before = std::filesystem::file_size(dayFile());
    playSeconds(4, 0.5F);
    EXPECT_TRUE(isRecording());
    EXPECT_EQ(readFile(fileOf("2026-03-02", "json")), manifest);
    EXPECT_NE(manifest.find("\"bitrate_kbps\": 24"), std::string::npos);
    EXPECT_GE(std::filesystem::file_size(dayFile()), before + 9'000) << "3 s at the least";
    EXPECT_EQ(bitratesOf(dayFile()), std::set{24});
}

TEST_F(WindowStoriesTest, the_settings_are_one_window_that_reopens_as_it_was_left) {
    const ExpectedQtWarnings toTheFront("This plugin does not support raise()");
    launch();
    EXPECT_TRUE(settingsWindows().empty());
    click("statusBarSettings");
    ASSERT_EQ(settingsWindows().size(), 1U);
    QWidget* const window = settingsWindows().front();
    EXPECT_TRUE(window->isVisible());
    QTest::keyClick(&slider(), Qt::Key_Right);
    window->close();
    EXPECT_FALSE(window->isVisible());
    click("statusBarSettings");
    EXPECT_EQ(settingsWindows(), std::vector{window});
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(slider().value(), 3);
}

TEST_F(WindowStoriesTest, midnight_brings_the_new_day_into_the_list_by_itself) {
    launch();
    clock_.set(at("2026-03-02T22:59:50.000Z"));  // 23:59:50 at the station
    controller().toggleRecordingFromMenu();
    playSeconds(5, 0.5F);
    passSeconds(2.2);
    playSeconds(10, 0.5F);
    passSeconds(4.5);
    playSeconds(3, 0.5F);
    passSeconds(2.2);
    EXPECT_TRUE(controller().review().days().rowOf("2026-03-03"));
    EXPECT_EQ(controller().review().days().selectedDate(), "2026-03-03");
}

TEST_F(WindowStoriesTest, the_question_mark_asks_for_help) {
    launch();
    click("helpButton");
    EXPECT_EQ(timesHelped_, 1);
}

}  // namespace
}  // namespace sonavault::testing
