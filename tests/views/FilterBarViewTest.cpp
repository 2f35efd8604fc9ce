#include "views/FilterBarView.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLabel>
#include <vector>

#include "Clicks.h"
#include "views/Hints.h"
#include "views/Painting.h"
#include "views/Theme.h"

namespace sonavault::testing {
namespace {

class FilterBarViewTest : public ::testing::Test {
  protected:
    FilterBarViewTest() {
        bar_.onFilterChanged = [this](std::string_view key, bool on) {
            changes_.emplace_back(key, on);
        };
        bar_.onVoicetracksOnlyClicked = [this] { ++voicetracksClicks_; };
        bar_.resize(1200, 46);
        bar_.show();
    }

    QAbstractButton& checkbox(const char* key) { return viewNamed<QAbstractButton>(bar_, key); }
    QAbstractButton& voicetracksOnly() {
        return viewNamed<QAbstractButton>(bar_, "voicetracksOnlyButton");
    }
    QLabel& counter() { return viewNamed<QLabel>(bar_, "vtCounterLabel"); }

    FilterBarView bar_{nullptr};
    std::vector<std::pair<std::string, bool>> changes_;
    int voicetracksClicks_ = 0;
};

TEST_F(FilterBarViewTest, has_a_ticked_checkbox_for_every_lane) {
    for (const LaneDescription& each : laneOrder) {
        QAbstractButton& box = checkbox(std::string(each.key).c_str());
        EXPECT_TRUE(box.isChecked()) << each.key;
        EXPECT_EQ(box.text(), " " + toQString(each.laneDisplayName));
        EXPECT_EQ(box.accessibleName(), box.text());
        EXPECT_EQ(box.isEnabled(), each.lane != Lane::hour);
    }
}

TEST_F(FilterBarViewTest, tells_which_lane_was_ticked_and_how) {
    click(checkbox("mic"));
    click(checkbox("mic"));
    click(checkbox("custom"));
    const std::vector<std::pair<std::string, bool>> expected{
        {"mic", false}, {"mic", true}, {"custom", false}};
    EXPECT_EQ(changes_, expected);
}

TEST_F(FilterBarViewTest, the_hours_cannot_be_hidden_by_hand) {
    click(checkbox("hour"));
    EXPECT_TRUE(checkbox("hour").isChecked());
    EXPECT_TRUE(changes_.empty());
}

TEST_F(FilterBarViewTest, a_checkbox_that_the_program_sets_tells_nobody) {
    bar_.setFilterCheckbox(Lane::breaks, false);
    bar_.setFilterCheckbox(Lane::hour, false);
    EXPECT_FALSE(checkbox("break").isChecked());
    EXPECT_FALSE(checkbox("hour").isChecked());
    EXPECT_TRUE(checkbox("vt").isChecked());
    EXPECT_TRUE(changes_.empty());
}

TEST_F(FilterBarViewTest, the_whole_of_a_filter_can_be_clicked) {
    QAbstractButton& box = checkbox("vt");
    QTest::mouseClick(&box, Qt::LeftButton, Qt::NoModifier, QPoint(1, 1));
    QTest::mouseClick(&box, Qt::LeftButton, Qt::NoModifier, box.rect().bottomRight());
    EXPECT_EQ(changes_.size(), 2U);
}

TEST_F(FilterBarViewTest, the_voicetracks_button_is_on_only_when_the_program_says_so) {
    click(voicetracksOnly());
    EXPECT_EQ(voicetracksClicks_, 1);
    EXPECT_FALSE(voicetracksOnly().isChecked());
    EXPECT_TRUE(counter().isHidden());

    bar_.showVoicetracksOnly(true, "1 of 12 voicetracks");
    EXPECT_TRUE(voicetracksOnly().isChecked());
    EXPECT_FALSE(counter().isHidden());
    EXPECT_EQ(counter().text(), QStringLiteral("1 of 12 voicetracks"));

    bar_.showVoicetracksOnly(false, std::nullopt);
    EXPECT_FALSE(voicetracksOnly().isChecked());
    EXPECT_TRUE(counter().isHidden());
}

TEST_F(FilterBarViewTest, a_bar_that_nobody_wired_does_nothing) {
    bar_.onFilterChanged = {};
    bar_.onVoicetracksOnlyClicked = {};
    click(checkbox("mic"));
    click(voicetracksOnly());
    EXPECT_FALSE(checkbox("mic").isChecked());
}

TEST_F(FilterBarViewTest, stands_as_the_layout_says) {
    const QRect hours = checkbox("hour").geometry();
    EXPECT_EQ(hours.topLeft(), QPoint(34, 13));
    EXPECT_EQ(hours.height(), 20);
    EXPECT_EQ(checkbox("break").x(), hours.x() + hours.width() + 20 + 18);
    EXPECT_EQ(voicetracksOnly().geometry(), QRect(1000, 9, 180, 28));
    bar_.showVoicetracksOnly(true, "1 of 0 voicetracks");
    EXPECT_EQ(counter().geometry(), QRect(840, 14, 150, 18));
}

TEST_F(FilterBarViewTest, nothing_overlaps_in_the_narrowest_window) {
    bar_.resize(820, 46);
    bar_.showVoicetracksOnly(true, "1 of 120 voicetracks");
    std::vector<QWidget*> shown;
    for (QWidget* each : bar_.findChildren<QWidget*>())
        if (!each->isHidden()) shown.push_back(each);
    ASSERT_EQ(shown.size(), 14U);
    for (QWidget* one : shown) {
        EXPECT_TRUE(bar_.rect().contains(one->geometry())) << one->accessibleName().toStdString();
        for (QWidget* other : shown)
            EXPECT_TRUE(one == other || !one->geometry().intersects(other->geometry()))
                << one->accessibleName().toStdString() << " on "
                << other->accessibleName().toStdString();
    }
    EXPECT_LE(QFontMetrics(counter().font()).horizontalAdvance(counter().text()),
              counter().width());
}

TEST_F(FilterBarViewTest, each_lane_is_known_by_its_colour) {
    const QImage shown = bar_.grab().toImage();
    EXPECT_EQ(shown.pixelColor(23, 23), QColor(85, 85, 85));
    const int notes = checkbox("custom").x() - 18;
    EXPECT_EQ(shown.pixelColor(notes + 7, 23), QColor(229, 183, 59));
    EXPECT_EQ(shown.pixelColor(notes, 15), kColorPanelBG) << "it begins one lower";
    EXPECT_EQ(shown.pixelColor(3, 3), kColorPanelBG);
}

TEST_F(FilterBarViewTest, a_tick_is_grey) {
    const auto corner = [this] { return pixelOf(checkbox("vt"), 3, 15); };
    EXPECT_EQ(corner(), whiteLevel(0.65));
    bar_.setFilterCheckbox(Lane::vt, false);
    EXPECT_EQ(corner(), QColor(Qt::white));
}

TEST_F(FilterBarViewTest, explains_its_parts) {
    EXPECT_EQ(svHint(checkbox("hour")), QStringLiteral("Hour ticks are always shown."));
    EXPECT_EQ(svHint(checkbox("mic")),
              QStringLiteral("Show or hide the Live mic lane on the timeline."));
    EXPECT_EQ(svHint(voicetracksOnly()),
              QStringLiteral("Hide everything but voicetrack rows — for quick talent review."));
    EXPECT_EQ(svHint(counter()), QStringLiteral("Voicetrack count in the visible time range."));
    const QWidget* swatch = bar_.childAt(checkbox("eas").x() - 10, 23);
    ASSERT_NE(swatch, nullptr);
    EXPECT_EQ(svHint(*swatch), QStringLiteral("Color used to draw EAS markers."));
}

TEST_F(FilterBarViewTest, a_click_leaves_the_keyboard_where_it_is) {
    QWidget elsewhere(&bar_);
    elsewhere.setFocusPolicy(Qt::StrongFocus);
    elsewhere.show();
    elsewhere.setFocus();
    click(checkbox("mic"));
    click(voicetracksOnly());
    EXPECT_EQ(bar_.focusWidget(), &elsewhere);
    EXPECT_EQ(checkbox("mic").focusPolicy(), Qt::TabFocus);
}

}  // namespace
}  // namespace sonavault::testing
