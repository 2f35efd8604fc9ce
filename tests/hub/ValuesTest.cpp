#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "hub/OneShot.h"
#include "hub/RequestRules.h"
#include "hub/SwitchboardClientImpl.h"
#include "hub/SwitchboardState.h"
#include "support/ManualQueue.h"
#include "support/ScopedEnvironment.h"

namespace sonavault::testing {
namespace {

using Code = SwitchboardError::Code;
using State = SwitchboardState;

constexpr WallTime kMoment{std::chrono::milliseconds(1'778'248'987'250)};

SwitchboardMessage reply(const std::string& from, const QJsonObject& payload) {
    SwitchboardMessage message;
    message.type = "reply";
    message.from = from;
    message.payload = payload;
    return message;
}

TEST(SwitchboardState, is_equal_when_case_and_values_are) {
    EXPECT_EQ((State{State::Connecting{2}}), (State{State::Connecting{2}}));
    EXPECT_NE((State{State::Connecting{2}}), (State{State::Connecting{3}}));
    EXPECT_EQ((State{State::Connected{"a", kMoment}}), (State{State::Connected{"a", kMoment}}));
    EXPECT_NE((State{State::Connected{"a", kMoment}}), (State{State::Connected{"b", kMoment}}));
    EXPECT_NE((State{State::Reconnecting{kMoment, 1}}),
              (State{State::Reconnecting{kMoment + std::chrono::seconds(1), 1}}));
    EXPECT_NE((State{State::Disconnected{}}), (State{State::AwaitingAnnounce{}}));
    EXPECT_NE((State{State::Failed{"a"}}), (State{State::Failed{"b"}}));
}

TEST(SwitchboardState, describes_itself_for_a_log) {
    EXPECT_EQ(State{}.description(), "disconnected");
    EXPECT_EQ((State{State::Connecting{3}}).description(), "connecting(attempt: 3)");
    EXPECT_EQ((State{State::AwaitingAnnounce{}}).description(), "awaitingAnnounce");
    EXPECT_EQ((State{State::Connected{"s1", kMoment}}).description(),
              "connected(sessionId: \"s1\", since: 2026-05-08T14:03:07.250Z)");
    EXPECT_EQ((State{State::Reconnecting{kMoment, 4}}).description(),
              "reconnecting(nextAttemptAt: 2026-05-08T14:03:07.250Z, attempt: 4)");
    EXPECT_EQ((State{State::Failed{"why"}}).description(), "failed(reason: \"why\")");
}

TEST(DisconnectReason, has_a_text_for_each_case) {
    EXPECT_EQ(rawValue(DisconnectReason::clean), "clean");
    EXPECT_EQ(rawValue(DisconnectReason::abrupt), "abrupt");
    EXPECT_EQ(rawValue(DisconnectReason::unknown), "unknown");
}

TEST(SwitchboardError, describes_itself_with_and_without_the_hubs_word) {
    EXPECT_EQ((SwitchboardError{Code::hubError, "gone", "no such app", {}}).description(),
              "SwitchboardError(hubError, hub=gone: no such app)");
    EXPECT_EQ((SwitchboardError{Code::timeout, {}, "too late", {}}).description(),
              "SwitchboardError(timeout: too late)");
}

TEST(SwitchboardError, has_a_text_for_each_code) {
    EXPECT_EQ(rawValue(Code::notConnected), "notConnected");
    EXPECT_EQ(rawValue(Code::timeout), "timeout");
    EXPECT_EQ(rawValue(Code::hubError), "hubError");
    EXPECT_EQ(rawValue(Code::wireError), "wireError");
    EXPECT_EQ(rawValue(Code::malformedReply), "malformedReply");
}

TEST(ReconnectDelay, doubles_from_half_a_second_and_stays_at_30) {
    std::vector<double> delays;
    for (int attempt = 1; attempt <= 9; ++attempt) delays.push_back(reconnectDelaySec(attempt));
    EXPECT_THAT(delays, ::testing::ElementsAre(0.5, 1, 2, 4, 8, 16, 30, 30, 30));
    EXPECT_EQ(reconnectDelaySec(2'000'000'000), 30);
}

TEST(LocalFallback, outlasts_the_hubs_limit_by_half_of_it_or_half_a_second) {
    EXPECT_EQ(localFallbackMs(5000), 7500);
    EXPECT_EQ(localFallbackMs(500), 1000);
    EXPECT_EQ(localFallbackMs(1000), 1500);
    EXPECT_EQ(localFallbackMs(1001), 1501);
    EXPECT_EQ(localFallbackMs(1003), 1504);
    EXPECT_EQ(localFallbackMs(0), 500);
    EXPECT_EQ(localFallbackMs(-2000), -1500);
    EXPECT_GT(localFallbackMs(std::numeric_limits<std::int64_t>::max()), 1'000'000'000'000);
}

TEST(SocketPath, is_the_hubs_own_unless_the_environment_names_another) {
    {
        const ScopedEnvironment unset("SWITCHBOARD_SOCKET", std::nullopt);
        EXPECT_EQ(switchboardSocketPath(), "/Users/Shared/Calderwave/sockets/switchboard.sock");
    }
    {
        const ScopedEnvironment empty("SWITCHBOARD_SOCKET", "");
        EXPECT_EQ(switchboardSocketPath(), kSwitchboardSocketPath);
    }
    const ScopedEnvironment named("SWITCHBOARD_SOCKET", "/run/other.sock");
    EXPECT_EQ(switchboardSocketPath(), "/run/other.sock");
}

TEST(StateGet, finds_a_value_of_any_type) {
    EXPECT_EQ(stateGetResult(reply("HUB", {{"exists", true}, {"value", 4.5}})),
              StateGetResult::found(4.5));
    EXPECT_EQ(stateGetResult(reply("HUB", {{"exists", true}, {"value", QJsonObject{{"a", 1}}}})),
              StateGetResult::found(QJsonObject{{"a", 1}}));
    EXPECT_EQ(stateGetResult(reply("HUB", {{"exists", true}})),
              StateGetResult::found(QJsonValue::Null));
}

TEST(StateGet, tells_when_there_is_no_value) {
    EXPECT_EQ(stateGetResult(reply("HUB", {{"exists", false}, {"value", 1}})),
              StateGetResult::notFound());
}

TEST(StateGet, takes_an_error_of_anybody_for_one_before_it_looks_further) {
    const QJsonObject payload{{"error", "denied"}, {"exists", true}, {"value", 1}};
    EXPECT_EQ(stateGetResult(reply("Cadenzo", payload)),
              StateGetResult::error({Code::hubError, "denied",
                                     "hub returned error \"denied\" for state-get", payload}));
}

TEST(StateGet, refuses_a_reply_that_does_not_say_whether_there_is_a_value) {
    const SwitchboardError expected{
        Code::malformedReply, {}, "state-get reply missing 'exists' field", {}};
    EXPECT_EQ(stateGetResult(reply("HUB", {})), StateGetResult::error(expected));
    EXPECT_EQ(stateGetResult(reply("HUB", {{"exists", 1}, {"error", 5}})),
              StateGetResult::error(expected));
}

TEST(QueryReply, of_the_hub_with_an_error_is_a_failure) {
    const QJsonObject payload{{"error", "no-such-app"}, {"x", 1}};
    const auto result = queryResult(reply("HUB", payload));
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error(), (SwitchboardError{Code::hubError, "no-such-app",
                                                "hub error reply: \"no-such-app\"", payload}));
}

TEST(QueryReply, of_the_hub_with_its_timeout_fails_as_a_timeout_and_bears_its_word) {
    const auto result = queryResult(reply("HUB", {{"error", "timeout"}}));
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().code, Code::timeout);
    EXPECT_EQ(result.error().hubErrorCode, "timeout");
    EXPECT_EQ(result.error().message, "hub error reply: \"timeout\"");
}

TEST(QueryReply, of_a_recipient_with_an_error_is_a_success) {
    const auto result = queryResult(reply("Cadenzo", {{"error", "mine"}}));
    ASSERT_TRUE(result);
    EXPECT_EQ(result.value().payload["error"], "mine");
}

TEST(QueryReply, of_the_hub_without_a_text_for_an_error_is_a_success) {
    EXPECT_TRUE(queryResult(reply("HUB", {{"error", 5}})));
    EXPECT_TRUE(queryResult(reply("HUB", {})));
}

TEST(PingReply, of_the_hub_with_an_error_is_a_failure_and_any_other_a_success) {
    const auto refused = pingResult(reply("HUB", {{"error", "timeout"}}));
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error(),
              (SwitchboardError{Code::hubError, "timeout", "ping hub error: \"timeout\"",
                                QJsonObject{{"error", "timeout"}}}));
    EXPECT_TRUE(pingResult(reply("Cadenzo", {{"error", "timeout"}})));
    EXPECT_TRUE(pingResult(reply("HUB", {})));
}

TEST(SwitchboardMessage, has_an_empty_payload_when_the_envelope_has_none) {
    Envelope envelope{.id = "1", .type = "reply", .from = "f", .to = "x", .topic = "t", .ref = "r"};
    const auto message = SwitchboardMessage::of(std::move(envelope));
    EXPECT_EQ(message, (SwitchboardMessage{"reply", "f", "x", "t", "1", "r", {}}));
}

TEST(OneShot, runs_its_handler_once_with_the_first_value_and_never_at_once) {
    ManualQueue queue;
    std::vector<int> got;
    OneShot<int> once([&](int value) { got.push_back(value); }, queue);
    once.fire(1);
    EXPECT_TRUE(got.empty());
    once.fire(2);
    EXPECT_EQ(queue.runAll(), 1);
    once.fire(3);
    EXPECT_EQ(queue.runAll(), 0);
    EXPECT_THAT(got, ::testing::ElementsAre(1));
}

}  // namespace
}  // namespace sonavault::testing
