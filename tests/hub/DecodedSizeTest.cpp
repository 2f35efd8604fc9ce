#include "hub/DecodedSize.h"

#include <gtest/gtest.h>

#include <string>

#include "hub/Envelope.h"

namespace sonavault::testing {
namespace {

struct Shape {
    const char* name;
    std::string value;
    double measured;  ///< bytes of heap that Qt 6.4's JSON took for one of many such values
};

class DecodedSizeOf : public ::testing::TestWithParam<Shape> {};

TEST_P(DecodedSizeOf, is_no_less_than_what_was_measured_and_bounded_by_the_line) {
    constexpr std::size_t kValues = 10'000;
    std::string line = R"({"payload":[0)";
    for (std::size_t i = 1; i < kValues; ++i) line += ',' + GetParam().value;
    line += "]}";
    const std::size_t size = decodedSize(line);
    EXPECT_GE(size, static_cast<std::size_t>(GetParam().measured * kValues));
    EXPECT_LE(size, line.size() * 192);
}

INSTANTIATE_TEST_SUITE_P(
    AList, DecodedSizeOf,
    ::testing::Values(Shape{"of_numbers", "1", 16.8}, Shape{"of_texts", R"("a")", 33.6},
                      Shape{"of_long_texts", '"' + std::string(40, 'a') + '"', 104.9},
                      Shape{"of_empty_lists", "[]", 16.8}, Shape{"of_empty_objects", "{}", 16.8},
                      Shape{"of_spread_empty_lists", "[ ]", 16.8}, Shape{"of_lists", "[1]", 176.8},
                      Shape{"of_lists_of_empty_ones", "[[]]", 176.8},
                      Shape{"of_objects", R"({"":1})", 224.8},
                      Shape{"of_nested_lists", "[[[1]]]", 508.0}),
    [](const auto& shape) { return shape.param.name; });

TEST(DecodedSize, of_a_long_text_is_twice_its_length) {
    const std::string line = '"' + std::string(1'000'000, 'a') + '"';
    EXPECT_GE(decodedSize(line), 2 * line.size());
    EXPECT_LT(decodedSize(line), 2 * line.size() + 1000);
}

TEST(DecodedSize, of_a_text_is_the_same_whatever_the_text_says) {
    const std::string plain = '"' + std::string(60'000, 'a') + '"';
    for (const std::string marks :
         {"[", "{", ",", ":", "]}", R"(\")", R"(\\)", R"([\"{)", R"(\\\")"}) {
        std::string text;
        while (text.size() < 60'000) text += marks;
        const std::string line = '"' + text + '"';
        EXPECT_EQ(decodedSize(line), decodedSize(plain) + 2 * (line.size() - plain.size()))
            << marks;
    }
}

TEST(DecodedSize, begins_to_count_again_behind_a_text) {
    EXPECT_EQ(decodedSize(R"(["[",[1]])"), decodedSize(R"(["a",[1]])"));
    EXPECT_EQ(decodedSize(R"(["\"",[1]])"), decodedSize(R"(["ab",[1]])"));
    EXPECT_EQ(decodedSize(R"(["\\",[1]])"), decodedSize(R"(["ab",[1]])"));
    EXPECT_GT(decodedSize("[[1]]"), decodedSize(R"(["1"])"));
}

TEST(DecodedSize, of_an_empty_list_or_object_is_that_of_a_plain_value) {
    for (const std::string empty : {"[]", "{}"})
        EXPECT_EQ(decodedSize("[0," + empty + "]"), decodedSize("[0,10]")) << empty;
    EXPECT_EQ(decodedSize("[0,[ \t]]"), decodedSize("[0,1000]"));
    EXPECT_GT(decodedSize("[0,[1]]"), decodedSize("[0,100]"));
}

/// What many of one thing make of a line just short of what a program may send, or of a longer one.
std::string lineOf(const std::string& head, const std::string& one, const std::string& tail,
                   std::size_t size) {
    std::string line = head;
    while (line.size() + one.size() + tail.size() < size) line += one;
    return line + tail;
}

TEST(DecodedSize, never_speaks_against_a_line_that_a_program_may_send) {
    for (const std::string one :
         {"[1],", "[[[1]]],", R"({"":1},)", "[],", "{},", "1,", R"("[",)"}) {
        const auto line = lineOf("[", one, "0]", kMaxEnvelopeBytes);
        ASSERT_GT(line.size() + 16, kMaxEnvelopeBytes);
        EXPECT_TRUE(isWorthDecoding(line, decodedSize(line))) << one;
    }
}

TEST(DecodedSize, speaks_against_a_longer_line_only_for_what_it_would_take) {
    const auto lists = lineOf("[", "[1],", "0]", 2 * kMaxEnvelopeBytes);
    EXPECT_FALSE(isWorthDecoding(lists, decodedSize(lists)));
    for (const std::string one : {"[", R"(\")", R"(\\)", ",", "{:"}) {
        const auto text = lineOf("\"", one, "\"", 8 * kMaxEnvelopeBytes);
        EXPECT_TRUE(isWorthDecoding(text, decodedSize(text))) << one;
    }
    for (const std::string empty : {"[],", "{},"}) {
        const auto line = lineOf("[", empty, "0]", 4 * kMaxEnvelopeBytes);
        EXPECT_TRUE(isWorthDecoding(line, decodedSize(line))) << empty;
    }
}

TEST(DecodedSize, of_an_empty_line_is_small) {
    EXPECT_LT(decodedSize(""), 100U);
}

}  // namespace
}  // namespace sonavault::testing
