#include "platform/JsonFields.h"

#include <gtest/gtest.h>

namespace sonavault::testing {
namespace {

JsonFields fields(std::string_view json) {
    auto parsed = JsonFields::parse(json);
    EXPECT_TRUE(parsed);
    return std::move(parsed.value());
}

TEST(JsonFields, gives_values_of_the_type_asked_for) {
    auto object = fields(R"({"t":"a","n":1.5,"i":-3,"b":true})");
    EXPECT_EQ(object.text("t"), "a");
    EXPECT_EQ(object.number("n"), 1.5);
    EXPECT_EQ(object.integer("i"), -3);
    EXPECT_EQ(object.boolean("b"), true);
    EXPECT_EQ(object.error(), "");
}

TEST(JsonFields, takes_what_is_absent_or_null_as_absent_unless_it_is_required) {
    auto object = fields(R"({"n":null})");
    EXPECT_EQ(object.number("n"), std::nullopt);
    EXPECT_EQ(object.text("t"), std::nullopt);
    EXPECT_EQ(object.error(), "");
    object.require("n");
    EXPECT_EQ(object.error(), "key n is missing");
}

TEST(JsonFields, remembers_the_first_key_that_was_wrong) {
    auto object = fields(R"({"n":"1","b":0})");
    EXPECT_EQ(object.number("n"), std::nullopt);
    EXPECT_EQ(object.boolean("b"), std::nullopt);
    object.require("x");
    EXPECT_EQ(object.error(), "key n is not a number");
}

TEST(JsonFields, takes_only_whole_numbers_as_integers) {
    for (const char* json : {R"({"i":1.5})", R"({"i":1e300})", R"({"i":"1"})", R"({"i":true})"}) {
        auto object = fields(json);
        EXPECT_EQ(object.integer("i"), std::nullopt) << json;
        EXPECT_EQ(object.error(), "key i is not an integer") << json;
    }
    EXPECT_EQ(fields(R"({"i":2.0})").integer("i"), 2);
}

TEST(JsonFields, says_why_a_text_is_no_object) {
    for (const char* json : {"", "[1]", "7", "{", "{} x", "\xFF"}) {
        const auto parsed = JsonFields::parse(json);
        ASSERT_FALSE(parsed) << json;
        EXPECT_FALSE(parsed.error().empty()) << json;
    }
}

}  // namespace
}  // namespace sonavault::testing
