#include "review/SummaryBar.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "review/TimelineMapping.h"
#include "review/Waveform.h"

namespace sonavault::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// A track on which a point is a second.
constexpr double kPointASecond = kSecondsInDay;

Selection range(double start, double end) {
    return {.startSec = start, .endSec = end};
}

TEST(SummaryBarHits, an_edge_is_reached_from_5_points_away) {
    const std::vector<Selection> one{range(1000, 2000)};
    EXPECT_EQ(hitEdge(one, 995, kPointASecond), (EdgeHit{0, Edge::start}));
    EXPECT_EQ(hitEdge(one, 1005, kPointASecond), (EdgeHit{0, Edge::start}));
    EXPECT_EQ(hitEdge(one, 2005, kPointASecond), (EdgeHit{0, Edge::end}));
    EXPECT_EQ(hitEdge(one, 1005.5, kPointASecond), std::nullopt);
    EXPECT_EQ(hitEdge(one, 994.5, kPointASecond), std::nullopt);
}

TEST(SummaryBarHits, the_body_begins_where_the_edges_end) {
    const std::vector<Selection> one{range(1000, 2000)};
    EXPECT_EQ(hitBody(one, 1005.5, kPointASecond), 0U);
    EXPECT_EQ(hitBody(one, 1995, kPointASecond), 0U);
    EXPECT_EQ(hitBody(one, 1995.5, kPointASecond), std::nullopt);
    EXPECT_EQ(hitBody(one, 900, kPointASecond), std::nullopt);
}

TEST(SummaryBarHits, of_a_narrow_selection_the_lower_edge_wins) {
    const std::vector<Selection> narrow{range(1000, 1008)};
    EXPECT_EQ(hitEdge(narrow, 1004, kPointASecond), (EdgeHit{0, Edge::start}));
    EXPECT_EQ(hitBody(narrow, 1004, kPointASecond), std::nullopt);
}

TEST(SummaryBarHits, an_edge_is_the_field_of_the_record_and_not_the_side) {
    const std::vector<Selection> reversed{range(2000, 1000)};
    EXPECT_EQ(hitEdge(reversed, 1000, kPointASecond), (EdgeHit{0, Edge::end}));
    EXPECT_EQ(hitEdge(reversed, 2000, kPointASecond), (EdgeHit{0, Edge::start}));
    EXPECT_EQ(hitBody(reversed, 1500, kPointASecond), 0U);
}

TEST(SummaryBarHits, of_overlapping_selections_the_earlier_wins) {
    const std::vector<Selection> both{range(1000, 2000), range(1000, 3000)};
    EXPECT_EQ(hitEdge(both, 1000, kPointASecond), (EdgeHit{0, Edge::start}));
    EXPECT_EQ(hitEdge(both, 3000, kPointASecond), (EdgeHit{1, Edge::end}));
    EXPECT_EQ(hitBody(both, 1500, kPointASecond), 0U);
    EXPECT_EQ(hitBody(both, 2500, kPointASecond), 1U);
}

TEST(SummaryBarHits, the_pointer_shows_both_edges_of_each_selection) {
    EXPECT_THAT(resizeZones({range(2000, 1000)}, kPointASecond, 50),
                ElementsAre(Box{995, 0, 10, 50}, Box{1995, 0, 10, 50}));
}

TEST(SummaryBarAudio, of_the_day_that_is_recorded_grows_with_the_recorder) {
    const std::filesystem::path today = "/logs/Sonavault_2026-05-08.mp3";
    EXPECT_EQ(audioDurationSec(today, 100, std::nullopt), 100);
    EXPECT_EQ(audioDurationSec(today, 100, RecordingNow{today, 160}), 160);
    EXPECT_EQ(audioDurationSec(today, 100, RecordingNow{"/logs/other.mp3", 160}), 100);
    EXPECT_EQ(audioDurationSec(today, 100, RecordingNow{std::nullopt, 160}), 100);
}

TEST(Waveform, shows_from_factor_2_and_is_all_there_from_factor_4) {
    const PeaksData peaks{.bucketSec = 0.25, .rms = {1}};
    EXPECT_FALSE(showsWaveform(peaks, 1.99));
    EXPECT_TRUE(showsWaveform(peaks, 2));
    EXPECT_EQ(waveformAlpha(2), 0);
    EXPECT_DOUBLE_EQ(waveformAlpha(3), 0.275);
    EXPECT_EQ(waveformAlpha(4), 0.55);
    EXPECT_EQ(waveformAlpha(720), 0.55);
}

TEST(Waveform, needs_values_and_a_length_for_each) {
    EXPECT_FALSE(showsWaveform({.bucketSec = 0.25}, 4));
    EXPECT_FALSE(showsWaveform({.bucketSec = 0, .rms = {1}}, 4));
}

/// Four columns a bucket, or four buckets a column: what a test needs.
PeaksData peaksOf(double bucketSec, std::vector<float> rms, float maxRMS = 1) {
    return {.bucketSec = bucketSec, .rms = std::move(rms), .maxRMS = maxRMS};
}
constexpr Extent kAll{0, 1e9};

TEST(Waveform, a_column_is_as_high_as_the_average_under_it) {
    const auto columns = waveformColumns(peaksOf(0.25, {1, 0, 0.5F, 0.5F, 0.2F, 0.2F, 0.2F, 0.2F}),
                                         {kPointASecond, 50, {0}}, kAll);
    ASSERT_THAT(columns, SizeIs(2));
    EXPECT_EQ(columns[0], (WaveformColumn{0, 11.5}));
    EXPECT_EQ(columns[1].x, 1);
    EXPECT_NEAR(columns[1].halfHeight, 4.6, 1e-6);
}

TEST(Waveform, is_as_high_as_the_loudest_allows) {
    const auto columns =
        waveformColumns(peaksOf(1, {0.25F, 0.5F}, 0.5F), {kPointASecond, 50, {0}}, kAll);
    EXPECT_THAT(columns, ElementsAre(WaveformColumn{0, 11.5}, WaveformColumn{1, 23}));
    const auto silent = waveformColumns(peaksOf(1, {0.5F}, 0), {kPointASecond, 50, {0}}, kAll);
    EXPECT_THAT(silent, ElementsAre(WaveformColumn{0, 11.5}));
}

TEST(Waveform, leaves_out_what_is_lower_than_half_a_point) {
    // 0.02 of 23 points are 0.46.
    EXPECT_THAT(waveformColumns(peaksOf(1, {0.02F}), {kPointASecond, 50, {0}}, kAll), IsEmpty());
    EXPECT_THAT(waveformColumns(peaksOf(1, {0.03F}), {kPointASecond, 50, {0}}, kAll), SizeIs(1));
}

TEST(Waveform, begins_where_the_file_begins) {
    const auto columns = waveformColumns(peaksOf(1, {1, 0.5F}), {kPointASecond, 50, {3600}}, kAll);
    EXPECT_THAT(columns, ElementsAre(WaveformColumn{3600, 23}, WaveformColumn{3601, 11.5}));
}

TEST(Waveform, a_file_that_began_before_midnight_shows_what_is_of_this_day) {
    const auto columns =
        waveformColumns(peaksOf(1, {1, 0.5F, 0.25F}), {kPointASecond, 50, {-1}}, kAll);
    EXPECT_THAT(columns, ElementsAre(WaveformColumn{0, 11.5}, WaveformColumn{1, 5.75}));
}

TEST(Waveform, a_bucket_under_many_columns_is_drawn_in_each) {
    const auto columns = waveformColumns(peaksOf(4, {1, 0.5F}), {kPointASecond, 50, {0}}, {0, 100});
    ASSERT_THAT(columns, SizeIs(8));
    EXPECT_EQ(columns[3].halfHeight, 23);
    EXPECT_EQ(columns[4].halfHeight, 11.5);
}

TEST(Waveform, gives_the_exposed_columns_alone) {
    const auto peaks = peaksOf(1, std::vector<float>(86400, 0.5F));
    const WaveformTrack track{kPointASecond, 50, {0}};
    const auto columns = waveformColumns(peaks, track, {100.5, 103.2});
    ASSERT_THAT(columns, SizeIs(4));
    EXPECT_EQ(columns.front().x, 100);
    EXPECT_EQ(columns.back().x, 103);
    EXPECT_THAT(waveformColumns(peaks, track, {-50, 0}), IsEmpty());
    EXPECT_THAT(waveformColumns(peaks, track, {86398, 90000}), SizeIs(2));
    EXPECT_THAT(waveformColumns(peaks, track, {90000, 90100}), IsEmpty());
    EXPECT_THAT(waveformColumns(peaks, {0, 50, {0}}, kAll), IsEmpty());
}

TEST(Waveform, passes_over_what_no_bucket_can_be_told_of) {
    const auto peaks = peaksOf(1e-310, {1, 1});
    EXPECT_THAT(waveformColumns(peaks, {kPointASecond, 50, {1}}, {5, 8}), IsEmpty());
}

class SummaryBarFills : public ::testing::Test {
  protected:
    /// The boxes that are filled in one colour, in the order of drawing.
    std::vector<Box> boxesIn(const Colour& colour) const {
        std::vector<Box> boxes;
        for (const FilledBox& each : summaryBarFills(scene_, kAll))
            if (each.colour == colour) boxes.push_back(each.box);
        return boxes;
    }

    SummaryScene scene_{.size = {1000, 50}, .trackW = 1000};
};

TEST_F(SummaryBarFills, without_a_day_are_two_rules) {
    EXPECT_THAT(summaryBarFills(scene_, kAll),
                ElementsAre(FilledBox{{0, 0, 1000, 1}, kColorSummaryRule},
                            FilledBox{{0, 49, 1000, 1}, kColorSummaryRule}));
}

TEST_F(SummaryBarFills, without_a_file_still_show_selections_and_the_waiting_start) {
    const std::vector<Selection> selections{range(8640, 17280)};
    scene_.selections = &selections;
    scene_.pendingStartSec = 43200;
    EXPECT_THAT(boxesIn(kColorNoAudio), IsEmpty());
    EXPECT_THAT(boxesIn(kColorSelectionBand), ElementsAre(Box{100, 0, 100, 50}));
    EXPECT_THAT(boxesIn(kColorSelectionEdge), ElementsAre(Box{100, 0, 1, 50}, Box{199, 0, 1, 50}));
    EXPECT_THAT(boxesIn(kColorPendingStart), ElementsAre(Box{499, 0, 2, 50}));
}

TEST_F(SummaryBarFills, leave_the_ground_only_where_there_is_audio) {
    scene_.audio = AudioExtent{{8640}, 17280};
    EXPECT_THAT(boxesIn(kColorNoAudio), ElementsAre(Box{0, 1, 100, 48}, Box{300, 1, 700, 48}));
    scene_.audio = AudioExtent{{0}, 86400};
    EXPECT_THAT(boxesIn(kColorNoAudio), IsEmpty());
    scene_.audio = AudioExtent{{43200}, 90000};
    EXPECT_THAT(boxesIn(kColorNoAudio), ElementsAre(Box{0, 1, 500, 48}));
    scene_.audio = AudioExtent{{0}, 0};
    EXPECT_THAT(boxesIn(kColorNoAudio), ElementsAre(Box{0, 1, 1000, 48}));
}

TEST_F(SummaryBarFills, a_day_that_began_at_one_has_an_hour_without_audio_and_bucket_0_at_one) {
    const PeaksData peaks{.bucketSec = 3600, .rms = std::vector<float>(23, 0.5F), .maxRMS = 1};
    scene_.trackW = scene_.size.width = 2400;
    scene_.audio = AudioExtent{{3600}, 82800};
    scene_.currentRecordingOffset = {3600};
    scene_.peaksData = &peaks;
    scene_.zoomMult = 4;
    EXPECT_THAT(boxesIn(kColorNoAudio), ElementsAre(Box{0, 1, 100, 48}));
    const auto columns = boxesIn(kColorWaveform.withAlpha(0.55));
    ASSERT_THAT(columns, SizeIs(2300));
    EXPECT_EQ(columns.front(), (Box{100, 25 - 11.5, 1, 23}));
}

TEST_F(SummaryBarFills, fade_the_waveform_in) {
    const PeaksData peaks{.bucketSec = 86400, .rms = {1}, .maxRMS = 1};
    scene_.peaksData = &peaks;
    scene_.zoomMult = 1.99;
    EXPECT_THAT(summaryBarFills(scene_, kAll), SizeIs(2));
    scene_.zoomMult = 2;
    EXPECT_THAT(boxesIn(kColorWaveform.withAlpha(0)), SizeIs(1000));
    scene_.zoomMult = 3;
    EXPECT_THAT(boxesIn(kColorWaveform.withAlpha(0.275)), SizeIs(1000));
}

TEST_F(SummaryBarFills, paint_all_bands_before_any_edge) {
    const std::vector<Selection> selections{range(8640, 17280), range(25920, 12960)};
    scene_.selections = &selections;
    const auto fills = summaryBarFills(scene_, kAll);
    ASSERT_THAT(fills, SizeIs(2 + 2 + 4));
    EXPECT_EQ(fills[3], (FilledBox{{150, 0, 150, 50}, kColorSelectionBand}));
    for (std::size_t i = 4; i < fills.size(); ++i) EXPECT_EQ(fills[i].colour, kColorSelectionEdge);
}

}  // namespace
}  // namespace sonavault::testing
