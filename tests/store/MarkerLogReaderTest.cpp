#include "store/MarkerLogReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "store/MarkerLogWriter.h"
#include "support/TempFolder.h"

namespace sonavault {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::TempFolder;
using testing::writeFile;

using Fields = std::vector<std::string>;

const std::string kHeader = kMarkerLogHeader;

/// The markers of a log with its header and these rows.
std::vector<Marker> markersOf(const std::string& rows) {
    const auto markers = parseMarkerText(kHeader + rows);
    EXPECT_TRUE(markers) << rows;
    return markers.value_or(std::vector<Marker>{});
}

/// The one marker of a log with this row.
Marker markerOf(const std::string& row) {
    const auto markers = markersOf(row + "\n");
    EXPECT_EQ(markers.size(), 1U) << row;
    return markers.empty() ? Marker{} : markers.front();
}

TEST(ParseCSVRow, splits_at_commas_and_keeps_empty_fields) {
    EXPECT_EQ(parseCSVRow("a,b,c"), (Fields{"a", "b", "c"}));
    EXPECT_EQ(parseCSVRow(""), (Fields{""}));
    EXPECT_EQ(parseCSVRow(","), (Fields{"", ""}));
    EXPECT_EQ(parseCSVRow(",a,,"), (Fields{"", "a", "", ""}));
}

TEST(ParseCSVRow, takes_quotes_off_a_field_and_pairs_of_quotes_for_one) {
    EXPECT_EQ(parseCSVRow("\"a,b\",c"), (Fields{"a,b", "c"}));
    EXPECT_EQ(parseCSVRow("\"say \"\"hi\"\"\""), (Fields{"say \"hi\""}));
    EXPECT_EQ(parseCSVRow("\"\",\"\"\"\""), (Fields{"", "\""}));
    EXPECT_EQ(parseCSVRow("\",\""), (Fields{","}));
}

TEST(ParseCSVRow, keeps_a_quote_within_a_field_that_has_text) {
    EXPECT_EQ(parseCSVRow("a\"b,c\"\"d"), (Fields{"a\"b", "c\"\"d"}));
    EXPECT_EQ(parseCSVRow(" \"a\""), (Fields{" \"a\""}));
}

TEST(ParseCSVRow, goes_on_outside_when_text_follows_the_closing_quote) {
    EXPECT_EQ(parseCSVRow("\"a\"b,c"), (Fields{"ab", "c"}));
    EXPECT_EQ(parseCSVRow("\"a\"b\"c,d\""), (Fields{"ab\"c", "d\""}));
    // An empty pair leaves the field empty, so that the next quote enters again.
    EXPECT_EQ(parseCSVRow("\"\"x"), (Fields{"x"}));
}

TEST(ParseCSVRow, ends_an_open_quote_with_the_line) {
    EXPECT_EQ(parseCSVRow("a,\"b,c"), (Fields{"a", "b,c"}));
    EXPECT_EQ(parseCSVRow("a,\""), (Fields{"a", ""}));
    EXPECT_EQ(parseCSVRow("\"a\"\""), (Fields{"a\""}));
}

TEST(ParseCSVRow, keeps_a_carriage_return_as_a_character) {
    EXPECT_EQ(parseCSVRow("a,b\r"), (Fields{"a", "b\r"}));
}

TEST(MarkerTimeSec, is_the_second_of_the_day) {
    EXPECT_EQ(markerTimeSec("08:01:02"), 28862.0);
    EXPECT_EQ(markerTimeSec("00:00:00"), 0.0);
    EXPECT_EQ(markerTimeSec("8:1:2"), 28862.0);
}

TEST(MarkerTimeSec, is_not_tested_for_range) {
    EXPECT_EQ(markerTimeSec("24:00:00"), 86400.0);
    EXPECT_EQ(markerTimeSec("99:00:00"), 356400.0);
    EXPECT_EQ(markerTimeSec("00:99:00"), 5940.0);
    EXPECT_EQ(markerTimeSec("-1:+2:3"), -3477.0);
    EXPECT_GT(markerTimeSec("9223372036854775807:0:0"), 1e22);
}

TEST(MarkerTimeSec, counts_only_the_pieces_that_are_integers) {
    EXPECT_EQ(markerTimeSec("08::01:02"), 28862.0);
    EXPECT_EQ(markerTimeSec("x:08:01:02"), 28862.0);
    EXPECT_EQ(markerTimeSec("08:01:02.5"), std::nullopt);
    EXPECT_EQ(markerTimeSec("08:01: 2"), std::nullopt);
    EXPECT_EQ(markerTimeSec("08:01:+-2"), std::nullopt);
    EXPECT_EQ(markerTimeSec("08:01:9223372036854775808"), std::nullopt);
}

TEST(MarkerTimeSec, wants_exactly_three_pieces) {
    for (const auto* timestamp : {"", ":", "08", "08:01", "08:01:02:03", "::::", "timestamp"})
        EXPECT_EQ(markerTimeSec(timestamp), std::nullopt) << timestamp;
}

TEST(MarkerLog, gives_the_rows_in_their_order) {
    EXPECT_THAT(markersOf("09:00:00,hour,,0\n08:01:02,mic_start,Anna,45.5\n09:00:00,hour,,0\n"),
                ElementsAre(Marker{"hour", 32400, "", 0}, Marker{"mic_start", 28862, "Anna", 45.5},
                            Marker{"hour", 32400, "", 0}));
}

TEST(MarkerLog, calls_breaks_and_parts_of_voicetracks_by_the_names_of_the_timeline) {
    EXPECT_EQ(markerOf("08:00:00,break_start,,0").type, "break");
    EXPECT_EQ(markerOf("08:00:00,break_end,,0").type, "break");
    EXPECT_EQ(markerOf("08:00:00,vt_pre,,0").type, "vt-pre");
    EXPECT_EQ(markerOf("08:00:00,vt_post,,0").type, "vt-post");
}

TEST(MarkerLog, leaves_all_other_types_as_they_stand) {
    for (const std::string type :
         {"vt_start", "vt_end", "mic_end", "hour", "Break_start", "", "x y"})
        EXPECT_EQ(markerOf("08:00:00," + type + ",,0").type, type);
}

TEST(MarkerLog, reads_back_a_label_with_a_comma_and_quotes) {
    const std::string label = R"(Anna, "live" from "the, box")";
    EXPECT_EQ(markersOf(markerRow("08:00:00", "custom", label, 1.5)).front(),
              (Marker{"custom", 28800, label, 1.5}));
}

TEST(MarkerLog, reads_back_a_label_of_only_a_comma) {
    EXPECT_EQ(markersOf(markerRow("08:00:00", "custom", ",", 0)).front().label, ",");
}

TEST(MarkerLog, reads_a_label_of_two_lines_as_two_damaged_rows_of_which_the_second_is_dropped) {
    const auto markers = markersOf(markerRow("08:00:00", "custom", "one\ntwo, 2", 7) +
                                   markerRow("08:00:01", "hour", "", 0));
    EXPECT_THAT(markers,
                ElementsAre(Marker{"custom", 28800, "one", 0}, Marker{"hour", 28801, "", 0}));
}

TEST(MarkerLog, reads_a_label_of_60000_characters) {
    std::string label;
    while (label.size() < 60000) label += "a \"quoted, part\" – ";
    const auto markers =
        markersOf(markerRow("08:00:00", "custom", label, 0) + "08:00:01,hour,,0\n");
    ASSERT_EQ(markers.size(), 2U);
    EXPECT_EQ(markers.front().label, label);
}

TEST(MarkerLog, takes_an_absent_duration_or_one_that_is_no_number_as_0) {
    EXPECT_EQ(markerOf("08:00:00,hour,x").durationSec, 0);
    for (const std::string duration :
         {"", "abc", "1.5s", " 1", "1 ", "0x10", "1.5\r", "--1", "+-1"})
        EXPECT_EQ(markerOf("08:00:00,hour,x," + duration).durationSec, 0) << duration;
}

TEST(MarkerLog, takes_a_duration_that_is_not_finite_as_0) {
    for (const std::string duration : {"nan", "inf", "-inf", "NaN", "infinity", "1e999"})
        EXPECT_EQ(markerOf("08:00:00,hour,x," + duration).durationSec, 0) << duration;
}

TEST(MarkerLog, reads_every_form_of_a_decimal_number) {
    EXPECT_EQ(markerOf("08:00:00,hour,x,45.5").durationSec, 45.5);
    EXPECT_EQ(markerOf("08:00:00,hour,x,-2.25").durationSec, -2.25);
    EXPECT_EQ(markerOf("08:00:00,hour,x,+3").durationSec, 3);
    EXPECT_EQ(markerOf("08:00:00,hour,x,1e+07").durationSec, 1e7);
    EXPECT_EQ(markerOf("08:00:00,hour,x,.5").durationSec, 0.5);
    EXPECT_EQ(markerOf("08:00:00,hour,x,30,more").durationSec, 30);
}

TEST(MarkerLog, skips_rows_with_fewer_than_three_columns_or_a_bad_timestamp) {
    EXPECT_THAT(markersOf("08:00:00,hour\n08:00:00\n08:00:00.5,hour,,0\nx,hour,,0\n,,,\n"),
                IsEmpty());
}

TEST(MarkerLog, lets_a_timestamp_beyond_the_day_pass) {
    EXPECT_EQ(markerOf("24:00:00,hour,,0").timeSec, 86400);
    EXPECT_EQ(markerOf("99:00:00,hour,,0").timeSec, 356400);
}

TEST(MarkerLog, skips_the_header_by_its_place_so_that_a_log_without_one_loses_its_first_row) {
    const auto markers = parseMarkerText("08:00:00,hour,,0\n09:00:00,hour,,0\n");
    ASSERT_TRUE(markers);
    EXPECT_THAT(*markers, ElementsAre(Marker{"hour", 32400, "", 0}));
}

TEST(MarkerLog, passes_over_empty_lines_also_before_the_header) {
    const auto markers = parseMarkerText("\n\n" + kHeader + "\n08:00:00,hour,,0\n\n\n");
    ASSERT_TRUE(markers);
    EXPECT_EQ(markers->size(), 1U);
}

TEST(MarkerLog, ends_lines_at_line_feeds_alone) {
    const auto markers = parseMarkerText(kHeader + "08:00:00,hour,a\rb,0\r\n\r\n");
    ASSERT_TRUE(markers);
    EXPECT_THAT(*markers, ElementsAre(Marker{"hour", 28800, "a\rb", 0}));
    EXPECT_EQ(countMarkerRows(kHeader + "08:00:00,hour,a\rb,0\r\n\r\n"), 2);
}

TEST(MarkerLog, reads_a_last_line_without_its_line_feed) {
    EXPECT_THAT(
        markersOf("08:00:00,hour,,0\n09:00:00,custom,\"torn, in quo"),
        ElementsAre(Marker{"hour", 28800, "", 0}, Marker{"custom", 32400, "torn, in quo", 0}));
}

TEST(MarkerLog, is_nothing_when_it_is_not_utf8_throughout) {
    for (const std::string bad :
         {"\xFF", "\xC3\x28", "\xED\xA0\x80", "\xC0\xAF", "\xE2\x82", "\xF5"}) {
        EXPECT_FALSE(parseMarkerText(kHeader + "08:00:00,custom," + bad + ",0\n"));
        EXPECT_EQ(countMarkerRows(kHeader + "08:00:00,custom," + bad + ",0\n"), 0);
    }
    EXPECT_EQ(markerOf("08:00:00,custom,€ 🎙,0").label, "€ 🎙");
}

TEST(MarkerLog, keeps_the_rows_before_the_place_where_it_is_cut) {
    std::string text = kHeader;
    std::vector<std::size_t> ends;
    std::vector<Marker> whole;
    for (int i = 0; i < 6; ++i) {
        const std::string label = "label, \"" + std::to_string(i) + "\" ä";
        text += markerRow("08:00:0" + std::to_string(i), "custom", label, i * 1.5);
        ends.push_back(text.size());
        whole.push_back({"custom", 28800.0 + i, label, i * 1.5});
    }
    for (std::size_t cut = 0; cut <= text.size(); ++cut) {
        const auto markers = parseMarkerText(text.substr(0, cut));
        const bool cutsALetter = (static_cast<unsigned char>(text[cut]) & 0xC0U) == 0x80U;
        ASSERT_EQ(!markers, cut < text.size() && cutsALetter) << cut;
        if (!markers) continue;
        const auto kept = static_cast<std::size_t>(
            std::count_if(ends.begin(), ends.end(), [cut](auto end) { return end <= cut; }));
        ASSERT_GE(markers->size(), kept) << cut;
        ASSERT_LE(markers->size(), kept + 1) << cut;
        for (std::size_t i = 0; i < kept; ++i) ASSERT_EQ((*markers)[i], whole[i]) << cut;
    }
}

TEST(MarkerLog, keeps_all_other_rows_when_any_byte_is_damaged) {
    std::string text = kHeader;
    std::vector<Marker> whole;
    for (int i = 0; i < 5; ++i) {
        text += markerRow("08:00:0" + std::to_string(i), "mic", "a, \"" + std::to_string(i), i);
        whole.push_back({"mic", 28800.0 + i, "a, \"" + std::to_string(i), static_cast<double>(i)});
    }
    for (std::size_t at = 0; at < text.size(); ++at)
        for (const char damage : {'"', ',', '\n', 'x', '\0', '\r', '7'}) {
            std::string damaged = text;
            damaged[at] = damage;
            const auto markers = parseMarkerText(damaged);
            ASSERT_TRUE(markers);
            // Line 0 is the header; a lost line feed damages the line behind it too.
            const auto line = std::count(text.begin(), text.begin() + static_cast<long>(at), '\n');
            for (long row = 1; row <= 5; ++row) {
                if (row == line || (text[at] == '\n' && row == line + 1)) continue;
                const auto& marker = whole[static_cast<std::size_t>(row - 1)];
                ASSERT_EQ(std::count(markers->begin(), markers->end(), marker), 1)
                    << "byte " << at << ", row " << row;
            }
        }
}

TEST(MarkerLog, reads_back_whatever_was_written) {
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        std::string text = kHeader;
        std::vector<Marker> written;
        for (int i = 0; i < 5; ++i) {
            std::string label;
            for (auto n = random() % 12; n > 0; --n) {
                // Whole letters: none of them is cut.
                static const std::vector<std::string> kLetters = {
                    "a", " ", ",", "\"", "\r", "\t", ";", "'", "ü", "€", "🎙", "\\"};
                label += kLetters[random() % kLetters.size()];
            }
            const double duration = static_cast<double>(random() % 100000) / 8;
            text += markerRow("10:20:30", "custom", label, duration);
            written.push_back({"custom", 37230, label, std::stod(formatDuration(duration))});
        }
        ASSERT_EQ(parseMarkerText(text), written) << text;
        ASSERT_EQ(countMarkerRows(text), 5);
    }
}

TEST(CountMarkerRows, counts_lines_less_the_header) {
    EXPECT_EQ(countMarkerRows(""), 0);
    EXPECT_EQ(countMarkerRows("\n\n"), 0);
    EXPECT_EQ(countMarkerRows(kHeader), 0);
    EXPECT_EQ(countMarkerRows(kHeader + "08:00:00,hour,,0\n08:00:01,hour,,0\n\n"), 2);
    EXPECT_EQ(countMarkerRows(kHeader + "08:00:00,hour,,0\ntorn"), 2);
}

TEST(CountMarkerRows, counts_damaged_rows_too) {
    EXPECT_EQ(countMarkerRows(kHeader + "nonsense\n,\n"), 2);
}

class MarkerLogFile : public ::testing::Test {
  protected:
    TempFolder folder_;
    const std::filesystem::path log_ = folder_ / "Sonavault_2026-05-08.csv";
};

TEST_F(MarkerLogFile, that_the_writer_made_is_read_back) {
    DiskFlusher flusher;
    writeCSVHeaderIfNeeded(log_, flusher);
    ASSERT_TRUE(appendMarkerRow(log_, markerRow("08:00:00", "vt_pre", "a,b", 2.5), flusher));
    ASSERT_TRUE(appendMarkerRow(log_, markerRow("08:00:09", "hour", "", 0), flusher));
    EXPECT_EQ(parseMarkerCSV(log_),
              (std::vector<Marker>{{"vt-pre", 28800, "a,b", 2.5}, {"hour", 28809, "", 0}}));
    EXPECT_EQ(countMarkerLines(log_), 2);
}

TEST_F(MarkerLogFile, that_is_empty_or_a_header_alone_gives_an_empty_list_and_a_count_of_0) {
    for (const std::string& text : {std::string(), kHeader}) {
        writeFile(log_, text);
        EXPECT_EQ(parseMarkerCSV(log_), std::vector<Marker>{});
        EXPECT_EQ(countMarkerLines(log_), 0);
    }
}

TEST_F(MarkerLogFile, that_is_missing_or_a_folder_or_not_utf8_gives_nothing_and_a_count_of_0) {
    EXPECT_EQ(parseMarkerCSV(log_), std::nullopt);
    EXPECT_EQ(countMarkerLines(log_), 0);
    writeFile(log_, kHeader + "08:00:00,hour,\xFF,0\n");
    EXPECT_EQ(parseMarkerCSV(log_), std::nullopt);
    EXPECT_EQ(countMarkerLines(log_), 0);
    std::filesystem::remove(log_);
    std::filesystem::create_directory(log_);
    EXPECT_EQ(parseMarkerCSV(log_), std::nullopt);
    EXPECT_EQ(countMarkerLines(log_), 0);
}

}  // namespace
}  // namespace sonavault
