#include "views/LogsTabView.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLabel>
#include <QScrollBar>
#include <array>
#include <cmath>

#include "Clicks.h"
#include "views/Hints.h"
#include "views/PassThroughLabel.h"
#include "views/Theme.h"

namespace sonavault::testing {
namespace {

class QuietSelectionsHost final : public SelectionsHost {
  public:
    DaySeconds playheadSec() const override { return {}; }
    void redrawSummaryBar() override {}
    void rebuildSummaryBarCursors() override {}
    void showSelectionInfo(const std::string&, bool) override {}
    void showExportSelectionsButton(const std::optional<std::string>&) override {}
};

/// A day without anything in it.
class EmptyDay final : public TimelineHost, public DateListHost {
  public:
    double zoom = 1;
    double barHeight = 50;
    LaneSet lanes = allLanes();

    DaySeconds playheadSec() const override { return {}; }
    double zoomMult() const override { return zoom; }
    const LaneSet& visibleLanes() const override { return lanes; }
    double actionBarHeight() const override { return barHeight; }
    const LaneMarkers& laneMarkers() const override { return markers_; }
    SummaryScene summaryScene() const override {
        SummaryScene scene;
        scene.zoomMult = zoom;
        scene.selections = &selections_.selections();
        return scene;
    }
    Selections& selections() override { return selections_; }
    std::unique_ptr<MainTimer> makeMainTimer() override { return std::make_unique<QtMainTimer>(); }
    void jumpTo(DaySeconds) override {}
    void performZoom(double, double) override {}
    void resizeActionBar(double) override {}
    void keepActionBarHeight() override {}

    bool isRecording() const override { return false; }
    float recordingInputDb() const override { return -160; }
    std::string todayDateString() const override { return "2024-05-06"; }
    void selectAndLoadRecording(const std::string&) override {}
    void toggleRecordingFromMenu() override {}
    void deleteRecording(const DailyRecording&) override {}

  private:
    QuietSelectionsHost selectionsHost_;
    Selections selections_{selectionsHost_};
    LaneMarkers markers_;
};

class LogsTabViewTest : public ::testing::Test {
  protected:
    LogsTabViewTest() {
        tab_.resize(1480, 748);
        tab_.show();
    }

    QWidget& view(const char* name) { return viewNamed<QWidget>(tab_, name); }
    QAbstractButton& exportButton() {
        return viewNamed<QAbstractButton>(tab_, "exportSelectionsButton");
    }

    /// Where the summary bar begins in the tab.
    double summaryTop() {
        LanesInnerView& inner = tab_.lanesScroll().lanesInnerView();
        return inner.mapTo(&tab_, QPoint(0, 0)).y() + inner.summaryBarFrame().y;
    }

    /// The frames of all regions.
    std::vector<QRect> frames() {
        std::vector<QRect> all;
        for (const char* name : {"dateListScroll", "filterBarView", "laneLabelsColumn",
                                 "lanesScrollView", "zoomBarView", "transportView", "vuMeterL",
                                 "vuMeterR", "actionBarResizeHandle", "emptyStateLabel"})
            all.push_back(view(name).geometry());
        return all;
    }

    EmptyDay day_;
    LogsTabView tab_{day_, day_, {}, nullptr};
};

TEST_F(LogsTabViewTest, gives_every_region_its_place) {
    EXPECT_EQ(tab_.dateList().geometry(), QRect(0, 0, 280, 748));
    EXPECT_EQ(tab_.filterBar().geometry(), QRect(280, 0, 1200, 46));
    EXPECT_EQ(view("laneLabelsColumn").geometry(), QRect(280, 46, 76, 538));
    EXPECT_EQ(tab_.lanesScroll().geometry(), QRect(356, 46, 1082, 538));
    EXPECT_EQ(tab_.zoomBar().geometry(), QRect(280, 584, 1200, 44));
    EXPECT_EQ(tab_.transport().geometry(), QRect(280, 628, 1200, 120));
    EXPECT_EQ(exportButton().geometry(), QRect(1222, 532, 240, 38));
}

TEST_F(LogsTabViewTest, the_rows_fill_what_is_seen_of_the_timeline) {
    EXPECT_EQ(tab_.lanesScroll().clipSize(), (Size{1082, 538}));
    EXPECT_EQ(tab_.lanesScroll().lanesInnerView().timelineWidth(), 1082);
    EXPECT_EQ(summaryTop(), 46 + 538 - 32 - 50);
}

TEST_F(LogsTabViewTest, a_zoom_makes_the_timeline_wider_and_nothing_else) {
    const auto before = frames();
    day_.zoom = 24;
    tab_.layOutLogsTab();
    EXPECT_EQ(tab_.lanesScroll().lanesInnerView().timelineWidth(), 24 * 1082);
    EXPECT_EQ(frames(), before);
}

TEST_F(LogsTabViewTest, the_meters_and_the_handle_follow_the_height_of_the_summary_bar) {
    EXPECT_EQ(tab_.vuMeterL().geometry(), QRect(1444, 52, 12, 444));
    EXPECT_EQ(tab_.vuMeterR().geometry(), QRect(1460, 52, 12, 444));
    EXPECT_EQ(view("actionBarResizeHandle").geometry(), QRect(280, 498, 1200, 8));
    day_.barHeight = 150;
    tab_.layOutLogsTab();
    EXPECT_EQ(summaryTop(), 402);
    EXPECT_EQ(tab_.vuMeterL().geometry(), QRect(1444, 52, 12, 344));
    EXPECT_EQ(view("actionBarResizeHandle").geometry(), QRect(280, 398, 1200, 8));
}

TEST_F(LogsTabViewTest, without_lanes_the_meters_keep_their_least_height) {
    day_.lanes = {};
    tab_.layOutLogsTab();
    EXPECT_EQ(summaryTop(), 46);
    EXPECT_EQ(tab_.vuMeterL().height(), 40);
}

TEST_F(LogsTabViewTest, is_laid_out_anew_when_the_window_changes) {
    tab_.resize(2560, 1268);
    EXPECT_EQ(tab_.transport().geometry(), QRect(280, 1148, 2280, 120));
    EXPECT_EQ(tab_.lanesScroll().lanesInnerView().timelineWidth(), 2560 - 280 - 76 - 42);
    EXPECT_EQ(exportButton().geometry().topLeft(), QPoint(2560 - 240 - 18, 1268 - 164 - 14 - 38));
}

TEST_F(LogsTabViewTest, the_least_window_holds_all_of_it) {
    tab_.resize(1100, 428);
    EXPECT_EQ(tab_.lanesScroll().geometry(), QRect(356, 46, 702, 218));
    EXPECT_GE(tab_.vuMeterL().height(), 40);
    for (const QRect& frame : frames()) EXPECT_TRUE(tab_.rect().contains(frame));
}

TEST_F(LogsTabViewTest, what_hangs_on_the_summary_bar_scrolls_with_it) {
    tab_.resize(1100, 428);
    const QRect handle = view("actionBarResizeHandle").geometry();
    EXPECT_EQ(handle.y(), summaryTop() - 4);
    QScrollBar& scrollBar = *tab_.lanesScroll().verticalScrollBar();
    ASSERT_GE(scrollBar.maximum(), 50);
    scrollBar.setValue(50);
    EXPECT_EQ(view("actionBarResizeHandle").geometry(), handle.translated(0, -50));
    EXPECT_EQ(view("actionBarResizeHandle").y(), summaryTop() - 4);
}

TEST_F(LogsTabViewTest, a_tab_that_was_hidden_during_a_resize_is_right_when_it_is_shown) {
    QWidget window;
    LogsTabView tab(day_, day_, {}, &window);
    window.resize(1480, 748);
    tab.hide();
    window.show();
    tab.setGeometry(window.rect());
    tab.layOutLogsTab();
    tab.show();
    EXPECT_EQ(tab.lanesScroll().lanesInnerView().timelineWidth(), 1082);
    EXPECT_EQ(tab.vuMeterL().geometry(), QRect(1444, 52, 12, 444));
}

TEST_F(LogsTabViewTest, the_export_button_is_there_only_with_a_title) {
    EXPECT_TRUE(exportButton().isHidden());
    tab_.showExportSelectionsButton("Export 3 selections to file");
    EXPECT_TRUE(exportButton().isVisible());
    EXPECT_EQ(exportButton().text(), QStringLiteral("Export 3 selections to file"));
    EXPECT_EQ(exportButton().accessibleName(), exportButton().text());
    tab_.showExportSelectionsButton(std::nullopt);
    EXPECT_TRUE(exportButton().isHidden());
    EXPECT_EQ(exportButton().text(), QStringLiteral("Export 3 selections to file"));
}

TEST_F(LogsTabViewTest, the_export_button_is_reached_over_the_timeline) {
    int exports = 0;
    tab_.onExportSelections = [&exports] { ++exports; };
    tab_.showExportSelectionsButton("Export selection to file");
    EXPECT_EQ(tab_.childAt(exportButton().geometry().center()), &exportButton());
    click(exportButton());
    EXPECT_EQ(exports, 1);
    tab_.onExportSelections = {};
    click(exportButton());
    EXPECT_EQ(exports, 1);
}

TEST_F(LogsTabViewTest, the_export_button_is_golden_with_a_darker_border) {
    tab_.showExportSelectionsButton("Export selection to file");
    const QImage shown = exportButton().grab().toImage();
    EXPECT_EQ(shown.pixelColor(8, 19), QColor(247, 199, 51));
    EXPECT_EQ(shown.pixelColor(120, 0), QColor(199, 140, 26));
    EXPECT_EQ(shown.pixelColor(0, 19), QColor(199, 140, 26));
    EXPECT_EQ(shown.pixelColor(120, 1), QColor(247, 199, 51));
}

TEST_F(LogsTabViewTest, the_export_button_casts_a_soft_shadow_downwards) {
    const auto column = [this] {
        std::vector<int> levels;
        const QImage shown = tab_.grab().toImage();
        // Right of the timeline is nothing but the tab's ground.
        for (int y = 560; y < 584; ++y) levels.push_back(shown.pixelColor(1441, y).lightness());
        return levels;
    };
    const auto before = column();
    tab_.showExportSelectionsButton("Export selection to file");
    const auto after = column();
    const auto below = [](std::size_t distance) { return 10 + distance; };
    EXPECT_LT(after[below(0)], before[below(0)]);
    EXPECT_GT(after[below(2)], after[below(0)]) << "it fades";
    EXPECT_EQ(after[below(7)], before[below(7)]) << "it ends";
    tab_.showExportSelectionsButton(std::nullopt);
    EXPECT_EQ(column(), before);
}

TEST_F(LogsTabViewTest, the_shadow_lets_clicks_through_to_the_timeline) {
    tab_.showExportSelectionsButton("Export selection to file");
    QWidget* beside = tab_.childAt(exportButton().geometry().topLeft() + QPoint(20, -3));
    ASSERT_NE(beside, nullptr);
    EXPECT_TRUE(tab_.lanesScroll().isAncestorOf(beside));
}

TEST_F(LogsTabViewTest, the_empty_state_stands_over_the_lanes_while_it_has_a_text) {
    QLabel& label = viewNamed<QLabel>(tab_, "emptyStateLabel");
    EXPECT_TRUE(label.isHidden());
    tab_.showEmptyState("Nothing to see.");
    EXPECT_TRUE(label.isVisible());
    EXPECT_EQ(label.text(), QStringLiteral("Nothing to see."));
    EXPECT_EQ(label.accessibleName(), QStringLiteral("Nothing to see."));
    EXPECT_EQ(label.geometry(), QRect(577, 242, 640, 64));
    tab_.showEmptyState("");
    EXPECT_TRUE(label.isHidden());
}

TEST_F(LogsTabViewTest, the_empty_state_takes_two_lines_and_no_more) {
    auto& label = viewNamed<PassThroughLabel>(tab_, "emptyStateLabel");
    const QFontMetrics metrics(label.font());
    tab_.showEmptyState("Nothing to see.");
    EXPECT_EQ(label.visibleLines(), QStringList{"Nothing to see."});

    const QString sentence = QStringLiteral("no markers are visible for this recording ");
    tab_.showEmptyState(sentence.repeated(3).toStdString());
    QStringList lines = label.visibleLines();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines.join(u' ').simplified(), sentence.repeated(3).simplified()) << "all of it";

    tab_.showEmptyState(sentence.repeated(9).toStdString());
    lines = label.visibleLines();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[1].endsWith(u'…')) << lines[1].toStdString();
    for (const QString& each : lines) EXPECT_LE(metrics.horizontalAdvance(each), label.width());
    EXPECT_EQ(label.accessibleName(), sentence.repeated(9)) << "a screen reader has all of it";
}

TEST_F(LogsTabViewTest, the_empty_state_is_painted_in_the_middle) {
    tab_.showEmptyState("I");
    auto& label = view("emptyStateLabel");
    const QImage seen = label.grab().toImage();
    QRect ink;
    for (int y = 0; y < seen.height(); ++y)
        for (int x = 0; x < seen.width(); ++x)
            if (seen.pixel(x, y) != seen.pixel(0, 0)) ink |= QRect(x, y, 1, 1);
    EXPECT_NEAR(ink.center().x(), label.width() / 2.0, 4);
    EXPECT_NEAR(ink.center().y(), label.height() / 2.0, 4);
}

TEST_F(LogsTabViewTest, the_empty_state_lets_clicks_through_to_the_timeline) {
    tab_.showEmptyState("Nothing to see.");
    QWidget* hit = tab_.childAt(view("emptyStateLabel").geometry().center());
    ASSERT_NE(hit, nullptr);
    EXPECT_TRUE(tab_.lanesScroll().isAncestorOf(hit));
}

TEST_F(LogsTabViewTest, the_handle_is_reached_over_the_timeline) {
    QWidget& handle = view("actionBarResizeHandle");
    const QWidget* hit = tab_.childAt(handle.geometry().center());
    EXPECT_TRUE(hit == &handle || handle.isAncestorOf(hit));
}

struct WrittenText {
    const char* name;
    QFont font;
    double white;  ///< the level of grey
    Qt::Alignment alignment;
};

QFont italic(int pixels) {
    QFont font = interfaceFont(pixels);
    font.setItalic(true);
    return font;
}

TEST_F(LogsTabViewTest, each_text_has_its_face_and_its_grey) {
    const std::array written{
        WrittenText{"nowPlayingLabel", italic(14), 0.35, Qt::AlignLeft},
        WrittenText{"selectionInfoLabel", digitsFont(13), 0.35, Qt::AlignRight},
        WrittenText{"zoomBarLabel", interfaceFont(12, QFont::DemiBold), 0.5, Qt::AlignLeft},
        WrittenText{"vtCounterLabel", italic(12), 0.4, Qt::AlignLeft},
        WrittenText{"emptyStateLabel", italic(16), 0.45, Qt::AlignHCenter}};
    for (const WrittenText& each : written) {
        const auto& label = viewNamed<QLabel>(tab_, each.name);
        EXPECT_EQ(label.font(), each.font) << each.name;
        EXPECT_EQ(label.palette().color(QPalette::WindowText).red(), std::lround(each.white * 255))
            << each.name;
        EXPECT_EQ(label.palette().color(QPalette::WindowText).hsvSaturation(), 0) << each.name;
        EXPECT_EQ(label.alignment() & Qt::AlignHorizontal_Mask, each.alignment) << each.name;
    }
    const auto& clock = viewNamed<QLabel>(tab_, "transportTimeLabel");
    EXPECT_EQ(clock.font(), digitsFont(24, QFont::DemiBold));
    EXPECT_EQ(clock.alignment(), Qt::AlignCenter);
}

TEST_F(LogsTabViewTest, each_button_has_its_face) {
    for (const char* each :
         {"shuttle-prev", "shuttle-play", "shuttle-next", "shuttle-in", "shuttle-out"})
        EXPECT_EQ(view(each).font(), interfaceFont(18, QFont::Medium)) << each;
    EXPECT_EQ(view("voicetracksOnlyButton").font(), interfaceFont(12));
}

TEST_F(LogsTabViewTest, explains_its_parts) {
    EXPECT_EQ(svHint(tab_.dateList()),
              QStringLiteral("Days Sonavault has recorded — click any date to load that day."));
    EXPECT_EQ(svHint(tab_.vuMeterL()), QStringLiteral("Live VU meter, left channel."));
    EXPECT_EQ(svHint(tab_.vuMeterR()), QStringLiteral("Live VU meter, right channel."));
    EXPECT_EQ(svHint(view("actionBarResizeHandle")),
              QStringLiteral("Drag up or down to resize the bottom transport area."));
    EXPECT_EQ(svHint(exportButton()),
              QStringLiteral("Export every selection on this day as separate MP3 airchecks."));
}

TEST_F(LogsTabViewTest, the_keyboard_goes_through_the_controls_as_the_eye_does) {
    std::vector<std::string> order;
    for (QWidget* next = tab_.nextInFocusChain(); next != &tab_; next = next->nextInFocusChain())
        if (dynamic_cast<QAbstractButton*>(next) != nullptr &&
            (tab_.filterBar().isAncestorOf(next) || tab_.zoomBar().isAncestorOf(next) ||
             tab_.transport().isAncestorOf(next)))
            order.push_back(next->objectName().toStdString());
    const std::vector<std::string> expected{"hour",
                                            "break",
                                            "vt",
                                            "mic",
                                            "eas",
                                            "custom",
                                            "voicetracksOnlyButton",
                                            "1",
                                            "4",
                                            "24",
                                            "144",
                                            "720",
                                            "shuttle-prev",
                                            "shuttle-play",
                                            "shuttle-next",
                                            "shuttle-in",
                                            "shuttle-out",
                                            "exportButton"};
    EXPECT_EQ(order, expected);
}

}  // namespace
}  // namespace sonavault::testing
