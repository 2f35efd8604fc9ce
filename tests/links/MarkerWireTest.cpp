#include "links/MarkerWire.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace sonavault::testing {
namespace {

Result<MarkerWire> decode(const std::string& json) {
    return decodeMarkerWire({reinterpret_cast<const std::uint8_t*>(json.data()), json.size()});
}

const std::string kRequired =
    R"("type":"hour","clock_time":"14:00:00","wall_clock_iso8601":"2026-03-02T13:00:00.012Z")";

/// The required keys and one more.
std::string with(const std::string& extra) {
    return "{" + kRequired + "," + extra + "}";
}

std::string errorOf(const std::string& json) {
    const auto decoded = decode(json);
    return decoded ? "decoded" : decoded.error();
}

TEST(MarkerWire, takes_a_message_with_only_the_required_keys) {
    const auto marker = decode("{" + kRequired + "}");
    ASSERT_TRUE(marker) << marker.error();
    EXPECT_EQ(marker.value().type, "hour");
    EXPECT_EQ(marker.value().clockTime, "14:00:00");
    EXPECT_EQ(marker.value().wallClockIso8601, "2026-03-02T13:00:00.012Z");
    EXPECT_EQ(marker.value().label, std::nullopt);
    EXPECT_EQ(marker.value().durationSec, std::nullopt);
    EXPECT_EQ(marker.value().file, std::nullopt);
    EXPECT_EQ(marker.value().testMode, std::nullopt);
}

TEST(MarkerWire, takes_every_key) {
    const auto marker =
        decode(with(R"("label":"Nachrichten — \"live\"","duration_sec":45.5,"file":"a.wav",)"
                    R"("test_mode":true)"));
    ASSERT_TRUE(marker) << marker.error();
    EXPECT_EQ(marker.value().label, "Nachrichten — \"live\"");
    EXPECT_EQ(marker.value().durationSec, 45.5);
    EXPECT_EQ(marker.value().file, "a.wav");
    EXPECT_EQ(marker.value().testMode, true);
}

TEST(MarkerWire, says_which_required_key_is_missing) {
    EXPECT_EQ(errorOf(R"({"clock_time":"14:00:00","wall_clock_iso8601":"x"})"),
              "key type is missing");
    EXPECT_EQ(errorOf(R"({"type":"hour","wall_clock_iso8601":"x"})"), "key clock_time is missing");
    EXPECT_EQ(errorOf(R"({"type":"hour","clock_time":"14:00:00"})"),
              "key wall_clock_iso8601 is missing");
    EXPECT_EQ(errorOf("{}"), "key type is missing");
    EXPECT_EQ(errorOf(R"({"type":null,"clock_time":"1","wall_clock_iso8601":"x"})"),
              "key type is missing");
}

TEST(MarkerWire, says_which_key_is_of_a_wrong_type) {
    EXPECT_EQ(errorOf(R"({"type":7,"clock_time":"1","wall_clock_iso8601":"x"})"),
              "key type is not a text");
    EXPECT_EQ(errorOf(R"({"type":"a","clock_time":[],"wall_clock_iso8601":"x"})"),
              "key clock_time is not a text");
    EXPECT_EQ(errorOf(R"({"type":"a","clock_time":"1","wall_clock_iso8601":{}})"),
              "key wall_clock_iso8601 is not a text");
    EXPECT_EQ(errorOf(with(R"("label":false)")), "key label is not a text");
    EXPECT_EQ(errorOf(with(R"("duration_sec":"45")")), "key duration_sec is not a number");
    EXPECT_EQ(errorOf(with(R"("duration_sec":true)")), "key duration_sec is not a number");
    EXPECT_EQ(errorOf(with(R"("file":1)")), "key file is not a text");
    EXPECT_EQ(errorOf(with(R"("test_mode":1)")), "key test_mode is not true or false");
    EXPECT_EQ(errorOf(with(R"("test_mode":"true")")), "key test_mode is not true or false");
}

TEST(MarkerWire, counts_a_null_for_an_optional_key_as_absent) {
    const auto marker =
        decode(with(R"("label":null,"duration_sec":null,"file":null,"test_mode":null)"));
    ASSERT_TRUE(marker) << marker.error();
    EXPECT_EQ(marker.value(), decode("{" + kRequired + "}").value());
}

TEST(MarkerWire, passes_over_keys_that_it_does_not_know) {
    EXPECT_EQ(decode(with(R"("volume":[1,{"a":2}],"":0)")).value(),
              decode("{" + kRequired + "}").value());
}

TEST(MarkerWire, takes_the_last_of_duplicate_keys) {
    EXPECT_EQ(decode(with(R"("label":1,"label":"b")")).value().label, "b");
}

TEST(MarkerWire, takes_empty_texts_and_whole_and_negative_durations) {
    const auto marker =
        decode(R"({"type":"","clock_time":"","wall_clock_iso8601":"","duration_sec":-3})");
    ASSERT_TRUE(marker) << marker.error();
    EXPECT_EQ(marker.value().type, "");
    EXPECT_EQ(marker.value().durationSec, -3.0);
    EXPECT_EQ(decode(with(R"("duration_sec":1e300)")).value().durationSec, 1e300);
}

TEST(MarkerWire, refuses_what_is_no_json_object) {
    for (const std::string json : {"", " ", "x", "7", "\"text\"", "null", "[]", "{", "{} {}", "{]",
                                   "\xFF\xFE", "{\"type\"}", "{'type':'a'}"}) {
        const auto marker = decode(json);
        ASSERT_FALSE(marker) << json;
        EXPECT_FALSE(marker.error().empty()) << json;
    }
    EXPECT_EQ(errorOf("[]"), "not a JSON object");
}

TEST(MarkerWire, refuses_text_that_is_not_utf8) {
    EXPECT_FALSE(decode(with("\"label\":\"M\xFCnchen\"")));
    EXPECT_EQ(decode(with("\"label\":\"M\xC3\xBCnchen\"")).value().label, "M\xC3\xBCnchen");
}

TEST(MarkerWire, survives_deep_nesting) {
    for (const std::size_t depth : {100U, 1000U, 2000U, 32000U}) {
        const std::string nested =
            with("\"x\":" + std::string(depth, '[') + std::string(depth, ']'));
        const std::string objects = with("\"x\":" + [depth] {
            std::string text;
            for (std::size_t i = 0; i < depth; ++i) text += "{\"a\":";
            return text + "1" + std::string(depth, '}');
        }());
        EXPECT_EQ(static_cast<bool>(decode(nested)), depth <= 1000) << depth;
        EXPECT_EQ(static_cast<bool>(decode(objects)), depth <= 1000) << depth;
        EXPECT_FALSE(decode(std::string(depth, '[')));
    }
}

TEST(MarkerWire, refuses_a_message_cut_at_any_byte) {
    const std::string json = with(R"("label":"a","duration_sec":45.5,"test_mode":true)");
    ASSERT_TRUE(decode(json));
    for (std::size_t length = 0; length < json.size(); ++length)
        EXPECT_FALSE(decode(json.substr(0, length))) << length;
}

TEST(MarkerWire, decodes_or_refuses_a_message_damaged_at_any_byte) {
    const std::string json = with(R"("label":"a","duration_sec":45.5,"test_mode":true)");
    for (std::size_t at = 0; at < json.size(); ++at) {
        for (const char damage : {'\0', '"', '{', '}', '\\', '9', '\xC3'}) {
            std::string damaged = json;
            damaged[at] = damage;
            const auto marker = decode(damaged);
            if (marker)
                EXPECT_EQ(marker.value() == decode(json).value(), damaged == json) << damaged;
            else
                EXPECT_FALSE(marker.error().empty()) << damaged;
        }
    }
}

}  // namespace
}  // namespace sonavault::testing
