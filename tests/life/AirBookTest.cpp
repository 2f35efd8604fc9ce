#include "life/AirBook.h"

#include <gtest/gtest.h>

namespace sonavault::testing {
namespace {

constexpr double kStart = 1'000'000;

AirBook bookOfADay() {
    AirBook book;
    book.beginDay("2001-09-09", kStart);
    book.resume(kStart, 0);
    book.open(kStart + 1);
    return book;
}

const AirStretch& lastOf(AirBook& book, double until) {
    book.interrupt(until, 0);
    return book.days().at("2001-09-09").back();
}

TEST(AirBook, knows_an_outage_and_the_silence_that_stands_for_it) {
    auto book = bookOfADay();
    book.interrupt(kStart + 10, 0.4);
    EXPECT_FALSE(book.isOpen());
    book.resume(kStart + 30, 0.35);
    EXPECT_EQ(book.gap(), 20);
    book.open(kStart + 31);
    const auto& stretch = lastOf(book, kStart + 40);
    EXPECT_EQ(stretch.from, kStart + 31);
    EXPECT_EQ(stretch.to, kStart + 40);
    EXPECT_EQ(stretch.ahead, 0);
    EXPECT_EQ(stretch.slack, 0) << "what is filled up to the clock is true to it again";
    EXPECT_EQ(stretch.silentBefore, surelySilent(20));
    EXPECT_EQ(book.days().at("2001-09-09").front().to, kStart + 9.6);
    EXPECT_NEAR(book.heard(), 8.6 + 9, 1e-6);
}

TEST(AirBook, asks_for_less_silence_where_air_may_stand_in_an_outage) {
    auto book = bookOfADay();
    book.interrupt(kStart + 10, 0);
    book.resume(kStart + 20, 0.35, 3);
    book.open(kStart + 21);
    EXPECT_EQ(lastOf(book, kStart + 30).silentBefore, surelySilent(7));
    EXPECT_LT(surelySilent(7), surelySilent(10));
    EXPECT_EQ(surelySilent(0.5), 0);
}

TEST(AirBook, leaves_a_file_ahead_of_a_clock_that_was_set_back_until_an_outage_uses_that_up) {
    auto book = bookOfADay();
    book.interrupt(kStart + 10, 0);
    book.resume(kStart + 7, 0);
    book.open(kStart + 7.5);
    EXPECT_EQ(lastOf(book, kStart + 20).ahead, 3);
    book.resume(kStart + 22, 0.35);
    book.open(kStart + 22);
    EXPECT_EQ(lastOf(book, kStart + 30).ahead, 1);
    EXPECT_EQ(lastOf(book, kStart + 30).slack, 0.35);
    book.resume(kStart + 35, 0.35);
    book.open(kStart + 36);
    EXPECT_EQ(lastOf(book, kStart + 40).ahead, 0);
    EXPECT_EQ(lastOf(book, kStart + 40).slack, 0);
    EXPECT_EQ(lastOf(book, kStart + 40).silentBefore, surelySilent(4));
}

TEST(AirBook, begins_each_day_anew) {
    auto book = bookOfADay();
    book.interrupt(kStart + 10, 0);
    book.resume(kStart + 5, 0);
    book.open(kStart + 5);
    book.interrupt(kStart + 20, 0.2);
    book.beginDay("2001-09-10", kStart + 20.1);
    book.resume(kStart + 20.1, 0);
    book.open(kStart + 21);
    book.interrupt(kStart + 30, 0);
    EXPECT_EQ(book.days().at("2001-09-10").front().ahead, 0);
    EXPECT_EQ(book.days().size(), 2U);
}

TEST(AirBook, counts_what_it_excuses) {
    auto book = bookOfADay();
    book.excuse(kStart + 10, 0.5);
    EXPECT_TRUE(book.isOpen());
    EXPECT_NEAR(book.excused(), 1.1, 1e-9);
    EXPECT_EQ(lastOf(book, kStart + 20).slack, 0.5);
    EXPECT_EQ(book.days().at("2001-09-09").front().to, kStart + 9.2);
}

}  // namespace
}  // namespace sonavault::testing
