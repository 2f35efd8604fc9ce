#include "shell/CommandLine.h"

#include <gtest/gtest.h>

namespace sonavault {
namespace {

TEST(CommandLine, runs_the_program_when_there_is_nothing_on_it) {
    EXPECT_EQ(parseCommandLine({}).request, CommandLine::run);
}

TEST(CommandLine, tells_the_version) {
    EXPECT_EQ(parseCommandLine({"--version"}).request, CommandLine::version);
    EXPECT_EQ(versionText(), "Sonavault 0.1.128");
}

TEST(CommandLine, shows_a_help_that_names_every_option) {
    EXPECT_EQ(parseCommandLine({"--help"}).request, CommandLine::help);
    EXPECT_NE(helpText().find("--version"), std::string::npos);
    EXPECT_NE(helpText().find("--help"), std::string::npos);
}

TEST(CommandLine, answers_the_first_of_two_requests) {
    EXPECT_EQ(parseCommandLine({"--help", "--version"}).request, CommandLine::help);
    EXPECT_EQ(parseCommandLine({"--version", "--help"}).request, CommandLine::version);
}

TEST(CommandLine, refuses_every_other_word_wherever_it_stands) {
    for (const std::string word : {"-v", "--Version", "", "-platform", "day.mp3"}) {
        EXPECT_EQ(parseCommandLine({word}).request, CommandLine::unknown) << word;
        const auto behind = parseCommandLine({"--version", word});
        EXPECT_EQ(behind.request, CommandLine::unknown) << word;
        EXPECT_EQ(behind.word, word);
    }
}

TEST(CommandLine, quotes_the_word_it_refuses) {
    EXPECT_NE(unknownOptionText("--demo").find("\"--demo\""), std::string::npos);
}

}  // namespace
}  // namespace sonavault
