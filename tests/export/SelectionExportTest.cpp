#include "export/SelectionExport.h"

#include "export/ExportFixture.h"
#include "export/LiteralFrameWalk.h"

namespace sonavault::testing {
namespace {

constexpr std::size_t kCancel = 1;

class SelectionExportTest : public ExportFixture {
  protected:
    void exportTo(const std::filesystem::path& output) {
        desk_.output = output;
        selectionExport_.exportSelections();
        finishExports();
    }

    SelectionExport selectionExport_{desk_, desk_, folder_, exporter_};
};

TEST_F(SelectionExportTest, does_nothing_at_all_without_selections) {
    loadDay(100);
    exportTo(home_ / "cut.mp3");
    EXPECT_TRUE(desk_.alerts.empty());
    EXPECT_TRUE(desk_.panels.empty());
    EXPECT_TRUE(desk_.status.empty());
}

TEST_F(SelectionExportTest, sums_up_one_selection) {
    loadDay(200);
    desk_.chosen = {selection(90, 0)};
    exportTo(home_ / "cut.mp3");
    ASSERT_EQ(desk_.alerts.size(), 2u);
    EXPECT_EQ(desk_.alerts[0],
              (ExportAlert{.message = "Save 1 selection into a single file",
                           .information =
                               "  1. 00:00:00 – 00:01:30   (00:01:30)\n\nTotal length: "
                               "00:01:30\n\nClick Browse to choose where the combined MP3 should "
                               "be saved.",
                           .buttons = {"Browse...", "Cancel"}}));
    ASSERT_EQ(desk_.panels.size(), 1u);
    EXPECT_EQ(desk_.panels[0], (SavePanel{.title = "Save Selections",
                                          .message = "Save 1 selection into one MP3 file",
                                          .directory = stationFolder(),
                                          .nameField = "2026-05-08_selections.mp3"}));
    EXPECT_EQ(desk_.alerts[1],
              (ExportAlert{.message = "Saved",
                           .information = "Wrote 1 selection (total 00:01:30) to:\n\n" +
                                          (home_ / "cut.mp3").string(),
                           .buttons = {"Reveal in Finder", "OK"}}));
    EXPECT_EQ(desk_.status, (std::vector<std::string>{"Exporting…", ""}));
}

TEST_F(SelectionExportTest, lists_several_in_order_of_time_and_counts_overlaps_twice) {
    loadDay(200);
    desk_.chosen = {selection(40, 100), selection(70, 10)};
    exportTo(home_ / "cut.mp3");
    ASSERT_EQ(desk_.alerts.size(), 2u);
    EXPECT_EQ(desk_.alerts[0].message, "Save 2 selections into a single file");
    EXPECT_EQ(desk_.alerts[0].information,
              "  1. 00:00:10 – 00:01:10   (00:01:00)\n  2. 00:00:40 – 00:01:40   (00:01:00)\n\n"
              "Total length: 00:02:00\n\nClick Browse to choose where the combined MP3 should be "
              "saved.");
    EXPECT_EQ(desk_.panels[0].message, "Save 2 selections into one MP3 file");
    EXPECT_TRUE(desk_.alerts[1].information.starts_with("Wrote 2 selections (total 00:02:00)"));
    // 90 s, widened to whole frames of 36 ms.
    EXPECT_EQ(readFile(home_ / "cut.mp3"), LiteralFrameWalk::cut(day_, {{10, 100}}));
}

TEST_F(SelectionExportTest, counts_the_selections_that_there_are_when_the_panel_closes) {
    loadDay(200);
    desk_.chosen = {selection(0, 90)};
    desk_.whileChoosing = [this] { desk_.chosen.push_back(selection(100, 110)); };
    exportTo(home_ / "cut.mp3");
    ASSERT_EQ(desk_.alerts.size(), 2u);
    EXPECT_EQ(desk_.alerts[0].message, "Save 1 selection into a single file");
    EXPECT_TRUE(desk_.alerts[1].information.starts_with("Wrote 2 selections (total 00:01:30)"))
        << desk_.alerts[1].information;
    EXPECT_EQ(readFile(home_ / "cut.mp3"), LiteralFrameWalk::cut(day_, {{0, 90}, {100, 110}}));
}

TEST_F(SelectionExportTest, shows_the_file_when_asked_to_and_not_otherwise) {
    loadDay(100);
    desk_.chosen = {selection(1, 2)};
    exportTo(home_ / "one.mp3");
    EXPECT_EQ(desk_.revealed, std::vector{home_ / "one.mp3"});

    desk_.onAlert = [this] { desk_.alertAnswer = desk_.alerts.back().message == "Saved" ? 1 : 0; };
    exportTo(home_ / "two.mp3");
    EXPECT_EQ(desk_.revealed.size(), 1u);
}

TEST_F(SelectionExportTest, stops_when_the_summary_is_cancelled) {
    loadDay(100);
    desk_.chosen = {selection(1, 2)};
    desk_.alertAnswer = kCancel;
    exportTo(home_ / "cut.mp3");
    EXPECT_TRUE(desk_.panels.empty());
    EXPECT_TRUE(desk_.status.empty());
}

TEST_F(SelectionExportTest, changes_nothing_when_the_panel_is_cancelled) {
    loadDay(100);
    desk_.chosen = {selection(1, 2)};
    selectionExport_.exportSelections();
    EXPECT_EQ(desk_.panels.size(), 1u);
    EXPECT_TRUE(desk_.status.empty());
    EXPECT_TRUE(exporter_.underWay().empty());
    EXPECT_FALSE(preferences_.contains(kLastExportFolderKey));
}

TEST_F(SelectionExportTest, remembers_the_folder_even_when_the_export_fails) {
    desk_.loaded = dayFile("m4a");
    desk_.chosen = {selection(1, 2)};
    std::filesystem::create_directories(home_ / "cuts");
    exportTo(home_ / "cuts" / "cut.mp3");
    EXPECT_EQ(preferences_.text(kLastExportFolderKey), (home_ / "cuts").string());
    selectionExport_.exportSelections();
    EXPECT_EQ(desk_.panels.back().directory, home_ / "cuts");
}

TEST_F(SelectionExportTest, refuses_a_legacy_day_at_the_very_end) {
    desk_.loaded = dayFile("m4a");
    desk_.chosen = {selection(1, 2)};
    exportTo(home_ / "cut.mp3");
    EXPECT_EQ(desk_.panels.size(), 1u);
    EXPECT_EQ(desk_.alerts.back(),
              (ExportAlert{.isWarning = true,
                           .message = "Export failed",
                           .information = "Export only supports MP3 sources right now. The loaded "
                                          "recording is .m4a (legacy). Open or record an MP3 "
                                          "first.",
                           .buttons = {"OK"}}));
    EXPECT_TRUE(desk_.revealed.empty());
    EXPECT_EQ(desk_.status, (std::vector<std::string>{"Exporting…", ""}));
}

TEST_F(SelectionExportTest, applies_selections_of_another_day_to_the_one_that_is_loaded) {
    desk_.chosen = {selection(10, 20)};
    desk_.date = "2026-05-07";
    loadDay(100);
    desk_.offset = {5};
    exportTo(home_ / "cut.mp3");
    EXPECT_EQ(desk_.panels[0].nameField, "2026-05-07_selections.mp3");
    EXPECT_EQ(readFile(home_ / "cut.mp3"), LiteralFrameWalk::cut(day_, {{5, 15}}));
}

TEST_F(SelectionExportTest, counts_in_the_end_what_was_selected_when_the_panel_closed) {
    loadDay(200);
    desk_.chosen = {selection(10, 20)};
    desk_.whileChoosing = [this] { desk_.chosen.push_back(selection(50, 60)); };
    exportTo(home_ / "cut.mp3");
    ASSERT_EQ(desk_.alerts.size(), 2u);
    EXPECT_EQ(desk_.panels[0].message, "Save 1 selection into one MP3 file");
    // The total is of the summary that the person confirmed.
    EXPECT_EQ(desk_.alerts[1].information,
              "Wrote 2 selections (total 00:00:10) to:\n\n" + (home_ / "cut.mp3").string());
    EXPECT_EQ(readFile(home_ / "cut.mp3"), LiteralFrameWalk::cut(day_, {{10, 20}, {50, 60}}));
}

TEST_F(SelectionExportTest, says_nothing_once_it_is_gone) {
    loadDay(100);
    desk_.chosen = {selection(1, 2)};
    desk_.output = home_ / "cut.mp3";
    {
        SelectionExport brief(desk_, desk_, folder_, exporter_);
        brief.exportSelections();
    }
    finishExports();
    EXPECT_EQ(desk_.alerts.size(), 1u);
    EXPECT_EQ(desk_.status, std::vector<std::string>{"Exporting…"});
}

}  // namespace
}  // namespace sonavault::testing
