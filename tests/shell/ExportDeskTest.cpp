#include "shell/ExportDesk.h"

#include <QTest>
#include <algorithm>

#include "shell/ShellFixture.h"
#include "store/MarkerLogWriter.h"

namespace sonavault::testing {
namespace {

class ExportDeskTest : public ShellFixture {
  protected:
    ExportDeskTest() {
        // 360 s from 10:00:00.
        haveDay("2026-03-01", {.frames = 10'000,
                               .log = markerRow("10:01:00", "mic_start", "News", 0) +
                                      markerRow("10:02:00", "mic_end", "News", 0),
                               .startOffsetSec = 36'000});
    }

    void select(double from, double to) {
        auto& selections = controller().timeline().selections();
        selections.append({from}, {to});
    }

    bool awaitFile(const std::filesystem::path& file) {
        return QTest::qWaitFor(
            [&] {
                tickOnce();
                return std::filesystem::exists(file) && !controller().exports().progress();
            },
            10'000);
    }

    const std::filesystem::path output_ = temp_ / "cut.mp3";
};

TEST_F(ExportDeskTest, saves_the_selections_where_the_person_said_and_shows_the_file) {
    launch();
    select(36'060, 36'090);
    dialogs_.output = output_;
    controller().exports().exportSelections();
    EXPECT_EQ(statusText(), "Exporting…");
    ASSERT_TRUE(awaitFile(output_));
    ASSERT_EQ(dialogs_.panels.size(), 1U);
    EXPECT_EQ(dialogs_.panels.front().nameField, "2026-03-01_selections.mp3");
    ASSERT_EQ(alerts_.shown.size(), 2U);
    EXPECT_EQ(alerts_.shown[0].message, "Save 1 selection into a single file");
    EXPECT_EQ(alerts_.shown[0].buttons, (QStringList{"Browse...", "Cancel"}));
    EXPECT_EQ(alerts_.shown[1].message, "Saved");
    EXPECT_EQ(revealed_, std::vector{output_});
    EXPECT_EQ(statusText(), "");
    const auto cut = readFile(output_);
    EXPECT_EQ(cut.size(), 834U * 108) << "30 s in frames of 36 ms, widened to whole ones";
    EXPECT_EQ(readFile(fileOf("2026-03-01")).find(cut), 1666U * 108);
    EXPECT_EQ(preferences_.text(kLastExportFolderKey), output_.parent_path().string());
}

TEST_F(ExportDeskTest, warns_when_an_export_fails) {
    launch();
    select(36'060, 36'090);
    dialogs_.output = temp_ / "absent" / "cut.mp3";
    controller().exports().exportSelections();
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            tickOnce();
            return alerts_.shown.size() == 2;
        },
        10'000));
    EXPECT_EQ(alerts_.shown[1].message, "Export failed");
    EXPECT_EQ(alerts_.shown[1].style, Alert::warning);
}

TEST_F(ExportDeskTest, announces_a_compiled_aircheck_on_the_hub) {
    launch();
    dialogs_.aircheck = {.button = 0, .startHour = 0, .endHour = 23};
    dialogs_.output = output_;
    controller().exports().exportAircheck();
    ASSERT_TRUE(awaitFile(output_));
    ASSERT_EQ(hub_.notified.size(), 1U);
    EXPECT_EQ(hub_.notified.front().about, kSwitchboardTopicAircheckSaved);
    EXPECT_EQ(hub_.notified.front().what["source"].toString(), "manual");
    EXPECT_EQ(hub_.notified.front().what["outputPath"].toString().toStdString(), output_.string());
    EXPECT_EQ(hub_.notified.front().what["segmentCount"].toInt(), 1);
    EXPECT_EQ(hub_.notified.front().what["totalDurationSec"].toDouble(), 76);
}

TEST_F(ExportDeskTest, runs_a_stored_card_that_is_due_at_the_first_tick_and_once_only) {
    const ScheduledAircheckCard card{.id = "a",
                                     .label = "Morning",
                                     .daysOfWeek = {1, 2, 3, 4, 5, 6, 7},
                                     .startHour = 10,
                                     .endHour = 10,
                                     .mode = "liveMic",
                                     .active = true};
    preferences_.setBytes(kScheduledAirchecksKey, encodeCards({card}));
    launch();
    tickOnce();
    const auto aircheck = temp_ / "home/Calderwave/Station/Logs/Airchecks" /
                          "Aircheck_Morning_Live_2026-03-02_10-10.mp3";
    ASSERT_TRUE(awaitFile(aircheck));
    const auto announced = [this] {
        return std::count_if(hub_.notified.begin(), hub_.notified.end(), [](const auto& said) {
            return said.about == kSwitchboardTopicAircheckSaved;
        });
    };
    EXPECT_EQ(announced(), 1);
    std::filesystem::remove(aircheck);
    for (int i = 0; i < 61 * 20; ++i) {
        passSeconds(0.05);
        ASSERT_FALSE(controller().exports().progress()) << "it runs again";
    }
    mainQueue_.runAll();
    EXPECT_EQ(announced(), 1);
    EXPECT_FALSE(std::filesystem::exists(aircheck));
    EXPECT_TRUE(alerts_.shown.empty());
}

TEST_F(ExportDeskTest, does_not_let_a_cut_replace_what_is_recorded) {
    launch();
    select(36'060, 36'090);
    dialogs_.output = dayFile();
    controller().exports().exportSelections();
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            tickOnce();
            return alerts_.shown.size() == 2;
        },
        10'000));
    EXPECT_EQ(alerts_.shown[1].information, "Could not write output: it is a day's recording");
    EXPECT_FALSE(std::filesystem::exists(dayFile()));
}

TEST_F(ExportDeskTest, always_has_a_card_to_fill_in) {
    launch();
    EXPECT_EQ(controller().exports().schedule().scheduledAirchecks().size(), 1U);
}

}  // namespace
}  // namespace sonavault::testing
