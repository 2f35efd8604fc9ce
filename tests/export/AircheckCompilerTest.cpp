#include "export/AircheckCompiler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Pair = std::pair<double, double>;

constexpr auto kHeader = "timestamp,event,label,duration\n";

std::vector<Pair> pairsOf(const std::vector<Selection>& segments) {
    std::vector<Pair> pairs;
    for (const auto& each : segments) pairs.emplace_back(each.startSec, each.endSec);
    return pairs;
}

std::vector<Pair> live(const std::string& rows) {
    return pairsOf(aircheckSegmentsIn(kHeader + rows, AircheckMode::liveMic));
}

std::vector<Pair> voicetracks(const std::string& rows) {
    return pairsOf(aircheckSegmentsIn(kHeader + rows, AircheckMode::voicetracked));
}

TEST(AircheckCompiler, pads_a_span_by_eight_seconds) {
    EXPECT_THAT(live("10:00:00,mic_start,,0\n10:02:00,mic_end,,0\n"),
                ElementsAre(Pair(35992, 36128)));
}

TEST(AircheckCompiler, does_not_begin_before_the_day_but_may_end_after_it) {
    EXPECT_THAT(live("00:00:03,mic_start,,0\n00:01:00,mic_end,,0\n"), ElementsAre(Pair(0, 68)));
    EXPECT_THAT(live("23:59:00,mic_start,,0\n23:59:59,mic_end,,0\n"),
                ElementsAre(Pair(86332, 86407)));
}

TEST(AircheckCompiler, merges_spans_whose_padding_overlaps_or_touches) {
    const std::string first = "00:01:00,mic_start,,0\n00:02:00,mic_end,,0\n";
    EXPECT_THAT(live(first + "00:02:10,mic_start,,0\n00:03:00,mic_end,,0\n"),
                ElementsAre(Pair(52, 188)));
    EXPECT_THAT(live(first + "00:02:16,mic_start,,0\n00:03:00,mic_end,,0\n"),
                ElementsAre(Pair(52, 188)));
    EXPECT_THAT(live(first + "00:02:17,mic_start,,0\n00:03:00,mic_end,,0\n"),
                ElementsAre(Pair(52, 128), Pair(129, 188)));
}

TEST(AircheckCompiler, takes_the_last_of_several_beginnings) {
    EXPECT_THAT(live("01:00:00,mic_start,,0\n01:01:00,mic_start,,0\n01:02:00,mic_end,,0\n"),
                ElementsAre(Pair(3652, 3728)));
}

TEST(AircheckCompiler, ignores_an_end_without_a_beginning_and_a_beginning_without_an_end) {
    EXPECT_THAT(live("01:00:00,mic_end,,0\n01:01:00,mic_start,,0\n"), IsEmpty());
    EXPECT_THAT(live("01:01:00,mic_start,,0\n01:02:00,mic_end,,0\n01:03:00,mic_end,,0\n"),
                ElementsAre(Pair(3652, 3728)));
}

TEST(AircheckCompiler, looks_at_the_events_of_its_kind_only) {
    const std::string both =
        "01:00:00,mic_start,,0\n01:00:30,vt_start,,0\n01:01:00,vt_end,,0\n01:02:00,mic_end,,0\n"
        "01:30:00,mic,,60\n01:40:00,Mic_start,,0\n";
    EXPECT_THAT(live(both), ElementsAre(Pair(3592, 3728)));
    EXPECT_THAT(voicetracks(both), ElementsAre(Pair(3622, 3668)));
}

TEST(AircheckCompiler, takes_a_voicetrack_from_its_start_to_its_end) {
    EXPECT_THAT(voicetracks("01:00:00,vt_pre,,0\n01:00:10,vt_start,,0\n01:01:00,vt_end,,0\n"
                            "01:01:30,vt_post,,0\n"),
                ElementsAre(Pair(3602, 3668)));
    EXPECT_THAT(voicetracks("01:00:00,vt_pre,,0\n01:01:30,vt_post,,0\n"),
                ElementsAre(Pair(3592, 3698)));
}

TEST(AircheckCompiler, wants_the_words_as_the_log_has_them) {
    EXPECT_THAT(voicetracks("01:00:00,vt-pre,,0\n01:01:30,vt-post,,0\n"), IsEmpty());
}

TEST(AircheckCompiler, puts_the_events_in_order_and_keeps_that_of_the_log_in_the_same_second) {
    EXPECT_THAT(live("01:02:00,mic_end,,0\n01:00:00,mic_start,,0\n"),
                ElementsAre(Pair(3592, 3728)));
    EXPECT_THAT(live("01:00:00,mic_start,,0\n01:00:00,mic_end,,0\n"),
                ElementsAre(Pair(3592, 3608)));
    EXPECT_THAT(live("01:00:00,mic_end,,0\n01:00:00,mic_start,,0\n"), IsEmpty());
}

TEST(AircheckCompiler, takes_rows_of_two_columns_and_passes_over_damaged_ones) {
    EXPECT_THAT(live("01:00:00,mic_start\n\n01:00:30\n01:00:40.5,mic_end,,0\nx,mic_end\n"
                     "01:02:00,mic_end"),
                ElementsAre(Pair(3592, 3728)));
}

TEST(AircheckCompiler, skips_the_first_line_whatever_it_holds) {
    EXPECT_THAT(
        aircheckSegmentsIn("01:00:00,mic_start,,0\n01:02:00,mic_end,,0\n", AircheckMode::liveMic),
        IsEmpty());
    EXPECT_THAT(live(""), IsEmpty());
    EXPECT_THAT(aircheckSegmentsIn("", AircheckMode::liveMic), IsEmpty());
    EXPECT_THAT(aircheckSegmentsIn("\n\n", AircheckMode::liveMic), IsEmpty());
}

TEST(AircheckCompiler, gives_each_segment_an_identity_of_its_own) {
    const auto segments =
        aircheckSegmentsIn(std::string(kHeader) +
                               "01:00:00,mic_start\n01:02:00,mic_end\n02:00:00,mic_start\n"
                               "02:02:00,mic_end\n",
                           AircheckMode::liveMic);
    ASSERT_EQ(segments.size(), 2u);
    EXPECT_NE(segments[0].id, segments[1].id);
    EXPECT_FALSE(segments[0].id.isNull());
}

TEST(AircheckCompiler, reads_the_log_beside_the_audio) {
    const TempFolder folder;
    const auto audio = folder / "Sonavault_2026-05-08.m4a";
    EXPECT_THAT(computeAircheckSegments(std::nullopt, AircheckMode::liveMic), IsEmpty());
    EXPECT_THAT(computeAircheckSegments(audio, AircheckMode::liveMic), IsEmpty());
    const std::string rows = std::string(kHeader) + "01:00:00,mic_start\n01:02:00,mic_end\n";
    writeFile(folder / "Sonavault_2026-05-08.csv", rows);
    EXPECT_THAT(pairsOf(computeAircheckSegments(audio, AircheckMode::liveMic)),
                ElementsAre(Pair(3592, 3728)));
    writeFile(folder / "Sonavault_2026-05-08.csv", rows + "01:00:00,note,\xff\n");
    EXPECT_THAT(computeAircheckSegments(audio, AircheckMode::liveMic), IsEmpty());
}

TEST(AircheckMode, is_voicetracked_unless_it_is_exactly_live) {
    EXPECT_EQ(aircheckModeNamed("liveMic"), AircheckMode::liveMic);
    for (const auto* name : {"voicetracked", "livemic", "LiveMic", "", "liveMic "})
        EXPECT_EQ(aircheckModeNamed(name), AircheckMode::voicetracked) << name;
    EXPECT_EQ(aircheckModeName(AircheckMode::liveMic), "liveMic");
    EXPECT_EQ(aircheckModeName(AircheckMode::voicetracked), "voicetracked");
}

TEST(BeginningIn, tests_the_padded_beginning_and_nothing_else) {
    const auto kept = [](HourWindow window, double start, double end) {
        return !beginningIn(window, {Selection{.startSec = start, .endSec = end}}).empty();
    };
    EXPECT_TRUE(kept({10, 10}, 36000, 90000));
    EXPECT_FALSE(kept({10, 10}, 35999, 36100));
    EXPECT_TRUE(kept({10, 10}, 39599, 39700));
    EXPECT_FALSE(kept({10, 10}, 39600, 39700));
    EXPECT_TRUE(kept({0, 23}, 86399, 86500));
    EXPECT_FALSE(kept({0, 23}, 86400, 86500));
}

}  // namespace
}  // namespace sonavault::testing
