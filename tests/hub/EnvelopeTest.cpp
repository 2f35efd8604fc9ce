#include "hub/Envelope.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <cctype>
#include <limits>
#include <set>

namespace sonavault::testing {
namespace {

using Code = SwitchboardError::Code;

Envelope decoded(const std::string& line) {
    auto envelope = Envelope::decode(line);
    if (!envelope) ADD_FAILURE() << envelope.error().description();
    return envelope ? envelope.value() : Envelope{};
}

SwitchboardError refusal(const std::string& line) {
    const auto envelope = Envelope::decode(line);
    EXPECT_FALSE(envelope) << line;
    return envelope ? SwitchboardError{} : envelope.error();
}

std::string encoded(const Envelope& envelope) {
    const auto text = envelope.encode();
    if (!text) ADD_FAILURE() << text.error();
    return text ? text.value() : "";
}

Envelope fullEnvelope() {
    Envelope envelope;
    envelope.v = 3;
    envelope.id = "A1";
    envelope.type = "query";
    envelope.from = "Sonavault";
    envelope.to = QJsonArray{"Cadenzo", "Other"};
    envelope.topic = "a.b";
    envelope.ref = "R1";
    envelope.timeoutMs = 5000;
    envelope.payload = {{"text", "line one\nline two \u00e9 \U0001F399"},
                        {"number", 12.5},
                        {"null", QJsonValue::Null},
                        {"list", QJsonArray{1, true, "x"}},
                        {"map", QJsonObject{{"k", "v"}}}};
    return envelope;
}

QStringList keysOf(const Envelope& envelope) {
    return QJsonDocument::fromJson(QByteArray::fromStdString(encoded(envelope))).object().keys();
}

TEST(Envelope, writes_only_what_is_set) {
    EXPECT_EQ(keysOf({.type = "announce", .from = "Sonavault"}),
              (QStringList{"from", "type", "v"}));
    EXPECT_EQ(keysOf(fullEnvelope()), (QStringList{"from", "id", "payload", "ref", "timeout_ms",
                                                   "to", "topic", "type", "v"}));
}

TEST(Envelope, writes_an_empty_payload_as_an_empty_object) {
    EXPECT_THAT(encoded({.type = "t", .from = "f", .payload = QJsonObject()}),
                ::testing::HasSubstr(R"("payload":{})"));
}

TEST(Envelope, is_one_compact_line) {
    const std::string line = encoded(fullEnvelope());
    EXPECT_EQ(line.find('\n'), std::string::npos);
    EXPECT_EQ(line.front(), '{');
    EXPECT_EQ(line.back(), '}');
    EXPECT_THAT(line, ::testing::HasSubstr(R"("timeout_ms":5000)"));
}

TEST(Envelope, comes_back_from_the_wire_as_it_went) {
    EXPECT_EQ(decoded(encoded(fullEnvelope())), fullEnvelope());
}

TEST(Envelope, cannot_hold_a_number_that_is_not_finite) {
    Envelope envelope{.type = "notify", .from = "f"};
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    const double infinite = std::numeric_limits<double>::infinity();
    envelope.payload = {{"level", notANumber}};
    EXPECT_FALSE(envelope.encode());
    envelope.payload = {{"deep", QJsonArray{1, QJsonObject{{"level", -infinite}}}}};
    EXPECT_FALSE(envelope.encode());
    envelope.payload = QJsonObject();
    envelope.to = infinite;
    EXPECT_FALSE(envelope.encode());
}

TEST(Envelope, has_version_1_when_it_tells_none_or_no_integer) {
    EXPECT_EQ(decoded(R"({"type":"t","from":"f"})").v, 1);
    EXPECT_EQ(decoded(R"({"type":"t","from":"f","v":"2"})").v, 1);
    EXPECT_EQ(decoded(R"({"type":"t","from":"f","v":2.5})").v, 1);
    EXPECT_EQ(decoded(R"({"type":"t","from":"f","v":true})").v, 1);
    EXPECT_EQ(decoded(R"({"type":"t","from":"f","v":1e300})").v, 1);
}

TEST(Envelope, keeps_any_version_it_tells) {
    EXPECT_EQ(decoded(R"({"type":"t","from":"f","v":7})").v, 7);
    EXPECT_EQ(decoded(R"({"type":"t","from":"f","v":0})").v, 0);
    EXPECT_EQ(decoded(R"({"type":"t","from":"f","v":-3})").v, -3);
}

TEST(Envelope, leaves_texts_of_a_wrong_type_absent) {
    const auto envelope = decoded(R"({"type":"t","from":"f","id":12,"topic":[],"ref":null})");
    EXPECT_FALSE(envelope.id);
    EXPECT_FALSE(envelope.topic);
    EXPECT_FALSE(envelope.ref);
}

TEST(Envelope, takes_half_a_character_for_no_text) {
    const auto envelope =
        decoded(R"({"type":"t","from":"f","id":"\ud800","topic":"x\udc00","ref":"\ud83c\udf99"})");
    EXPECT_FALSE(envelope.id);
    EXPECT_FALSE(envelope.topic);
    EXPECT_EQ(envelope.ref, "\U0001F399") << "both halves of one are a text";
    EXPECT_EQ(refusal(R"({"type":"t","from":"\ud800"})").message,
              "envelope missing required type/from");
}

TEST(Envelope, keeps_the_recipient_as_it_stands) {
    EXPECT_EQ(decoded(R"({"type":"t","from":"f","to":"Cadenzo"})").to, QJsonValue("Cadenzo"));
    EXPECT_EQ(decoded(R"({"type":"t","from":"f","to":["A","B"]})").to,
              QJsonValue(QJsonArray{"A", "B"}));
    EXPECT_EQ(decoded(R"({"type":"t","from":"f","to":5})").to, QJsonValue(5));
    EXPECT_EQ(decoded(R"({"type":"t","from":"f","to":null})").to, QJsonValue(QJsonValue::Null));
    EXPECT_FALSE(decoded(R"({"type":"t","from":"f"})").to);
}

TEST(Envelope, leaves_a_payload_or_limit_of_a_wrong_type_absent) {
    const auto envelope = decoded(R"({"type":"t","from":"f","payload":3,"timeout_ms":"5"})");
    EXPECT_FALSE(envelope.payload);
    EXPECT_FALSE(envelope.timeoutMs);
    EXPECT_FALSE(decoded(R"({"type":"t","from":"f","payload":[]})").payload);
    EXPECT_FALSE(decoded(R"({"type":"t","from":"f","timeout_ms":1.5})").timeoutMs);
    EXPECT_EQ(decoded(R"({"type":"t","from":"f","timeout_ms":250})").timeoutMs, 250);
}

TEST(Envelope, ignores_unknown_keys) {
    EXPECT_EQ(decoded(R"({"type":"t","from":"f","colour":"red"})"),
              (Envelope{.type = "t", .from = "f"}));
}

TEST(Envelope, refuses_a_line_that_is_no_json) {
    for (const std::string line :
         {"", "{", "hello", R"({"type":"t","from":"f"} x)", "3", "\xff\xfe", R"({"type":"t",})"}) {
        EXPECT_EQ(refusal(line).code, Code::malformedReply) << line;
        EXPECT_FALSE(refusal(line).message.empty()) << line;
    }
}

TEST(Envelope, refuses_invalid_utf8) {
    EXPECT_EQ(refusal("{\"type\":\"t\",\"from\":\"\xc3\x28\"}").code, Code::malformedReply);
}

TEST(Envelope, refuses_what_is_nested_deeper_than_the_parser_goes) {
    const std::string deep(100'000, '[');
    EXPECT_EQ(refusal(R"({"type":"t","from":"f","payload":{"a":)" + deep).code,
              Code::malformedReply);
    const std::string closed = deep + std::string(deep.size(), ']');
    EXPECT_EQ(refusal(R"({"type":"t","from":"f","payload":{"a":)" + closed + "}}").code,
              Code::malformedReply);
}

TEST(Envelope, refuses_json_that_is_no_object) {
    EXPECT_EQ(refusal("[1,2]").description(),
              "SwitchboardError(malformedReply: envelope not a JSON object)");
}

TEST(Envelope, refuses_an_object_without_a_text_for_type_or_sender) {
    for (const std::string line : {"{}", R"({"type":"t"})", R"({"from":"f"})",
                                   R"({"type":1,"from":"f"})", R"({"type":"t","from":null})"}) {
        EXPECT_EQ(refusal(line).code, Code::malformedReply);
        EXPECT_EQ(refusal(line).message, "envelope missing required type/from");
    }
}

TEST(Envelope, takes_a_line_cut_at_any_byte_for_no_envelope) {
    const std::string line = encoded(fullEnvelope());
    for (std::size_t length = 0; length < line.size(); ++length)
        ASSERT_FALSE(Envelope::decode(std::string_view(line).substr(0, length))) << length;
}

TEST(Envelope, survives_damage_at_every_byte) {
    const std::string line = encoded(fullEnvelope());
    int refused = 0;
    for (std::size_t at = 0; at < line.size(); ++at) {
        for (const char damage : {'\0', '"', '}', '\x80', '9'}) {
            std::string damaged = line;
            damaged[at] = damage;
            const auto envelope = Envelope::decode(damaged);
            if (!envelope)
                ++refused;
            else
                EXPECT_TRUE(envelope.value().encode());
        }
    }
    EXPECT_GT(refused, static_cast<int>(line.size()));
}

TEST(EnvelopeId, is_an_upper_case_uuid_and_never_the_same) {
    std::set<std::string> ids;
    for (int i = 0; i < 1000; ++i) {
        const std::string id = newEnvelopeId();
        ASSERT_EQ(id.size(), 36U);
        for (std::size_t at = 0; at < id.size(); ++at) {
            if (at == 8 || at == 13 || at == 18 || at == 23)
                ASSERT_EQ(id[at], '-');
            else
                ASSERT_TRUE(std::isdigit(id[at]) || (id[at] >= 'A' && id[at] <= 'F')) << id;
        }
        ids.insert(id);
    }
    EXPECT_EQ(ids.size(), 1000U);
}

}  // namespace
}  // namespace sonavault::testing
