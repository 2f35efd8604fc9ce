#include <gmock/gmock.h>

#include <QApplication>
#include <QImage>
#include <QTest>
#include <map>

#include "shell/SVSettingsWindowController.h"
#include "shell/SizeEstimates.h"
#include "support/ExpectedQtWarnings.h"
#include "support/TempFolder.h"
#include "views/Theme.h"
#include "views/ViewProbe.h"

namespace sonavault::testing {
namespace {

TEST(SizeEstimates, tell_an_hour_in_tenths) {
    EXPECT_EQ(hourEstimate(3.515625), "1 hour ≈ 3.5 MB");
    EXPECT_EQ(hourEstimate(42.1875), "1 hour ≈ 42.2 MB");
}

TEST(SizeEstimates, tell_a_day_in_whole_megabytes_up_to_a_gigabyte) {
    EXPECT_EQ(dayEstimate(10.546875), "1 day ≈ 253 MB");
    EXPECT_EQ(dayEstimate(1023.9 / 24), "1 day ≈ 1024 MB");
    EXPECT_EQ(dayEstimate(1024.0 / 24), "1 day ≈ 1.00 GB");
    EXPECT_EQ(dayEstimate(64), "1 day ≈ 1.50 GB");
}

/// The settings of a person who never chose a quality.
class SettingsWindowTest : public ::testing::Test {
  protected:
    SVSettingsWindowController& settings() {
        if (!settings_) settings_ = std::make_unique<SVSettingsWindowController>(preferences_);
        return *settings_;
    }

    void open() {
        settings().showWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&settings().window()));
    }

    QStringList texts() {
        QStringList all;
        for (const auto* each : allOf<TextView>(settings().window())) all << each->text();
        return all;
    }

    TextView* label(const QString& text) {
        for (auto* each : allOf<TextView>(settings().window()))
            if (each->text() == text) return each;
        return nullptr;
    }

    /// From the lower left corner, as its frames are counted.
    static QRect frame(const QWidget& view) {
        const QRect box = view.geometry();
        return {box.x(), 320 - box.y() - box.height(), box.width(), box.height()};
    }

    /// Where the mouse takes the knob of that value.
    QPoint place(double value) {
        auto& slider = settings().slider();
        const double step = slider.placeOf(1) - slider.placeOf(0);
        return {qRound(slider.placeOf(0) + value * step), 10};
    }

    std::optional<long long> stored() const { return preferences_.integer(kQualityLevelKey); }

    // There is no window manager to tell the window's size to, or to bring it to the front.
    const ExpectedQtWarnings size_{"This plugin does not support propagateSizeHints()"};
    const ExpectedQtWarnings raise_{"This plugin does not support raise()"};
    TempFolder temp_;
    Preferences preferences_{temp_ / "standard.conf"};
    std::unique_ptr<SVSettingsWindowController> settings_;
};

TEST_F(SettingsWindowTest, is_a_small_window_of_one_size) {
    open();
    EXPECT_EQ(settings().window().windowTitle(), "Sonavault Settings");
    EXPECT_EQ(settings().window().size(), QSize(580, 320));
    EXPECT_EQ(settings().window().minimumSize(), settings().window().maximumSize());
    EXPECT_FALSE(settings().window().testAttribute(Qt::WA_QuitOnClose));
    EXPECT_FALSE(settings().window().testAttribute(Qt::WA_DeleteOnClose));
    // All but for the frame, which is the desktop's.
    const QPoint off = settings().window().geometry().center() -
                       QApplication::primaryScreen()->availableGeometry().center();
    EXPECT_LE(off.manhattanLength(), 8);
}

TEST_F(SettingsWindowTest, starts_with_the_default) {
    EXPECT_EQ(settings().slider().value(), 2);
    EXPECT_NE(label("22.1 kHz mono · 24 kbps MP3"), nullptr);
    EXPECT_NE(label("1 hour ≈ 10.5 MB"), nullptr);
    EXPECT_NE(label("1 day ≈ 253 MB"), nullptr);
    EXPECT_FALSE(stored().has_value()) << "looking is not choosing";
}

TEST_F(SettingsWindowTest, starts_with_the_stored_level) {
    preferences_.setInteger(kQualityLevelKey, 0);
    EXPECT_EQ(settings().slider().value(), 0);
    EXPECT_EQ(texts().count("Crummy"), 2);
}

TEST_F(SettingsWindowTest, takes_a_stored_level_off_the_scale_for_the_default) {
    preferences_.setInteger(kQualityLevelKey, 7);
    EXPECT_EQ(settings().slider().value(), 2);
}

TEST_F(SettingsWindowTest, places_its_contents) {
    EXPECT_EQ(frame(settings().slider()), QRect(60, 150, 460, 25));
    EXPECT_EQ(frame(*label("Quality")), QRect(0, 270, 580, 28));
    EXPECT_EQ(label("Quality")->font(), interfaceFont(20, QFont::DemiBold));
    EXPECT_EQ(frame(*label("Good")), QRect(0, 200, 580, 48)) << "the headline comes first";
    EXPECT_EQ(label("Good")->font(), interfaceFont(32));
    const std::array<const char*, 5> levels{"Crummy", "Pretty Good", "Good", "Really Good",
                                            "Crazy Good"};
    preferences_.setInteger(kQualityLevelKey, 4);
    settings_.reset();
    for (int i = 0; i < 4; ++i) {
        auto* level = label(QLatin1String(levels.at(static_cast<std::size_t>(i))));
        ASSERT_NE(level, nullptr);
        EXPECT_EQ(frame(*level), QRect(5 + 115 * i, 120, 110, 16));
        EXPECT_EQ(level->font(), interfaceFont(10));
    }
    EXPECT_EQ(frame(*label("22.1 kHz mono · 96 kbps MP3")), QRect(0, 80, 580, 20));
    EXPECT_EQ(frame(*label("1 hour ≈ 42.2 MB")), QRect(0, 64, 580, 20));
    EXPECT_EQ(frame(*label("1 day ≈ 1012 MB")), QRect(0, 44, 580, 20));
    auto* note =
        label("Selection saves immediately. Changes take effect when the next recording starts.");
    ASSERT_NE(note, nullptr);
    EXPECT_EQ(frame(*note), QRect(0, 20, 580, 16));
    for (const auto* each : allOf<TextView>(settings().window())) {
        EXPECT_EQ(each->alignment(), Qt::AlignCenter);
        EXPECT_LE(each->sizeHint().width(), each->width()) << each->text().toStdString();
        EXPECT_EQ(each->accessibleName(), each->text());
    }
}

TEST_F(SettingsWindowTest, explains_its_contents) {
    preferences_.setInteger(kQualityLevelKey, 1);
    EXPECT_EQ(label("Quality")->toolTip(), "Recording quality — drag the slider below.");
    EXPECT_EQ(label("Pretty Good")->toolTip(), "Current quality setting — moves with the slider.");
    EXPECT_EQ(settings().slider().toolTip(),
              "Drag to choose recording quality. Higher = clearer audio + larger files.");
    EXPECT_EQ(label("22.1 kHz mono · 16 kbps MP3")->toolTip(),
              "Sample rate, channel count, and bitrate of the selected quality.");
    EXPECT_EQ(label("1 hour ≈ 7.0 MB")->toolTip(),
              "Approximate file size for one hour of recording.");
    EXPECT_EQ(label("1 day ≈ 169 MB")->toolTip(),
              "Approximate file size for one full 24-hour day.");
    const std::array<const char*, 5> tips{
        "Crummy — 8 kbps. Smallest files; voice only.",
        "Pretty Good — 16 kbps. Good for routine logging.",
        "Good — 24 kbps. The default. Plenty for most stations.",
        "Really Good — 48 kbps. Music recognizable; airchecks worth keeping.",
        "Crazy Good — 96 kbps. Near broadcast quality; largest files."};
    std::map<int, QString> told;
    for (const auto* each : allOf<TextView>(settings().window()))
        if (frame(*each).y() == 120) told[frame(*each).x()] = each->toolTip();
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(told[5 + 115 * i], QString::fromUtf8(tips.at(static_cast<std::size_t>(i))));
}

TEST_F(SettingsWindowTest, stores_a_choice_at_once_and_tells_what_it_means) {
    open();
    QTest::mouseClick(&settings().slider(), Qt::LeftButton, {}, place(3));
    EXPECT_EQ(stored(), 3);
    EXPECT_EQ(texts().count("Really Good"), 2);
    EXPECT_NE(label("22.1 kHz mono · 48 kbps MP3"), nullptr);
    EXPECT_NE(label("1 hour ≈ 21.1 MB"), nullptr);
    EXPECT_NE(label("1 day ≈ 506 MB"), nullptr);
}

TEST_F(SettingsWindowTest, only_takes_the_places_of_its_ticks) {
    open();
    auto& slider = settings().slider();
    QTest::mousePress(&slider, Qt::LeftButton, {}, place(2));
    QTest::mouseMove(&slider, place(0.6));
    EXPECT_EQ(slider.value(), 1);
    EXPECT_EQ(stored(), 1);
    QTest::mouseMove(&slider, place(3.4));
    EXPECT_EQ(slider.value(), 3);
    QTest::mouseMove(&slider, place(9));
    EXPECT_EQ(slider.value(), 4);
    QTest::mouseRelease(&slider, Qt::LeftButton, {}, place(9));
    QTest::mouseMove(&slider, place(0));
    EXPECT_EQ(slider.value(), 4);
    EXPECT_EQ(stored(), 4);
}

TEST_F(SettingsWindowTest, stores_the_level_whose_place_is_clicked_though_the_knob_stands_there) {
    preferences_.setInteger(kQualityLevelKey, 7);  // which is none, and shown as the default
    open();
    QTest::mouseClick(&settings().slider(), Qt::LeftButton, {}, place(2));
    EXPECT_EQ(stored(), 2);
    EXPECT_EQ(settings().slider().value(), 2);
}

TEST_F(SettingsWindowTest, is_worked_with_the_arrow_keys) {
    open();
    QTest::keyClick(&settings().slider(), Qt::Key_Right);
    EXPECT_EQ(stored(), 3);
    QTest::keyClick(&settings().slider(), Qt::Key_Home);
    EXPECT_EQ(stored(), 0);
    QTest::keyClick(&settings().slider(), Qt::Key_Left);
    EXPECT_EQ(stored(), 0);
}

TEST_F(SettingsWindowTest, reopens_as_it_was_left) {
    open();
    QTest::keyClick(&settings().slider(), Qt::Key_Right);
    QWidget* const before = &settings().window();
    QTest::keyClick(before, Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(before->isVisible());
    open();
    EXPECT_EQ(&settings().window(), before);
    EXPECT_TRUE(before->isVisible());
    EXPECT_EQ(settings().slider().value(), 3);
}

TEST_F(SettingsWindowTest, draws_its_knob_over_the_tick_of_the_level) {
    open();
    const auto seen = [this] { return settings().slider().grab().toImage(); };
    const QPoint second = place(1);
    QTest::mouseClick(&settings().slider(), Qt::LeftButton, {}, second);
    EXPECT_EQ(seen().pixelColor(second), QColor(Qt::white));
    QTest::mouseClick(&settings().slider(), Qt::LeftButton, {}, place(3));
    EXPECT_EQ(seen().pixelColor(place(3)), QColor(Qt::white));
    EXPECT_EQ(seen().pixelColor(second), QColor(0, 112, 245)) << "the track up to the knob";
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(seen().pixelColor(place(i).x(), 22), QColor(114, 114, 118)) << i;
}

}  // namespace
}  // namespace sonavault::testing
