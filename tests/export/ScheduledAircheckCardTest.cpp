#include "export/ScheduledAircheckCard.h"

#include <gtest/gtest.h>

namespace sonavault::testing {
namespace {

/// Weekdays from six to ten in the morning.
ScheduledAircheckCard morningShow() {
    return {.id = "6F0C2B7E-2B5A-4B86-9C57-0D7A3C2F9E11",
            .label = "Morning",
            .daysOfWeek = {1, 2, 3, 4, 5},
            .startHour = 6,
            .endHour = 9,
            .mode = "liveMic",
            .active = true,
            .lastRunDate = ""};
}

LocalTime at(int day, int hour, int minute = 0, int second = 0) {
    return {.year = 2026, .month = 5, .day = day, .hour = hour, .minute = minute, .second = second};
}

constexpr int kWednesday = 6;
constexpr int kSaturday = 9;
constexpr int kSunday = 10;
constexpr int kMonday = 11;

TEST(ScheduledAircheckCard, is_due_from_the_moment_its_last_hour_is_over) {
    const auto card = morningShow();
    EXPECT_FALSE(card.isDue(at(kWednesday, 9, 59, 59)));
    EXPECT_TRUE(card.isDue(at(kWednesday, 10)));
    EXPECT_TRUE(card.isDue(at(kWednesday, 23, 59, 59)));
}

TEST(ScheduledAircheckCard, is_due_on_its_days_only) {
    auto card = morningShow();
    EXPECT_FALSE(card.isDue(at(kSaturday, 12)));
    EXPECT_FALSE(card.isDue(at(kSunday, 12)));
    EXPECT_TRUE(card.isDue(at(kMonday, 12)));
    card.daysOfWeek = {7};
    EXPECT_TRUE(card.isDue(at(kSunday, 12)));
    EXPECT_FALSE(card.isDue(at(kMonday, 12)));
    EXPECT_FALSE(card.isDue(at(kSaturday, 12)));
}

TEST(ScheduledAircheckCard, is_due_once_a_day) {
    auto card = morningShow();
    card.lastRunDate = "2026-05-06";
    EXPECT_FALSE(card.isDue(at(kWednesday, 12)));
    EXPECT_TRUE(card.isDue(at(kWednesday + 1, 12)));
}

TEST(ScheduledAircheckCard, that_ends_with_the_day_is_never_due) {
    auto card = morningShow();
    card.endHour = 23;
    EXPECT_TRUE(card.isReady());
    for (int hour = 0; hour < 24; ++hour) EXPECT_FALSE(card.isDue(at(kWednesday, hour, 59, 59)));
}

TEST(ScheduledAircheckCard, is_ready_only_when_it_says_all_and_is_not_paused) {
    EXPECT_TRUE(morningShow().isReady());
    const auto without = [](auto change) {
        auto card = morningShow();
        change(card);
        EXPECT_FALSE(card.isDue(at(kWednesday, 12)));
        return card;
    };
    EXPECT_FALSE(without([](auto& card) { card.active = false; }).isReady());
    EXPECT_FALSE(without([](auto& card) { card.daysOfWeek.clear(); }).isReady());
    EXPECT_FALSE(without([](auto& card) { card.label = ""; }).isReady());
    EXPECT_FALSE(without([](auto& card) { card.label = " \t\u00A0"; }).isReady());
    EXPECT_FALSE(without([](auto& card) { card.startHour = 10; }).isReady());
    auto oneHour = morningShow();
    oneHour.startHour = oneHour.endHour = 9;
    EXPECT_TRUE(oneHour.isReady());
}

TEST(ScheduledAircheckCard, begins_as_a_draft_that_is_not_ready) {
    const auto draft = ScheduledAircheckCard::newDraft();
    EXPECT_EQ(draft.label, "New aircheck");
    EXPECT_TRUE(draft.daysOfWeek.empty());
    EXPECT_EQ(draft.startHour, 0);
    EXPECT_EQ(draft.endHour, 23);
    EXPECT_EQ(draft.mode, "voicetracked");
    EXPECT_FALSE(draft.active);
    EXPECT_EQ(draft.lastRunDate, "");
    EXPECT_FALSE(draft.isReady());
    EXPECT_EQ(draft.id.size(), 36u);
    EXPECT_NE(draft.id, ScheduledAircheckCard::newDraft().id);
}

TEST(ScheduledAircheckCard, gives_its_file_a_name_without_slashes) {
    auto card = morningShow();
    card.label = std::string("Early\0Show", 10);
    EXPECT_TRUE(scheduledAircheckName(card, "2026-05-08").starts_with("Aircheck_Early_Show_"));
    card.label = "Morning/Drive ";
    EXPECT_EQ(scheduledAircheckName(card, "2026-05-08"),
              "Aircheck_Morning_Drive_Live_2026-05-08_06-09.mp3");
    card.mode = "something";
    card.endHour = 12;
    EXPECT_EQ(scheduledAircheckName(card, "2026-05-08"),
              "Aircheck_Morning_Drive_VT_2026-05-08_06-12.mp3");
}

TEST(DayOfWeek, counts_from_monday_to_sunday) {
    for (int day = 0; day < 7; ++day) EXPECT_EQ(dayOfWeek(at(4 + day, 0)), day + 1);
    EXPECT_EQ(dayOfWeek({.year = 2028, .month = 2, .day = 29}), 2);
}

TEST(AircheckCards, are_stored_as_an_array_of_objects) {
    EXPECT_EQ(encodeCards({}), "[]");
    EXPECT_EQ(encodeCards({morningShow()}),
              R"([{"active":true,"daysOfWeek":[1,2,3,4,5],"endHour":9,)"
              R"("id":"6F0C2B7E-2B5A-4B86-9C57-0D7A3C2F9E11","label":"Morning",)"
              R"("lastRunDate":"","mode":"liveMic","startHour":6}])");
}

TEST(AircheckCards, read_back_as_they_were) {
    auto odd = ScheduledAircheckCard::newDraft();
    odd.label = "Früh \"eins\"\n/\\ 東京";
    odd.daysOfWeek = {7, 1, 1, 99, -3};
    odd.startHour = -5;
    odd.mode = "anything";
    odd.lastRunDate = "2026-05-08";
    const std::vector cards{morningShow(), odd};
    EXPECT_EQ(decodeCards(encodeCards(cards)), cards);
    EXPECT_EQ(decodeCards("[]"), std::vector<ScheduledAircheckCard>{});
}

TEST(AircheckCards, pass_over_keys_that_nobody_knows) {
    auto text = encodeCards({morningShow()});
    text.insert(2, R"("colour":{"red":1},)");
    EXPECT_EQ(decodeCards(text), std::vector{morningShow()});
}

TEST(AircheckCards, cannot_be_read_when_any_key_is_missing_or_of_a_wrong_type) {
    const std::string whole = encodeCards({morningShow()});
    for (const std::string key :
         {"active", "daysOfWeek", "endHour", "id", "label", "lastRunDate", "mode", "startHour"}) {
        auto missing = whole;
        missing.replace(missing.find("\"" + key), key.size() + 1, "\"other");
        EXPECT_EQ(decodeCards(missing), std::nullopt) << key;
        // A good card before it does not help.
        EXPECT_EQ(decodeCards(whole.substr(0, whole.size() - 1) + "," + missing.substr(1)),
                  std::nullopt);
        for (const auto* wrong : {"null", "{}", "[\"1\"]", "1.5", "3000000000"}) {
            auto damaged = whole;
            const auto begin = damaged.find(':', damaged.find("\"" + key)) + 1;
            const auto end = key == "daysOfWeek" ? damaged.find(']', begin) + 1
                                                 : damaged.find_first_of(",}", begin);
            damaged.replace(begin, end - begin, wrong);
            EXPECT_EQ(decodeCards(damaged), std::nullopt) << damaged;
        }
    }
}

TEST(AircheckCards, cannot_be_read_from_what_is_no_array_of_cards) {
    for (const auto* text : {"", "{}", "null", "[1]", "[null]", "[[]]", "[", "text", "[{}]"})
        EXPECT_EQ(decodeCards(text), std::nullopt) << text;
    const std::string whole = encodeCards({morningShow()});
    for (std::size_t cut = 0; cut < whole.size(); ++cut)
        EXPECT_EQ(decodeCards(whole.substr(0, cut)), std::nullopt) << cut;
}

}  // namespace
}  // namespace sonavault::testing
