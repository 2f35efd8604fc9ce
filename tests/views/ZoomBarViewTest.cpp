#include "views/ZoomBarView.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLabel>
#include <vector>

#include "Clicks.h"
#include "review/TimelineZoom.h"
#include "views/Hints.h"
#include "views/Painting.h"
#include "views/Theme.h"

namespace sonavault::testing {
namespace {

class ZoomBarViewTest : public ::testing::Test {
  protected:
    ZoomBarViewTest() {
        bar_.onPresetClicked = [this](std::size_t preset) { clicked_.push_back(preset); };
        bar_.resize(1200, 44);
        bar_.show();
    }

    QAbstractButton& preset(const char* identifier) {
        return viewNamed<QAbstractButton>(bar_, identifier);
    }

    std::vector<bool> on() {
        std::vector<bool> states;
        for (const ZoomPreset& each : kZoomPresets)
            states.push_back(preset(each.identifier.data()).isChecked());
        return states;
    }

    ZoomBarView bar_{nullptr};
    std::vector<std::size_t> clicked_;
};

TEST_F(ZoomBarViewTest, begins_with_the_whole_day) {
    EXPECT_EQ(on(), (std::vector<bool>{true, false, false, false, false}));
}

TEST_F(ZoomBarViewTest, shows_one_preset_or_none) {
    bar_.showZoomPreset(4);
    EXPECT_EQ(on(), (std::vector<bool>{false, false, false, false, true}));
    bar_.showZoomPreset(std::nullopt);
    EXPECT_EQ(on(), std::vector<bool>(5, false));
}

TEST_F(ZoomBarViewTest, tells_which_preset_was_clicked_and_leaves_the_rest_to_the_program) {
    click(preset("24"));
    click(preset("1"));
    EXPECT_EQ(clicked_, (std::vector<std::size_t>{2, 0}));
    EXPECT_EQ(on(), (std::vector<bool>{true, false, false, false, false}))
        << "a click on the button that is on does not put it off";
}

TEST_F(ZoomBarViewTest, every_preset_says_what_it_does) {
    for (const ZoomPreset& each : kZoomPresets) {
        QAbstractButton& button = preset(each.identifier.data());
        EXPECT_EQ(button.text(), toQString(each.title));
        EXPECT_EQ(button.accessibleName(), toQString(each.title));
        EXPECT_EQ(svHint(button), toQString(each.hint));
        EXPECT_EQ(button.focusPolicy(), Qt::TabFocus);
        EXPECT_EQ(button.font().pixelSize(), 13);
        EXPECT_EQ(button.font().weight(), QFont::Medium);
    }
    QLabel& label = viewNamed<QLabel>(bar_, "zoomBarLabel");
    EXPECT_EQ(label.text(), QStringLiteral("ZOOM"));
    EXPECT_EQ(svHint(label),
              QStringLiteral("Zoom presets — choose how much of the day is visible at once."));
}

TEST_F(ZoomBarViewTest, the_row_stays_centred_when_the_window_grows) {
    EXPECT_EQ(viewNamed<QLabel>(bar_, "zoomBarLabel").geometry(), QRect(368, 12, 60, 18));
    EXPECT_EQ(preset("1").geometry(), QRect(436, 8, 76, 28));
    EXPECT_EQ(preset("720").geometry(), QRect(756, 8, 76, 28));
    bar_.resize(1300, 44);
    EXPECT_EQ(preset("1").geometry(), QRect(486, 8, 76, 28));
}

TEST_F(ZoomBarViewTest, draws_a_line_along_its_upper_edge) {
    const QImage shown = bar_.grab().toImage();
    EXPECT_EQ(shown.pixelColor(5, 0), whiteLevel(0.88));
    EXPECT_EQ(shown.pixelColor(1199, 0), whiteLevel(0.88));
    EXPECT_EQ(shown.pixelColor(5, 1), kColorPanelBG);
}

TEST_F(ZoomBarViewTest, the_preset_that_is_on_stands_out) {
    const QColor dayOn = pixelOf(preset("1"), 6, 14);
    const QColor hourOff = pixelOf(preset("24"), 6, 14);
    EXPECT_EQ(hourOff, QColor(Qt::white));
    EXPECT_EQ(dayOn, QColor(74, 112, 139));
    bar_.showZoomPreset(2);
    EXPECT_EQ(pixelOf(preset("1"), 6, 14), hourOff);
    EXPECT_EQ(pixelOf(preset("24"), 6, 14), dayOn);
}

TEST_F(ZoomBarViewTest, a_button_shows_that_it_is_pressed) {
    QAbstractButton& button = preset("24");
    const QColor before = pixelOf(button, 6, 14);
    QTest::mousePress(&button, Qt::LeftButton, Qt::NoModifier, QPoint(40, 14));
    EXPECT_LT(pixelOf(button, 6, 14).lightness(), before.lightness());
    QTest::mouseRelease(&button, Qt::LeftButton, Qt::NoModifier, QPoint(-40, 14));
    EXPECT_TRUE(clicked_.empty()) << "the pointer had left it";
}

}  // namespace
}  // namespace sonavault::testing
