#include "automation/AirPlan.h"

#include <gtest/gtest.h>

namespace sonavault::automation {
namespace {

TEST(AirPlan, is_on_air_but_for_its_interruptions) {
    AirPlan plan;
    plan.add({AirState::dropped, 10, 2});
    plan.add({AirState::stalled, 20, 5});
    EXPECT_EQ(plan.at(0), AirState::onAir);
    EXPECT_EQ(plan.at(9.99), AirState::onAir);
    EXPECT_EQ(plan.at(10), AirState::dropped);
    EXPECT_EQ(plan.at(11.99), AirState::dropped);
    EXPECT_EQ(plan.at(12), AirState::onAir);
    EXPECT_EQ(plan.at(24.9), AirState::stalled);
    EXPECT_EQ(plan.at(25), AirState::onAir);
}

TEST(AirPlan, drops_where_a_drop_and_a_stall_meet) {
    AirPlan plan;
    plan.add({AirState::dropped, 10, 2});
    plan.add({AirState::stalled, 0, 100});
    EXPECT_EQ(plan.at(11), AirState::dropped);
    EXPECT_EQ(plan.at(13), AirState::stalled);
}

TEST(AirPlan, resumes_what_is_interrupted_now_and_keeps_what_lies_ahead) {
    AirPlan plan;
    plan.add({AirState::stalled, 5, 100});
    plan.add({AirState::dropped, 50, 1});
    plan.resumeAt(10);
    EXPECT_EQ(plan.at(10), AirState::onAir);
    EXPECT_EQ(plan.at(50), AirState::dropped);
}

TEST(AirPlan, reads_an_interruption_as_second_and_duration) {
    const auto interruption = parseInterruption(AirState::dropped, "12.5:3");
    ASSERT_TRUE(interruption);
    EXPECT_EQ(interruption->state, AirState::dropped);
    EXPECT_EQ(interruption->from, 12.5);
    EXPECT_EQ(interruption->duration, 3);
    for (const char* wrong :
         {"", ":", "5", "5:", ":5", "5:x", "x:5", "-1:5", "5:-1", "5:1:2", "5,5:1"})
        EXPECT_FALSE(parseInterruption(AirState::dropped, wrong)) << wrong;
}

TEST(Command, is_read_from_a_line) {
    EXPECT_EQ(parseCommand("drop")->kind, Command::Kind::drop);
    EXPECT_EQ(parseCommand(" resume ")->kind, Command::Kind::resume);
    EXPECT_EQ(parseCommand("quit\r")->kind, Command::Kind::quit);
    EXPECT_EQ(parseCommand("stall 2.5")->kind, Command::Kind::stall);
    EXPECT_EQ(parseCommand("stall 2.5")->seconds, 2.5);
    for (const char* wrong : {"", "stall", "stall x", "stall 5 6", "drop 5", "Drop", "quit now"})
        EXPECT_FALSE(parseCommand(wrong)) << wrong;
}

}  // namespace
}  // namespace sonavault::automation
