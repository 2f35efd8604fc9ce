#include "review/DateRow.h"

#include <gtest/gtest.h>

namespace sonavault::testing {
namespace {

DailyRecording day() {
    return {.date = "2026-05-08", .dayOfWeek = "Fri", .recorded = "24:00", .markerCount = 213};
}

std::vector<std::string> textsOf(const DailyRecording& recording) {
    std::vector<std::string> texts;
    for (const DateRowText& each : dateRowLook(recording).texts) texts.push_back(each.text);
    return texts;
}

/// The box of that part, which the row must have.
Box boxOf(const DailyRecording& recording, DateRowPart part) {
    for (const DateRowText& each : dateRowLook(recording).texts)
        if (each.part == part) return each.box;
    ADD_FAILURE() << "no such part";
    return {};
}

TEST(FractionOfDay, is_the_length_by_the_day) {
    EXPECT_EQ(parseFractionOfDay("12:00"), 0.5);
    EXPECT_EQ(parseFractionOfDay("00:00"), 0);
    EXPECT_EQ(parseFractionOfDay("24:00"), 1);
    EXPECT_EQ(parseFractionOfDay("06:30"), 23400 / 86400.0);
}

TEST(FractionOfDay, is_never_more_than_the_whole_nor_less_than_nothing) {
    EXPECT_EQ(parseFractionOfDay("24:30"), 1);
    EXPECT_EQ(parseFractionOfDay("99999999999999:59"), 1);
    EXPECT_EQ(parseFractionOfDay("-12:00"), 0);
}

TEST(FractionOfDay, of_a_text_that_is_no_length_is_none) {
    for (const auto* text : {"", ":", "12", "12:", ":30", "a:b", "12:b", "1 2:00", "12: 0",
                             "1.5:00", "+-1:00", "99999999999999999999:00"})
        EXPECT_EQ(parseFractionOfDay(text), 0) << text;
}

TEST(FractionOfDay, looks_at_the_first_two_numbers_only) {
    EXPECT_EQ(parseFractionOfDay("12:00:59"), 0.5);
    EXPECT_EQ(parseFractionOfDay("12:00:x"), 0.5);
    EXPECT_EQ(parseFractionOfDay("+12:+0"), 0.5);
}

TEST(DateRow, of_a_plain_day_has_two_lines) {
    EXPECT_EQ(textsOf(day()),
              (std::vector<std::string>{"2026-05-08 Fri", "24:00 recorded · 213 markers"}));
    EXPECT_EQ(dateRowLook(day()).height, 61);
    EXPECT_EQ(boxOf(day(), DateRowPart::title), (Box{34, 9, 200, 20}));
    EXPECT_EQ(boxOf(day(), DateRowPart::meta), (Box{34, 31, 240, 18}));
}

TEST(DateRow, of_today_says_so) {
    auto today = day();
    today.live = true;
    EXPECT_EQ(textsOf(today), (std::vector<std::string>{"2026-05-08 Fri", "TODAY",
                                                        "24:00 recorded · 213 markers"}));
    EXPECT_EQ(boxOf(today, DateRowPart::today), (Box{162, 11, 60, 16}));
    EXPECT_EQ(dateRowLook(today).height, 61);
}

TEST(DateRow, grows_by_a_line_for_a_warning) {
    auto warned = day();
    warned.warning = "Gap at 03:12";
    EXPECT_EQ(dateRowLook(warned).height, 79);
    EXPECT_EQ(textsOf(warned).back(), "⚠ Gap at 03:12");
    EXPECT_EQ(boxOf(warned, DateRowPart::warning), (Box{34, 51, 240, 18}));
}

TEST(DateRow, grows_by_a_line_for_an_expiry) {
    auto expiring = day();
    expiring.expiresInDays = 2;
    EXPECT_EQ(dateRowLook(expiring).height, 79);
    EXPECT_EQ(boxOf(expiring, DateRowPart::expiry), (Box{34, 51, 200, 18}));
}

TEST(DateRow, shows_the_expiry_below_the_warning) {
    auto both = day();
    both.warning = "Gap at 03:12";
    both.expiresInDays = 2;
    EXPECT_EQ(dateRowLook(both).height, 97);
    EXPECT_EQ(boxOf(both, DateRowPart::expiry), (Box{34, 69, 200, 18}));
}

TEST(DateRow, counts_days_to_the_expiry_as_people_do) {
    auto expiring = day();
    expiring.expiresInDays = 1;
    EXPECT_EQ(textsOf(expiring).back(), "expires in 1 day");
    expiring.expiresInDays = 2;
    EXPECT_EQ(textsOf(expiring).back(), "expires in 2 days");
    expiring.expiresInDays = 0;
    EXPECT_EQ(textsOf(expiring).back(), "expires in 0 days");
}

TEST(DateRow, reads_as_one_sentence) {
    auto today = day();
    today.live = true;
    today.warning = "Gap";
    EXPECT_EQ(dateRowSentence(today), "2026-05-08 Fri, TODAY, 24:00 recorded · 213 markers, ⚠ Gap");
}

TEST(DateIndicator, is_red_on_today_while_recording_runs) {
    auto today = day();
    today.live = true;
    EXPECT_EQ(dateIndicator(today, true), DateIndicator::recording);
    EXPECT_EQ(dateIndicator(today, false), DateIndicator::none);
    EXPECT_EQ(dateIndicator(day(), true), DateIndicator::none);
}

TEST(DateIndicator, warns_unless_the_day_is_being_recorded) {
    auto warned = day();
    warned.warning = "Gap";
    EXPECT_EQ(dateIndicator(warned, true), DateIndicator::warning);
    warned.live = true;
    EXPECT_EQ(dateIndicator(warned, true), DateIndicator::recording);
    EXPECT_EQ(dateIndicator(warned, false), DateIndicator::warning);
}

TEST(DayProgress, is_shown_on_today_only_and_whether_or_not_the_recorder_runs) {
    auto today = day();
    today.recorded = "12:00";
    EXPECT_EQ(dayProgressWidth(today, 280), 0);
    today.live = true;
    EXPECT_EQ(dayProgressWidth(today, 280), 140);
    today.recorded = "24:30";
    EXPECT_EQ(dayProgressWidth(today, 280), 280);
    today.recorded = "";
    EXPECT_EQ(dayProgressWidth(today, 280), 0);
}

TEST(DateRowHint, tells_today_from_other_days) {
    EXPECT_EQ(dateRowHint("2026-05-08", "2026-05-08"),
              "Today's recording — click to view the live timeline.");
    EXPECT_EQ(dateRowHint("2026-05-07", "2026-05-08"), "Click to view 2026-05-07 on the timeline.");
}

TEST(DateRowMenu, names_what_it_does) {
    EXPECT_EQ(toggleRecordingTitle(true), "Stop Recording");
    EXPECT_EQ(toggleRecordingTitle(false), "Start Recording");
    EXPECT_EQ(deleteRecordingTitle(day()), "Delete 2026-05-08 (Fri)…");
}

}  // namespace
}  // namespace sonavault::testing
