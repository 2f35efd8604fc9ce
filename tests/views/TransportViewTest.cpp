#include "views/TransportView.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLabel>
#include <vector>

#include "Clicks.h"
#include "views/ElidedTextView.h"
#include "views/Hints.h"
#include "views/Theme.h"
#include "views/TransportSymbol.h"

namespace sonavault::testing {
namespace {

class TransportViewTest : public ::testing::Test {
  protected:
    TransportViewTest() {
        transport_.resize(1200, 120);
        transport_.show();
    }

    std::function<void()> noting(const char* action) {
        return [this, action] { done_.emplace_back(action); };
    }

    QAbstractButton& button(const char* identifier) {
        return viewNamed<QAbstractButton>(transport_, identifier);
    }
    QLabel& label(const char* name) { return viewNamed<QLabel>(transport_, name); }

    std::vector<std::string> done_;
    TransportView transport_{TransportActions{noting("previous"), noting("play"), noting("next"),
                                              noting("in"), noting("out"), noting("export")},
                             nullptr};
};

TEST_F(TransportViewTest, each_button_does_its_own) {
    for (const char* each :
         {"shuttle-prev", "shuttle-play", "shuttle-next", "shuttle-in", "shuttle-out"})
        click(button(each));
    EXPECT_EQ(done_, (std::vector<std::string>{"previous", "play", "next", "in", "out"}));
}

TEST_F(TransportViewTest, buttons_without_an_action_do_nothing) {
    TransportView unwired({}, nullptr);
    unwired.resize(1200, 120);
    unwired.show();
    click(viewNamed<QAbstractButton>(unwired, "shuttle-play"));
    EXPECT_TRUE(done_.empty());
}

TEST_F(TransportViewTest, a_round_button_is_not_clicked_beside_its_circle) {
    QTest::mouseClick(&button("shuttle-next"), Qt::LeftButton, Qt::NoModifier, QPoint(2, 2));
    EXPECT_TRUE(done_.empty());
    QTest::mouseClick(&button("shuttle-next"), Qt::LeftButton, Qt::NoModifier, QPoint(22, 1));
    EXPECT_EQ(done_, (std::vector<std::string>{"next"}));
}

TEST_F(TransportViewTest, says_at_first_that_there_is_nothing) {
    EXPECT_EQ(label("transportTimeLabel").text(), QStringLiteral("00:00:00"));
    EXPECT_EQ(label("nowPlayingLabel").text(), QStringLiteral("Now playing: —"));
    EXPECT_EQ(label("selectionInfoLabel").text(), QStringLiteral("Selections: —"));
    EXPECT_EQ(button("shuttle-play").text(), QStringLiteral("▶"));
    EXPECT_EQ(button("shuttle-play").accessibleName(), QStringLiteral("Play"));
}

TEST_F(TransportViewTest, shows_texts_to_the_eye_and_to_a_screen_reader) {
    transport_.setTransportTime("14:23:05");
    transport_.setNowPlaying("Now playing: Break — Top of hour");
    transport_.showSelectionInfo("2 selections, total 00:20:00", true);
    EXPECT_EQ(label("transportTimeLabel").text(), QStringLiteral("14:23:05"));
    EXPECT_EQ(label("transportTimeLabel").accessibleName(), QStringLiteral("14:23:05"));
    EXPECT_EQ(label("nowPlayingLabel").accessibleName(),
              QStringLiteral("Now playing: Break — Top of hour"));
    EXPECT_EQ(label("selectionInfoLabel").accessibleName(),
              QStringLiteral("2 selections, total 00:20:00"));
}

TEST_F(TransportViewTest, the_play_button_turns_into_a_pause_button_and_back) {
    QAbstractButton& play = button("shuttle-play");
    const QImage playing = play.grab().toImage();
    transport_.setPlayButtonTitle("⏸");
    EXPECT_EQ(play.accessibleName(), QStringLiteral("Pause"));
    // Between the two bars is the button's ground, where the triangle was.
    EXPECT_EQ(playing.pixelColor(22, 22), QColor(Qt::white));
    EXPECT_NE(pixelOf(play, 21, 22), QColor(Qt::white));
    EXPECT_EQ(pixelOf(play, 18, 22), QColor(Qt::white));
    transport_.setPlayButtonTitle("▶");
    EXPECT_EQ(play.accessibleName(), QStringLiteral("Play"));
    EXPECT_EQ(play.grab().toImage(), playing);
}

TEST_F(TransportViewTest, only_the_play_button_is_emphasised) {
    EXPECT_LT(pixelOf(button("shuttle-play"), 6, 22).lightness(), 128);
    for (const char* each : {"shuttle-prev", "shuttle-next", "shuttle-in", "shuttle-out"})
        EXPECT_EQ(pixelOf(button(each), 6, 22), QColor(Qt::white)) << each;
}

TEST_F(TransportViewTest, stands_as_the_layout_says) {
    EXPECT_EQ(label("transportTimeLabel").geometry(), QRect(500, 14, 200, 28));
    EXPECT_EQ(button("shuttle-prev").geometry(), QRect(478, 50, 44, 44));
    EXPECT_EQ(button("shuttle-out").geometry(), QRect(678, 50, 44, 44));
    EXPECT_EQ(label("nowPlayingLabel").geometry(), QRect(16, 96, 844, 20));
    EXPECT_EQ(label("selectionInfoLabel").geometry(), QRect(864, 96, 320, 20));
    transport_.resize(820, 120);
    EXPECT_EQ(button("shuttle-play").geometry(), QRect(338, 50, 44, 44));
}

TEST_F(TransportViewTest, a_range_is_told_whole_and_gives_its_room_back) {
    transport_.resize(820, 120);
    QLabel& info = label("selectionInfoLabel");
    transport_.showSelectionInfo("1 selection: 10:00:00 – 23:59:59 (13:59:59)", true);
    EXPECT_EQ(dynamic_cast<ElidedTextView&>(info).visibleText(), info.text());
    EXPECT_EQ(info.geometry().right(), 820 - 16 - 1);
    EXPECT_LT(label("nowPlayingLabel").geometry().right(), info.x());
    transport_.showSelectionInfo("Selections: —", false);
    EXPECT_EQ(info.width(), 320);
}

TEST_F(TransportViewTest, a_long_label_is_cut_off_before_its_neighbour) {
    QLabel& playing = label("nowPlayingLabel");
    playing.resize(150, 20);
    transport_.setNowPlaying("Now playing: Voicetrack — wwwwwwwwwwwwwwwwwwwwwwwwwwww");
    const QImage cut = playing.grab().toImage();
    transport_.setNowPlaying("Now playing: Voicetrack — wwwwwwwwwwwwwwwwwwwwwwwwwwwwmmmmmm");
    EXPECT_EQ(playing.grab().toImage(), cut);
    EXPECT_TRUE(playing.text().endsWith("mmmmmm")) << "a screen reader tells it all";
}

TEST_F(TransportViewTest, the_hidden_export_button_knows_whether_there_is_anything_to_export) {
    QAbstractButton& exporting = button("exportButton");
    EXPECT_TRUE(exporting.isHidden());
    EXPECT_FALSE(exporting.isEnabled());
    EXPECT_EQ(exporting.text(), QStringLiteral("Export Selected"));
    transport_.showSelectionInfo("Selections: —", true);
    EXPECT_TRUE(exporting.isEnabled()) << "also when the text is the same";
    exporting.click();
    EXPECT_EQ(done_, (std::vector<std::string>{"export"}));
    transport_.showSelectionInfo("Selections: —", false);
    EXPECT_FALSE(exporting.isEnabled());
    EXPECT_TRUE(exporting.isHidden());
}

TEST_F(TransportViewTest, draws_a_line_along_its_upper_edge) {
    const QImage shown = transport_.grab().toImage();
    EXPECT_EQ(shown.pixelColor(5, 0), whiteLevel(0.85));
    EXPECT_EQ(shown.pixelColor(5, 1), kColorPanelBG);
}

TEST_F(TransportViewTest, explains_its_parts) {
    EXPECT_EQ(svHint(label("transportTimeLabel")),
              QStringLiteral("Playhead position — time of day at the scrub line."));
    EXPECT_EQ(svHint(button("shuttle-prev")),
              QStringLiteral("Jump to the previous marker on the timeline."));
    EXPECT_EQ(svHint(button("shuttle-play")),
              QStringLiteral("Start or stop playback from the scrub line."));
    EXPECT_EQ(svHint(button("shuttle-next")),
              QStringLiteral("Jump to the next marker on the timeline."));
    EXPECT_EQ(svHint(button("shuttle-in")),
              QStringLiteral("Mark the start of a new selection at the playhead."));
    EXPECT_EQ(svHint(button("shuttle-out")),
              QStringLiteral("Mark the end of the current selection."));
    EXPECT_EQ(svHint(label("nowPlayingLabel")),
              QStringLiteral("Label of the marker the playhead is currently inside."));
    EXPECT_EQ(svHint(label("selectionInfoLabel")),
              QStringLiteral("Number of selections marked on this day."));
}

TEST_F(TransportViewTest, a_click_leaves_the_keyboard_where_it_is) {
    QWidget elsewhere(&transport_);
    elsewhere.setFocusPolicy(Qt::StrongFocus);
    elsewhere.show();
    elsewhere.setFocus();
    click(button("shuttle-play"));
    EXPECT_EQ(transport_.focusWidget(), &elsewhere);
}

TEST(TransportSymbol, every_title_has_a_shape_of_its_own_within_the_button) {
    std::vector<QPainterPath> shapes;
    for (const char* title : {"⏮", "▶", "⏸", "⏭", "[", "]"}) {
        const QPainterPath shape = transportSymbol(QString::fromUtf8(title));
        EXPECT_FALSE(shape.isEmpty()) << title;
        EXPECT_TRUE(QRectF(-12, -12, 24, 24).contains(shape.boundingRect())) << title;
        EXPECT_NEAR(shape.boundingRect().center().y(), 0, 0.01) << title;
        for (const QPainterPath& other : shapes) EXPECT_NE(shape, other) << title;
        shapes.push_back(shape);
    }
}

TEST(TransportSymbol, previous_and_next_are_mirror_images) {
    const QRectF previous = transportSymbol(QStringLiteral("⏮")).boundingRect();
    const QRectF next = transportSymbol(QStringLiteral("⏭")).boundingRect();
    EXPECT_DOUBLE_EQ(previous.left(), -next.right());
    EXPECT_DOUBLE_EQ(previous.right(), -next.left());
}

TEST(TransportSymbol, any_other_title_has_none) {
    EXPECT_TRUE(transportSymbol(QStringLiteral("?")).isEmpty());
}

}  // namespace
}  // namespace sonavault::testing
