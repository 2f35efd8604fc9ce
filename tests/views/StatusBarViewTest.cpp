#include "views/StatusBarView.h"

#include <gtest/gtest.h>

#include <QRawFont>
#include <QTest>
#include <limits>

#include "ViewProbe.h"
#include "views/Hints.h"
#include "views/Theme.h"

namespace sonavault::testing {
namespace {

constexpr QColor kProgress{247, 199, 51};

class StatusBar : public ::testing::Test {
  protected:
    StatusBar() {
        bar.resize(1480, 40);
        bar.show();
    }

    QRect frame(const char* name) {
        const QWidget* view = named(bar, name);
        return view ? view->geometry() : QRect();
    }
    ElidedTextView& text() { return *named<ElidedTextView>(bar, "statusBarText"); }
    ElidedTextView& keys() { return *named<ElidedTextView>(bar, "statusBarHint"); }
    QAbstractButton& settings() { return *named<QAbstractButton>(bar, "statusBarSettings"); }
    DotView& dot() { return *named<DotView>(bar, "statusBarConnectionDot"); }

    StatusBarView bar{nullptr};
};

TEST_F(StatusBar, places_what_it_holds) {
    EXPECT_EQ(frame("statusBarSpeaker"), QRect(10, 5, 30, 30));
    EXPECT_EQ(frame("statusBarText"), QRect(48, 10, 740, 20));
    EXPECT_EQ(frame("statusBarHint"), QRect(800, 10, 600, 20));
    EXPECT_EQ(frame("statusBarSettings"), QRect(1416, 5, 30, 30));
    EXPECT_EQ(frame("statusBarConnectionDot"), QRect(1456, 14, 12, 12));
}

TEST_F(StatusBar, gives_the_text_what_a_wider_window_adds) {
    bar.resize(2560, 40);

    EXPECT_EQ(frame("statusBarText"), QRect(48, 10, 1820, 20));
    EXPECT_EQ(frame("statusBarHint"), QRect(1880, 10, 600, 20));
    EXPECT_EQ(frame("statusBarSettings"), QRect(2496, 5, 30, 30));
    EXPECT_EQ(frame("statusBarConnectionDot"), QRect(2536, 14, 12, 12));
}

TEST_F(StatusBar, is_black_with_an_orange_loudspeaker_a_grey_gear_and_a_red_light_at_first) {
    const QImage image = picture(bar);

    for (const QPoint bare : {QPoint(2, 0), QPoint(2, 39), QPoint(600, 20), QPoint(1479, 20)}) {
        EXPECT_EQ(image.pixelColor(bare), QColor(Qt::black)) << bare.x() << ", " << bare.y();
    }
    EXPECT_EQ(image.pixelColor(20, 20), QColor(255, 149, 0)) << "the loudspeaker's body";
    EXPECT_EQ(image.pixelColor(28, 26), QColor(255, 149, 0)) << "the badge, beside its mark";
    EXPECT_EQ(image.pixelColor(31, 25), QColor(Qt::black)) << "the badge's mark";
    EXPECT_EQ(image.pixelColor(1431, 20), QColor(Qt::black)) << "the gear's hole";
    EXPECT_EQ(image.pixelColor(1437, 20), whiteLevel(0.78)) << "the gear";
    EXPECT_EQ(image.pixelColor(1462, 20), QColor(255, 59, 48)) << "the light";
}

TEST_F(StatusBar, has_no_text_at_first_and_then_the_last_one_set) {
    EXPECT_EQ(bar.statusBarText(), "");

    bar.setStatusBarText("Exporting…");
    bar.setStatusBarText("Recording (line input) → Sonavault_2026-05-08.mp3");

    EXPECT_EQ(bar.statusBarText(), "Recording (line input) → Sonavault_2026-05-08.mp3");
    EXPECT_EQ(text().accessibleName(), "Recording (line input) → Sonavault_2026-05-08.mp3");
}

TEST_F(StatusBar, writes_its_text_in_light_grey) {
    bar.setStatusBarText("Exporting…");

    EXPECT_EQ(text().font().pixelSize(), 14);
    EXPECT_EQ(text().palette().color(QPalette::WindowText), whiteLevel(0.78));
    const QImage image = picture(text());
    int bright = 0;
    for (int x = 0; x < 100; ++x) {
        for (int y = 0; y < image.height(); ++y) bright += image.pixelColor(x, y).lightness() > 150;
    }
    EXPECT_GT(bright, 50);
}

TEST_F(StatusBar, cuts_a_text_without_room_at_its_tail_and_keeps_it_whole_for_a_screen_reader) {
    const std::string sentence(400, 'm');

    bar.setStatusBarText(sentence);

    EXPECT_EQ(bar.statusBarText(), sentence);
    EXPECT_EQ(text().accessibleName().toStdString(), sentence);
    EXPECT_TRUE(text().visibleText().startsWith("mmmm"));
    EXPECT_TRUE(text().visibleText().endsWith("…"));
    EXPECT_LE(text().fontMetrics().horizontalAdvance(text().visibleText()), text().width());
}

TEST_F(StatusBar, shows_a_text_of_several_lines_in_one) {
    bar.setStatusBarText("Aircheck failed:\nno space left");

    EXPECT_EQ(text().visibleText(), "Aircheck failed: no space left");
    EXPECT_EQ(bar.statusBarText(), "Aircheck failed:\nno space left");
}

TEST_F(StatusBar, keeps_the_blanks_of_a_hover_text) {
    bar.showHint("14:00:00  Hour:  Top of hour");

    EXPECT_EQ(text().visibleText(), "14:00:00  Hour:  Top of hour");
}

TEST_F(StatusBar, shows_a_hover_text_until_the_status_comes_back) {
    bar.setStatusBarText("Exporting…");

    bar.showHint("Click to seek.");
    EXPECT_EQ(bar.statusBarText(), "Click to seek.");

    bar.restoreStatus();
    EXPECT_EQ(bar.statusBarText(), "Exporting…");
}

TEST_F(StatusBar, gives_the_earlier_status_back_after_two_hover_texts_in_a_row) {
    bar.setStatusBarText("Exporting…");

    bar.showHint("one");
    bar.showHint("two");
    EXPECT_EQ(bar.statusBarText(), "two");
    bar.restoreStatus();

    EXPECT_EQ(bar.statusBarText(), "Exporting…");
}

TEST_F(StatusBar, overwrites_what_was_set_during_a_hover_text) {
    bar.setStatusBarText("Exporting…");
    bar.showHint("one");

    bar.setStatusBarText("Exported.");
    EXPECT_EQ(bar.statusBarText(), "Exported.");
    bar.restoreStatus();

    EXPECT_EQ(bar.statusBarText(), "Exporting…");
}

TEST_F(StatusBar, gives_an_empty_status_back_too) {
    bar.showHint("one");
    bar.restoreStatus();

    EXPECT_EQ(bar.statusBarText(), "");
}

TEST_F(StatusBar, restores_nothing_without_a_hover_text) {
    bar.showHint("one");
    bar.restoreStatus();
    bar.setStatusBarText("Exporting…");

    bar.restoreStatus();

    EXPECT_EQ(bar.statusBarText(), "Exporting…");
}

TEST_F(StatusBar, tells_the_keys_in_signs_that_their_font_has) {
    EXPECT_EQ(keys().text(),
              "Space play • ←→ marker • [ ] selection • C clear • ⌘Z undo • E export • A aircheck");
    EXPECT_EQ(keys().font().pixelSize(), 15);
    EXPECT_EQ(keys().palette().color(QPalette::WindowText), whiteLevel(0.6));
    EXPECT_TRUE(keys().alignment() & Qt::AlignRight);
    const QRawFont font = QRawFont::fromFont(keys().font());
    for (const QChar sign : keys().text()) {
        EXPECT_TRUE(font.supportsCharacter(sign)) << QString(sign).toStdString();
    }
}

TEST_F(StatusBar, draws_progress_as_a_line_of_two_points_along_its_upper_edge) {
    const QRect before = frame("statusBarText");

    bar.showProgress(0.25);

    const QImage image = picture(bar);
    for (const int x : {0, 200, 369}) {
        EXPECT_EQ(image.pixelColor(x, 0), kProgress) << x;
        EXPECT_EQ(image.pixelColor(x, 1), kProgress) << x;
        EXPECT_EQ(image.pixelColor(x, 2), QColor(Qt::black)) << x;
    }
    EXPECT_EQ(image.pixelColor(370, 0), whiteLevel(0.25)) << "what is left to do";
    EXPECT_EQ(frame("statusBarText"), before);
}

TEST_F(StatusBar, draws_no_line_when_there_is_no_progress_any_more) {
    bar.showProgress(1);
    EXPECT_EQ(picture(bar).pixelColor(1479, 0), kProgress);

    bar.showProgress(std::nullopt);

    const QImage image = picture(bar);
    EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::black));
    EXPECT_EQ(image.pixelColor(1479, 1), QColor(Qt::black));
}

TEST_F(StatusBar, keeps_progress_within_its_bounds) {
    bar.showProgress(7);
    EXPECT_EQ(picture(bar).pixelColor(1479, 0), kProgress);
    for (const double none : {-1.0, 0.0, std::numeric_limits<double>::quiet_NaN()}) {
        bar.showProgress(none);
        EXPECT_EQ(picture(bar).pixelColor(0, 0), whiteLevel(0.25)) << none;
    }
}

TEST_F(StatusBar, shows_the_connection_in_its_colour_and_says_what_it_means) {
    EXPECT_EQ(picture(bar).pixelColor(1462, 20), QColor(255, 59, 48));
    EXPECT_EQ(dot().accessibleName(), "Cadenzo audio link: not connected");

    bar.showLinkState(LinkState::connected);
    EXPECT_EQ(picture(bar).pixelColor(1462, 20), QColor(40, 205, 65));
    EXPECT_EQ(dot().accessibleName(), "Cadenzo audio link: connected");

    bar.showLinkState(LinkState::notInUse);
    EXPECT_EQ(picture(bar).pixelColor(1462, 20), QColor(89, 89, 89));
    EXPECT_EQ(dot().accessibleName(), "Cadenzo audio link: not in use");
}

TEST_F(StatusBar, opens_the_settings_at_a_click_on_the_gear) {
    QTest::mouseClick(&settings(), Qt::LeftButton);  // nobody listens yet
    int opened = 0;
    bar.onSettingsClicked = [&] { ++opened; };

    QTest::mouseClick(&settings(), Qt::LeftButton);

    EXPECT_EQ(opened, 1);
    EXPECT_EQ(settings().accessibleName(), "Settings");
}

TEST_F(StatusBar, opens_the_settings_with_return_and_with_the_space_bar) {
    int opened = 0;
    bar.onSettingsClicked = [&] { ++opened; };

    QTest::keyClick(&settings(), Qt::Key_Return);
    QTest::keyClick(&settings(), Qt::Key_Enter);
    QTest::keyClick(&settings(), Qt::Key_Space);

    EXPECT_EQ(opened, 3);
}

TEST_F(StatusBar, explains_what_it_holds) {
    EXPECT_EQ(svHint(*named(bar, "statusBarSpeaker")),
              "Status messages appear to the right of this icon.");
    EXPECT_EQ(svHint(text()), "");
    EXPECT_EQ(svHint(keys()), "Quick keyboard reference for the timeline.");
    EXPECT_EQ(svHint(settings()), "Open Settings — pick the recording quality.");
    EXPECT_EQ(svHint(dot()), "Cadenzo audio link — green when connected, red when not.");
}

}  // namespace
}  // namespace sonavault::testing
