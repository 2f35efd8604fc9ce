#include "hub/DecodedSize.h"

#include <gtest/gtest.h>

#include <string>

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
                      Shape{"of_empty_lists", "[]", 16.8}, Shape{"of_lists", "[1]", 176.8},
                      Shape{"of_objects", R"({"":1})", 224.8},
                      Shape{"of_nested_lists", "[[[1]]]", 508.0}),
    [](const auto& shape) { return shape.param.name; });

TEST(DecodedSize, of_a_long_text_is_twice_its_length) {
    const std::string line = '"' + std::string(1'000'000, 'a') + '"';
    EXPECT_GE(decodedSize(line), 2 * line.size());
    EXPECT_LT(decodedSize(line), 2 * line.size() + 1000);
}

TEST(DecodedSize, of_an_empty_line_is_small) {
    EXPECT_LT(decodedSize(""), 100U);
}

}  // namespace
}  // namespace sonavault::testing
