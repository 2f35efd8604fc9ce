#include "automation/AirPacer.h"

#include <gtest/gtest.h>

namespace sonavault::automation {
namespace {

TEST(AirPacer, owes_nothing_at_the_beginning) {
    AirPacer pacer(44100);
    EXPECT_EQ(pacer.take(0).frames, 0);
    EXPECT_EQ(pacer.take(0.019).frames, 0);
}

TEST(AirPacer, gives_whole_chunks_once_their_time_is_over) {
    AirPacer pacer(44100);
    EXPECT_EQ(pacer.take(0.0201).frames, 882);
    EXPECT_EQ(pacer.take(0.0399).frames, 0);
    const auto due = pacer.take(0.081);
    EXPECT_EQ(due.first, 882);
    EXPECT_EQ(due.frames, 3 * 882);
}

TEST(AirPacer, gives_chunks_of_another_length_where_asked) {
    AirPacer pacer(16000, 0.005);
    EXPECT_EQ(pacer.take(0.0049).frames, 0);
    EXPECT_EQ(pacer.take(0.0051).frames, 80);
}

TEST(AirPacer, runs_neither_fast_nor_slow_over_a_day) {
    for (const int rate : {8000, 11025, 44100, 192000}) {
        AirPacer pacer(rate);
        std::int64_t sent = 0;
        for (int tick = 1; tick <= 864'000; ++tick) {
            const auto due = pacer.take(tick * 0.1);
            ASSERT_EQ(due.first, sent);
            ASSERT_EQ(due.lost, 0);
            sent += due.frames;
        }
        const std::int64_t owed = 86'400LL * rate;
        EXPECT_LE(sent, owed);
        EXPECT_GT(sent, owed - rate / 40);
    }
}

TEST(AirPacer, makes_a_short_delay_good) {
    AirPacer pacer(8000);
    pacer.take(1.0);
    const auto due = pacer.take(1.48);
    EXPECT_EQ(due.frames, 24 * 160);
    EXPECT_EQ(due.lost, 0);
}

TEST(AirPacer, gives_a_long_delay_up_and_says_how_much_was_lost) {
    AirPacer pacer(8000);
    pacer.beginAt(1.0);
    const auto due = pacer.take(4.0);
    EXPECT_EQ(due.frames, 160);
    EXPECT_EQ(due.lost, 3 * 8000 - 160);
    EXPECT_EQ(due.first, 4 * 8000 - 160);
}

TEST(AirPacer, owes_nothing_of_the_time_before_it_begins_anew) {
    AirPacer pacer(8000);
    pacer.beginAt(10.0);
    EXPECT_EQ(pacer.take(10.01).frames, 0);
    const auto due = pacer.take(10.02);
    EXPECT_EQ(due.first, 80'000);
    EXPECT_EQ(due.frames, 160);
}

}  // namespace
}  // namespace sonavault::automation
