#include "hub/HubCommand.h"

#include <gtest/gtest.h>

#include "hub/HubOptions.h"
#include "support/ScopedEnvironment.h"

namespace sonavault::demohub {
namespace {

using sonavault::testing::ScopedEnvironment;
using Kind = HubCommand::Kind;

TEST(HubCommand, understands_the_plain_ones) {
    EXPECT_EQ(parseHubCommand("refuse"), (HubCommand{.kind = Kind::refuse}));
    EXPECT_EQ(parseHubCommand("accept"), (HubCommand{.kind = Kind::accept}));
    EXPECT_EQ(parseHubCommand("drop"), (HubCommand{.kind = Kind::drop}));
    EXPECT_EQ(parseHubCommand("stop-reading"), (HubCommand{.kind = Kind::stopReading}));
    EXPECT_EQ(parseHubCommand("read"), (HubCommand{.kind = Kind::read}));
    EXPECT_EQ(parseHubCommand("silent"), (HubCommand{.kind = Kind::silent}));
    EXPECT_EQ(parseHubCommand("speak"), (HubCommand{.kind = Kind::speak}));
    EXPECT_EQ(parseHubCommand("close-after-each-line"), (HubCommand{.kind = Kind::closeAfter}));
    EXPECT_EQ(parseHubCommand("keep-open"), (HubCommand{.kind = Kind::keepOpen}));
    EXPECT_EQ(parseHubCommand("ping"), (HubCommand{.kind = Kind::ping}));
    EXPECT_EQ(parseHubCommand("show"), (HubCommand{.kind = Kind::show}));
    EXPECT_EQ(parseHubCommand("quit"), (HubCommand{.kind = Kind::quit}));
}

TEST(HubCommand, takes_a_delay_in_milliseconds) {
    EXPECT_EQ(parseHubCommand("delay 250"), (HubCommand{.kind = Kind::delay, .milliseconds = 250}));
    EXPECT_FALSE(parseHubCommand("delay"));
    EXPECT_FALSE(parseHubCommand("delay -1"));
    EXPECT_FALSE(parseHubCommand("delay soon"));
    EXPECT_FALSE(parseHubCommand("delay 5 6"));
}

TEST(HubCommand, publishes_in_any_name_with_and_without_a_payload) {
    EXPECT_EQ(parseHubCommand("publish Cadenzo a.b"),
              (HubCommand{.kind = Kind::publish, .from = "Cadenzo", .topic = "a.b"}));
    EXPECT_EQ(
        parseHubCommand(R"(publish Cadenzo a.b {"x": 1})"),
        (HubCommand{
            .kind = Kind::publish, .from = "Cadenzo", .topic = "a.b", .payload = {{"x", 1}}}));
    EXPECT_FALSE(parseHubCommand("publish Cadenzo"));
    EXPECT_FALSE(parseHubCommand("publish Cadenzo a.b {oops"));
    EXPECT_FALSE(parseHubCommand("publish Cadenzo a.b [1]"));
}

TEST(HubCommand, reads_the_bytes_of_a_raw_text) {
    EXPECT_EQ(parseHubCommand(R"(raw a b\n\x00\xff\\\r\t)"),
              (HubCommand{.kind = Kind::raw, .text = std::string("a b\n\0\xff\\\r\t", 9)}));
    EXPECT_FALSE(parseHubCommand(R"(raw \q)"));
    EXPECT_FALSE(parseHubCommand(R"(raw \)"));
    EXPECT_FALSE(parseHubCommand(R"(raw \x1)"));
    EXPECT_FALSE(parseHubCommand(R"(raw \xgg)"));
}

TEST(HubCommand, refuses_what_it_does_not_know) {
    EXPECT_FALSE(parseHubCommand(""));
    EXPECT_FALSE(parseHubCommand("dance"));
    EXPECT_FALSE(parseHubCommand("drop now"));
}

TEST(HubOptions, listen_where_the_environment_says_unless_told_otherwise) {
    const ScopedEnvironment named("SWITCHBOARD_SOCKET", "/run/a.sock");
    EXPECT_EQ(parseHubOptions({"hub"}).value().socketPath, "/run/a.sock");
    EXPECT_EQ(parseHubOptions({"hub", "--socket", "/b.sock"}).value().socketPath, "/b.sock");
}

TEST(HubOptions, refuse_what_they_do_not_know) {
    EXPECT_FALSE(parseHubOptions({"hub", "--colour"}));
    EXPECT_FALSE(parseHubOptions({"hub", "word"}));
    EXPECT_FALSE(parseHubOptions({"hub", "--socket", ""}));
}

TEST(HubOptions, tell_every_command_in_the_help) {
    EXPECT_TRUE(parseHubOptions({"hub", "--help"}).value().wantsHelp);
    for (const std::string word :
         {"publish", "ping", "show", "refuse", "accept", "drop", "delay", "stop-reading", "read",
          "silent", "speak", "close-after-each-line", "keep-open", "raw", "quit", "--socket"})
        EXPECT_NE(hubHelpText().find(word), std::string::npos) << word;
}

}  // namespace
}  // namespace sonavault::demohub
