#include "hub/LineSplitter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace sonavault::testing {
namespace {

using ::testing::ElementsAre;
using Lines = std::vector<std::string>;

Lines takeAll(LineSplitter& splitter) {
    Lines lines;
    while (const auto line = splitter.next()) lines.emplace_back(*line);
    return lines;
}

Lines split(LineSplitter& splitter, const std::string& bytes, std::size_t pieceSize) {
    Lines lines;
    for (std::size_t at = 0; at < bytes.size(); at += pieceSize) {
        splitter.append(std::string_view(bytes).substr(at, pieceSize));
        for (auto& line : takeAll(splitter)) lines.push_back(std::move(line));
    }
    return lines;
}

TEST(LineSplitter, gives_two_lines_of_one_piece) {
    LineSplitter splitter;
    splitter.append("one\ntwo\n");
    EXPECT_THAT(takeAll(splitter), ElementsAre("one", "two"));
    EXPECT_EQ(splitter.pendingByteCount(), 0U);
}

TEST(LineSplitter, gives_a_line_of_two_pieces_once_when_it_is_complete) {
    LineSplitter splitter;
    splitter.append("on");
    EXPECT_THAT(takeAll(splitter), ElementsAre());
    splitter.append("e\nt");
    EXPECT_THAT(takeAll(splitter), ElementsAre("one"));
    EXPECT_EQ(splitter.pendingByteCount(), 1U);
}

TEST(LineSplitter, skips_empty_lines) {
    LineSplitter splitter;
    splitter.append("\n\none\n\n\ntwo\n\n");
    EXPECT_THAT(takeAll(splitter), ElementsAre("one", "two"));
}

TEST(LineSplitter, gives_the_same_lines_however_the_bytes_are_cut) {
    const std::string bytes = "alpha\n\nbeta gamma\nd\n" + std::string(300, 'x') + "\nrest";
    for (std::size_t pieceSize = 1; pieceSize <= bytes.size(); ++pieceSize) {
        LineSplitter splitter;
        EXPECT_THAT(split(splitter, bytes, pieceSize),
                    ElementsAre("alpha", "beta gamma", "d", std::string(300, 'x')));
        EXPECT_EQ(splitter.pendingByteCount(), 4U);
    }
}

TEST(LineSplitter, forgets_half_a_line_when_cleared) {
    LineSplitter splitter;
    splitter.append("half of a li");
    EXPECT_THAT(takeAll(splitter), ElementsAre());
    splitter.clear();
    splitter.append("whole\n");
    EXPECT_THAT(takeAll(splitter), ElementsAre("whole"));
}

TEST(LineSplitter, gives_a_line_of_5_mebibytes_that_comes_byte_by_byte) {
    const std::string line(5'242'880, 'y');
    LineSplitter splitter;
    Lines lines = split(splitter, line + "\nafter\n", 1);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0], line);
    EXPECT_EQ(lines[1], "after");
}

TEST(LineSplitter, throws_an_overlong_line_away_and_goes_on_with_the_next) {
    const std::string bytes =
        "1234567890\n12345678901\nshort\n" + std::string(500, 'z') + "\nend\n";
    for (std::size_t pieceSize = 1; pieceSize <= bytes.size(); ++pieceSize) {
        LineSplitter splitter(10);
        EXPECT_THAT(split(splitter, bytes, pieceSize), ElementsAre("1234567890", "short", "end"));
    }
}

TEST(LineSplitter, keeps_no_more_of_an_endless_line_than_the_longest_one) {
    LineSplitter splitter(1000);
    for (int i = 0; i < 100'000; ++i) {
        splitter.append("0123456789");
        ASSERT_FALSE(splitter.next());
        ASSERT_LE(splitter.pendingByteCount(), 1000U);
    }
    splitter.append("\nnext\n");
    EXPECT_THAT(takeAll(splitter), ElementsAre("next"));
}

TEST(LineSplitter, forgets_that_it_was_within_an_overlong_line_when_cleared) {
    LineSplitter splitter(10);
    splitter.append(std::string(50, 'x'));
    EXPECT_FALSE(splitter.next());
    splitter.clear();
    splitter.append("new\n");
    EXPECT_THAT(takeAll(splitter), ElementsAre("new"));
}

TEST(LineSplitter, keeps_every_other_byte_as_it_came) {
    std::string bytes;
    for (int value = 0; value < 256; ++value)
        if (value != '\n') bytes += static_cast<char>(value);
    LineSplitter splitter;
    splitter.append(bytes + "\n");
    EXPECT_THAT(takeAll(splitter), ElementsAre(bytes));
}

}  // namespace
}  // namespace sonavault::testing
