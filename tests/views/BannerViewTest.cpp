#include "views/BannerView.h"

#include <gtest/gtest.h>

#include <QIcon>
#include <QPixmap>
#include <QTest>

#include "ViewProbe.h"
#include "store/Version.h"
#include "views/Hints.h"
#include "views/Theme.h"

namespace sonavault::testing {
namespace {

class Banner : public ::testing::Test {
  protected:
    Banner() {
        banner.resize(1480, 132);
        banner.show();
    }

    TextView* textView(const QString& text) {
        for (auto* each : allOf<TextView>(banner))
            if (each->text() == text) return each;
        return nullptr;
    }

    LogoView* logo() {
        const auto logos = allOf<LogoView>(banner);
        return logos.empty() ? nullptr : logos.front();
    }

    BannerView banner{nullptr};
};

TEST_F(Banner, is_a_light_ground_with_a_line_along_its_foot) {
    const QImage image = picture(banner);

    for (const int x : {0, 700, 1479}) {
        EXPECT_EQ(image.pixelColor(x, 0), QColor(235, 235, 239)) << x;
        EXPECT_EQ(image.pixelColor(x, 130), QColor(235, 235, 239)) << x;
        EXPECT_EQ(image.pixelColor(x, 131), QColor(216, 214, 210)) << x;
    }
}

TEST_F(Banner, says_the_name_and_explains_it_with_the_version) {
    TextView* title = textView("Sonavault");

    ASSERT_TRUE(title);
    EXPECT_EQ(title->geometry(), QRect(130, 30, 400, 44));
    EXPECT_EQ(title->font().pixelSize(), 36);
    EXPECT_EQ(title->font().weight(), QFont::Bold);
    EXPECT_EQ(title->palette().color(QPalette::WindowText), QColor(26, 26, 26));
    EXPECT_EQ(svHint(*title), QString("Sonavault %1 — Calderwave Systems.").arg(kSonavaultVersion));
}

TEST_F(Banner, says_the_slogan) {
    TextView* slogan = textView("Your Station's Air Archive");

    ASSERT_TRUE(slogan);
    EXPECT_EQ(slogan->geometry(), QRect(130, 78, 400, 22));
    EXPECT_EQ(slogan->font().pixelSize(), 16);
    EXPECT_EQ(slogan->font().weight(), QFont::Medium);
    EXPECT_EQ(slogan->palette().color(QPalette::WindowText), QColor(92, 92, 92));
    EXPECT_EQ(svHint(*slogan), "Sonavault records your on-air signal 24 hours a day.");
}

TEST_F(Banner, has_room_for_its_texts) {
    for (const char* text : {"Sonavault", "Your Station's Air Archive"}) {
        const TextView* view = textView(text);
        ASSERT_TRUE(view);
        EXPECT_LE(view->sizeHint().width(), view->width()) << text;
        EXPECT_LE(view->fontMetrics().height(), view->height()) << text;
    }
}

TEST_F(Banner, shows_the_icon_of_its_window) {
    QPixmap red(84, 84);
    red.fill(Qt::red);
    banner.setWindowIcon(QIcon(red));

    const QImage image = picture(banner);

    EXPECT_EQ(image.pixelColor(28, 22), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(111, 105), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(27, 22), QColor(235, 235, 239));
    EXPECT_EQ(image.pixelColor(112, 105), QColor(235, 235, 239));
}

TEST_F(Banner, paints_a_round_emblem_where_the_window_has_no_icon) {
    ASSERT_TRUE(banner.windowIcon().isNull());

    const QImage image = picture(banner);

    EXPECT_EQ(image.pixelColor(28, 22), QColor(235, 235, 239)) << "beside the circle";
    EXPECT_EQ(image.pixelColor(70, 57), QColor(Qt::white)) << "the figure";
    EXPECT_GT(image.pixelColor(60, 28).blue(), image.pixelColor(60, 102).blue())
        << "lighter above than below";
}

TEST_F(Banner, explains_its_logo) {
    ASSERT_TRUE(logo());
    EXPECT_EQ(logo()->geometry(), QRect(28, 22, 84, 84));
    EXPECT_EQ(svHint(*logo()), "Sonavault — your station's 24-hour air archive.");
    EXPECT_EQ(logo()->accessibleName(), "Sonavault");
}

TEST_F(Banner, keeps_the_help_button_at_the_right_edge) {
    auto* help = named<QAbstractButton>(banner, "helpButton");

    ASSERT_TRUE(help);
    EXPECT_EQ(help->geometry(), QRect(1430, 10, 30, 28));
    banner.resize(1100, 132);
    EXPECT_EQ(help->geometry(), QRect(1050, 10, 30, 28));
    EXPECT_EQ(help->text(), "?");
    EXPECT_EQ(help->font(), interfaceFont(13));
    EXPECT_EQ(help->accessibleName(), "Help");
    EXPECT_EQ(svHint(*help), "Open the Sonavault help page in your browser.");
}

TEST_F(Banner, asks_for_help_at_a_click_on_the_button) {
    auto* help = named<QAbstractButton>(banner, "helpButton");
    ASSERT_TRUE(help);
    QTest::mouseClick(help, Qt::LeftButton);  // nobody listens yet
    int asked = 0;
    banner.onHelpClicked = [&] { ++asked; };

    QTest::mouseClick(help, Qt::LeftButton);

    EXPECT_EQ(asked, 1);
}

TEST_F(Banner, darkens_the_help_button_while_it_is_pressed) {
    auto* help = named<QAbstractButton>(banner, "helpButton");
    ASSERT_TRUE(help);
    const QPoint inside(1434, 14);
    const QColor idle = picture(banner).pixelColor(inside);

    QTest::mousePress(help, Qt::LeftButton);
    const QColor pressed = picture(banner).pixelColor(inside);
    QTest::mouseRelease(help, Qt::LeftButton);

    EXPECT_LT(pressed.lightness(), idle.lightness());
}

}  // namespace
}  // namespace sonavault::testing
