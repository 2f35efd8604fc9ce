#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QImage>
#include <cmath>

#include "review/TimeAxis.h"
#include "views/PaintCounter.h"
#include "views/Painting.h"
#include "views/TimelineWindow.h"

namespace sonavault::testing {
namespace {

/// What one looks for: a colour, give or take the last bit of its sums.
MATCHER_P(Looks, expected, "") {
    const QColor wanted = toQColor(expected);
    const QColor seen(arg);
    *result_listener << "which is " << seen.name().toStdString() << " and not "
                     << wanted.name().toStdString();
    const auto near = [](int a, int b) { return std::abs(a - b) <= 1; };
    return near(seen.red(), wanted.red()) && near(seen.green(), wanted.green()) &&
           near(seen.blue(), wanted.blue());
}

Colour over(Colour ground, Colour above) {
    const auto mixed = [&](double below, double on) {
        return below * (1 - above.alpha) + on * above.alpha;
    };
    return {mixed(ground.red, above.red), mixed(ground.green, above.green),
            mixed(ground.blue, above.blue)};
}

/// A timeline on which a point is 80 seconds of the day, and of which each lane is 100 points high.
class TimelinePaintingTest : public ::testing::Test {
  protected:
    static constexpr int kBar = 600;
    static constexpr int kAxis = 650;

    /// What is seen.
    QImage picture() { return window_.view.viewport()->grab().toImage(); }
    static int middleOf(Lane lane) { return static_cast<int>(lane) * 100 + 50; }

    /// The same at another scale of the screen.
    QImage pictureAt(double scale) {
        QImage image((QSizeF(window_.view.size()) * scale).toSize(), QImage::Format_RGB32);
        image.setDevicePixelRatio(scale);
        window_.view.viewport()->render(&image);
        return image;
    }

    TimelineWindow window_{QSize(1080, 682)};
};

TEST_F(TimelinePaintingTest, lanes_have_grounds_of_their_own_and_a_line_below) {
    const QImage seen = picture();
    for (const LaneDescription& each : laneOrder) {
        const int top = static_cast<int>(each.lane) * 100;
        EXPECT_THAT(seen.pixel(500, top), Looks(each.tint));
        EXPECT_THAT(seen.pixel(500, top + 98), Looks(each.tint));
        EXPECT_THAT(seen.pixel(500, top + 99), Looks(kColorLaneSep));
    }
}

TEST_F(TimelinePaintingTest, an_hour_is_a_tick_two_points_wide) {
    window_.playhead = kSecondsInDay;
    window_.haveMarkers({{"hour", 8000, "", 0}});
    const QImage seen = picture();
    EXPECT_THAT(seen.pixel(98, 50), Looks(kColorLaneTintHour));
    EXPECT_THAT(seen.pixel(99, 4), Looks(kColorMarkerHour));
    EXPECT_THAT(seen.pixel(100, 95), Looks(kColorMarkerHour));
    EXPECT_THAT(seen.pixel(101, 50), Looks(kColorLaneTintHour));
    EXPECT_THAT(seen.pixel(99, 3), Looks(kColorLaneTintHour));
    EXPECT_THAT(seen.pixel(99, 96), Looks(kColorLaneTintHour));
}

TEST_F(TimelinePaintingTest, an_instant_is_a_pin_eight_points_wide) {
    window_.haveMarkers({{"eas", 8000, "", 120}});
    const QImage seen = picture();
    const int y = middleOf(Lane::eas);
    EXPECT_THAT(seen.pixel(95, y), Looks(kColorLaneTintEAS));
    for (int x = 96; x < 104; ++x) EXPECT_THAT(seen.pixel(x, y), Looks(kColorMarkerEAS));
    EXPECT_THAT(seen.pixel(104, y), Looks(kColorLaneTintEAS));
    EXPECT_THAT(seen.pixel(100, y - 8), Looks(kColorMarkerEAS));
    EXPECT_THAT(seen.pixel(96, y - 11), Looks(kColorLaneTintEAS));
    EXPECT_THAT(seen.pixel(100, y + 11), Looks(kColorMarkerEAS));
    EXPECT_THAT(seen.pixel(100, y + 12), Looks(kColorLaneTintEAS));
}

TEST_F(TimelinePaintingTest, a_span_is_half_transparent_under_a_point_at_its_start) {
    window_.haveMarkers({{"break", 8000, "", 8000}});
    const QImage seen = picture();
    const int y = middleOf(Lane::breaks);
    const Colour half = over(kColorLaneTintBreak, kColorMarkerBreak.withAlpha(0.5));
    EXPECT_THAT(seen.pixel(99, y), Looks(kColorLaneTintBreak));
    EXPECT_THAT(seen.pixel(100, y), Looks(half));
    EXPECT_THAT(seen.pixel(199, y), Looks(half));
    EXPECT_THAT(seen.pixel(200, y), Looks(kColorLaneTintBreak));
    EXPECT_THAT(seen.pixel(104, y - 7), Looks(kColorMarkerBreak));
    EXPECT_THAT(seen.pixel(150, y - 7), Looks(kColorLaneTintBreak));
}

TEST_F(TimelinePaintingTest, a_short_span_is_no_less_than_eight_points_wide) {
    window_.haveMarkers({{"vt", 8000, "", 1}});
    const QImage seen = picture();
    const int y = middleOf(Lane::vt);
    const Colour half = over(kColorLaneTintVT, kColorMarkerVT.withAlpha(0.5));
    EXPECT_THAT(seen.pixel(99, y), Looks(kColorLaneTintVT));
    EXPECT_THAT(seen.pixel(100, y), Looks(half));
    EXPECT_THAT(seen.pixel(107, y), Looks(half));
    EXPECT_THAT(seen.pixel(108, y), Looks(kColorLaneTintVT));
}

TEST_F(TimelinePaintingTest, a_span_without_a_length_is_a_pin_though_one_with_it_was_drawn_first) {
    window_.haveMarkers({{"vt", 8000, "", 1}, {"vt", 16000, "", 0}});
    const QImage seen = picture();
    EXPECT_THAT(seen.pixel(200, middleOf(Lane::vt)), Looks(kColorMarkerVT));
}

TEST_F(TimelinePaintingTest, arrows_enclose_what_they_mark) {
    window_.haveMarkers({{"mic_start", 8000, "", 30}, {"mic_end", 16000, "", 0}});
    const QImage seen = picture();
    const int y = middleOf(Lane::mic);
    EXPECT_THAT(seen.pixel(99, y), Looks(kColorLaneTintMic));
    EXPECT_THAT(seen.pixel(100, y), Looks(kColorMarkerMic));
    EXPECT_THAT(seen.pixel(100, y - 9), Looks(kColorMarkerMic));
    EXPECT_THAT(seen.pixel(108, y - 9), Looks(kColorLaneTintMic));
    EXPECT_THAT(seen.pixel(111, y), Looks(kColorLaneTintMic));
    EXPECT_THAT(seen.pixel(199, y), Looks(kColorMarkerMic));
    EXPECT_THAT(seen.pixel(200, y), Looks(kColorLaneTintMic));
    EXPECT_THAT(seen.pixel(191, y + 9), Looks(kColorLaneTintMic));
}

TEST_F(TimelinePaintingTest, a_later_marker_lies_on_an_earlier_one) {
    window_.haveMarkers({{"silence_end", 8000, "", 0}, {"note", 8160, "", 0}});
    const QImage seen = picture();
    EXPECT_THAT(seen.pixel(97, middleOf(Lane::custom)), Looks(kColorMarkerSilence));
    EXPECT_THAT(seen.pixel(99, middleOf(Lane::custom)), Looks(kColorMarkerCustom));
}

TEST_F(TimelinePaintingTest, more_types_than_a_station_uses_are_all_drawn) {
    std::vector<Marker> markers;
    for (int i = 0; i < 100; ++i)
        markers.push_back({"note" + std::to_string(i), 400.0 + i * 800, "", 0});
    window_.playhead = kSecondsInDay;
    window_.haveMarkers(markers);
    const QImage seen = picture();
    for (int i = 0; i < 100; ++i)
        EXPECT_THAT(seen.pixel(5 + i * 10, middleOf(Lane::custom)), Looks(kColorMarkerCustom));
}

TEST_F(TimelinePaintingTest, the_axis_has_a_tick_at_each_hour) {
    const QImage seen = picture();
    EXPECT_THAT(seen.pixel(500, kAxis), Looks(over(kColorTimeAxisBG, kColorTimeAxisRule)));
    EXPECT_THAT(seen.pixel(500, kAxis + 1), Looks(kColorTimeAxisBG));
    for (int hour = 1; hour < 24; ++hour) {
        EXPECT_THAT(seen.pixel(hour * 45, kAxis + 10), Looks(kColorTimeAxisTick));
        EXPECT_THAT(seen.pixel(hour * 45, kAxis + 31), Looks(kColorTimeAxisTick));
        EXPECT_THAT(seen.pixel(hour * 45 + 1, kAxis + 10), Looks(kColorTimeAxisBG));
    }
}

TEST_F(TimelinePaintingTest, hours_are_written_right_of_their_ticks_and_above_the_lower_edge) {
    const QImage seen = picture();
    QRect ink;
    for (int y = kAxis + 2; y < kAxis + 32; ++y)
        for (int x = 91; x < 135; ++x)
            if (QColor(seen.pixel(x, y)).lightness() < 160) ink = ink.united(QRect(x, y, 1, 1));
    EXPECT_GE(ink.left(), 95);
    EXPECT_LE(ink.left(), 97);
    EXPECT_GT(ink.width(), 25);
    EXPECT_GE(ink.top(), kAxis + 32 - 12 - 6);
    EXPECT_LE(ink.bottom(), kAxis + 28);
}

TEST_F(TimelinePaintingTest, without_a_day_the_bar_is_its_ground_between_two_rules) {
    window_.playhead = kSecondsInDay;
    const QImage seen = picture();
    EXPECT_THAT(seen.pixel(500, kBar + 1), Looks(kColorSummaryTop));
    EXPECT_THAT(seen.pixel(500, kBar + 48), Looks(kColorSummaryBot));
    EXPECT_LT(QColor(seen.pixel(500, kBar)).lightness(),
              QColor(seen.pixel(500, kBar + 1)).lightness());
    EXPECT_LT(QColor(seen.pixel(500, kBar + 49)).lightness(),
              QColor(seen.pixel(500, kBar + 48)).lightness());
}

TEST_F(TimelinePaintingTest, the_bar_is_grey_where_there_is_no_audio) {
    window_.scene.audio = AudioExtent{{8000}, 16000};
    const QImage seen = picture();
    EXPECT_THAT(seen.pixel(99, kBar + 25), Looks(kColorNoAudio));
    EXPECT_NE(seen.pixel(100, kBar + 25), seen.pixel(99, kBar + 25));
    EXPECT_NE(seen.pixel(299, kBar + 25), seen.pixel(300, kBar + 25));
    EXPECT_THAT(seen.pixel(300, kBar + 25), Looks(kColorNoAudio));
}

TEST_F(TimelinePaintingTest, selections_are_bands_between_edge_lines) {
    window_.chosen.append({8000}, {16000});
    const QImage seen = picture();
    const auto ground = [&](int x) {
        const QColor colour(picture().pixel(x, kBar + 25));
        return rgb(colour.red(), colour.green(), colour.blue());
    };
    const Colour bare = ground(250);
    const Colour band = over(bare, kColorSelectionBand);
    EXPECT_THAT(seen.pixel(99, kBar + 25), Looks(bare));
    EXPECT_THAT(seen.pixel(100, kBar + 25), Looks(over(band, kColorSelectionEdge)));
    EXPECT_THAT(seen.pixel(101, kBar + 25), Looks(band));
    EXPECT_THAT(seen.pixel(198, kBar + 25), Looks(band));
    EXPECT_THAT(seen.pixel(199, kBar + 25), Looks(over(band, kColorSelectionEdge)));
    EXPECT_THAT(seen.pixel(200, kBar + 25), Looks(bare));
}

TEST_F(TimelinePaintingTest, the_waveform_comes_with_the_zoom) {
    PeaksData peaks{.bucketSec = 1, .totalDurationSec = kSecondsInDay};
    peaks.rms.assign(86400, 0.5F);
    window_.scene.peaksData = &peaks;
    const QRgb bare = picture().pixel(500, kBar + 10);

    window_.haveZoom(1);

    const QImage seen = picture();
    const QColor above(seen.pixel(500, kBar + 8));
    const QColor within(seen.pixel(500, kBar + 20));
    EXPECT_GT(within.lightness(), above.lightness() + 40);
    EXPECT_EQ(seen.pixel(500, kBar + 10), bare);
}

TEST_F(TimelinePaintingTest, the_playhead_is_a_line_under_a_cap) {
    window_.playhead = 8000;
    window_.layOutLogsTab();
    const QImage seen = picture();
    for (const int y : {20, kBar + 25, kAxis + 31}) {
        EXPECT_THAT(seen.pixel(99, y), Looks(kColorPlayhead));
        EXPECT_THAT(seen.pixel(100, y), Looks(kColorPlayhead));
    }
    EXPECT_THAT(seen.pixel(98, 20), Looks(kColorLaneTintHour));
    EXPECT_THAT(seen.pixel(101, 20), Looks(kColorLaneTintHour));
    EXPECT_THAT(seen.pixel(96, 1), Looks(kColorPlayhead));
    EXPECT_THAT(seen.pixel(103, 1), Looks(kColorPlayhead));
    EXPECT_THAT(seen.pixel(96, 6), Looks(kColorLaneTintHour));
}

TEST_F(TimelinePaintingTest, a_moving_playhead_draws_only_where_it_was_and_is) {
    PaintCounter watch(window_.inner());
    ASSERT_NO_FATAL_FAILURE(watch.settle());
    window_.inner().setPlayheadFrame({499, 0, 2, 682});
    watch.takeRegion();

    window_.inner().setPlayheadFrame({500, 0, 2, 682});

    const QRegion drawn = watch.takeRegion();
    EXPECT_TRUE(drawn.contains(QRect(499, 0, 3, 682)));
    EXPECT_TRUE(QRegion(490, 0, 22, 682).subtracted(drawn).intersects(QRect(490, 20, 5, 600)));
    EXPECT_TRUE(drawn.subtracted(QRegion(490, 0, 22, 682)).isEmpty());
    int pixels = 0;
    for (const QRect& each : drawn) pixels += each.width() * each.height();
    EXPECT_LT(pixels, 682 * 10);
}

TEST_F(TimelinePaintingTest, a_playhead_that_stays_on_its_pixel_draws_nothing) {
    window_.inner().setPlayheadFrame({500.01, 0, 2, 682});
    PaintCounter watch(window_.inner());
    ASSERT_NO_FATAL_FAILURE(watch.settle());
    window_.inner().setPlayheadFrame({500.02, 0, 2, 682});
    EXPECT_TRUE(watch.takeRegion().isEmpty());
}

TEST_F(TimelinePaintingTest, a_change_of_the_selections_draws_the_bar_alone) {
    PaintCounter watch(window_.inner());
    ASSERT_NO_FATAL_FAILURE(watch.settle());
    window_.inner().redrawSummaryBar();
    EXPECT_EQ(watch.takeRegion().boundingRect(), QRect(0, kBar, 1080, 50));
}

/// A day with everything on it, at each of the presets.
class TimelinePicture : public TimelinePaintingTest, public ::testing::WithParamInterface<int> {
  protected:
    TimelinePicture() {
        peaks_.rms.assign(86400, 0.3F);
        window_.scene.peaksData = &peaks_;
        window_.scene.audio = AudioExtent{{3600}, 70000};
        window_.chosen.append({42000}, {43300});
        window_.playhead = 43210;
        std::vector<Marker> markers;
        for (int i = 0; i < 200; ++i)
            for (const char* type : {"hour", "break", "vt_start", "vt", "mic_end", "eas", "other"})
                markers.push_back({type, i * 432.0 + 7.3, "", i % 2 * 200.0});
        window_.haveMarkers(markers);
        window_.haveZoom(static_cast<std::size_t>(GetParam()));
        window_.timers.pass(2);  // the scroll bars are gone
    }

  private:
    PeaksData peaks_{.bucketSec = 1, .totalDurationSec = kSecondsInDay};
};

TEST_P(TimelinePicture, is_the_same_when_it_is_drawn_in_pieces) {
    const QImage whole = picture();
    QImage pieces(whole.size(), whole.format());
    pieces.fill(Qt::magenta);
    QWidget& viewport = *window_.view.viewport();
    for (int left = 0; left < viewport.width(); left += 37) {
        const QRegion stripes = QRegion(left, 0, 37, 300) + QRegion(left, 300, 37, 382);
        viewport.render(&pieces, {left, 0}, stripes);
    }
    EXPECT_EQ(pieces.convertToFormat(QImage::Format_RGB32),
              whole.convertToFormat(QImage::Format_RGB32));
}
INSTANTIATE_TEST_SUITE_P(AtEachPreset, TimelinePicture, ::testing::Range(0, 5));

/// Screens on which a point is no whole number of pixels.
class TimelineScales : public TimelinePaintingTest, public ::testing::WithParamInterface<double> {};

TEST_P(TimelineScales, lines_stay_crisp) {
    window_.playhead = 0;
    window_.haveMarkers({{"hour", 8123, "", 0}, {"eas", 8123, "", 0}});
    const double scale = GetParam();
    const QImage seen = pictureAt(scale);
    const auto row = [scale](double points) { return static_cast<int>(points * scale); };
    // Every pixel of a row is one colour or the other: nothing is smeared over two.
    int ticks = 0;
    for (int x = row(60); x < row(200); ++x) {
        const QRgb pixel = seen.pixel(x, row(50));
        if (QColor(pixel) == toQColor(kColorMarkerHour))
            ++ticks;
        else
            EXPECT_THAT(pixel, Looks(kColorLaneTintHour));
    }
    EXPECT_EQ(ticks, qRound(2 * scale));
    int separators = 0;
    for (int y = row(60); y < row(140); ++y)
        if (QColor(seen.pixel(row(500), y)) == toQColor(kColorLaneSep)) ++separators;
    EXPECT_EQ(separators, qRound(scale));
    // No seam between a pin's point and its body.
    for (double y = 442; y < 461; y += 0.25)
        EXPECT_THAT(seen.pixel(row(8123 / 80.0), row(y)), Looks(kColorMarkerEAS));
}
INSTANTIATE_TEST_SUITE_P(OfTheScreen, TimelineScales, ::testing::Values(1.0, 1.25, 1.5, 2.0));

}  // namespace
}  // namespace sonavault::testing
