#include "hub/HubRouter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QJsonArray>
#include <limits>

namespace sonavault::demohub {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr int kSonavault = 1;
constexpr int kCadenzo = 2;

class HubRouterTest : public ::testing::Test {
  protected:
    HubRouterTest() {
        hub_.received(kSonavault, {.id = "1", .type = "announce", .from = "Sonavault"});
        hub_.received(kCadenzo, {.id = "2", .type = "announce", .from = "Cadenzo"});
    }

    static Envelope reply(const std::string& to, const std::string& ref, QJsonObject payload) {
        return {.type = "reply",
                .from = "HUB",
                .to = QString::fromStdString(to),
                .ref = ref,
                .payload = std::move(payload)};
    }

    HubRouter hub_;
};

TEST_F(HubRouterTest, answers_each_announce_with_a_session_of_its_own) {
    EXPECT_THAT(hub_.received(3, {.id = "3", .type = "announce", .from = "Third"}),
                ElementsAre(Outgoing{3, reply("Third", "3", {{"session_id", "session-3"}})}));
    EXPECT_THAT(hub_.applications(), ElementsAre("Sonavault", "Cadenzo", "Third"));
}

TEST_F(HubRouterTest, brings_a_publication_to_all_who_listen_as_it_stands) {
    hub_.received(kSonavault, {.type = "subscribe", .from = "Sonavault", .topic = "t"});
    hub_.received(kSonavault, {.type = "subscribe", .from = "Sonavault", .topic = "t"});
    hub_.received(kCadenzo, {.type = "subscribe", .from = "Cadenzo", .topic = "t"});
    const Envelope published{
        .type = "notify", .from = "Cadenzo", .topic = "t", .payload = QJsonObject{{"a", 1}}};
    EXPECT_THAT(hub_.received(kCadenzo, published),
                ElementsAre(Outgoing{kSonavault, published}, Outgoing{kCadenzo, published}));
    EXPECT_THAT(hub_.publish("Cadenzo", "t", {{"a", 1}}),
                ElementsAre(Outgoing{kSonavault, published}, Outgoing{kCadenzo, published}));
    hub_.received(kSonavault, {.type = "unsubscribe", .from = "Sonavault", .topic = "t"});
    EXPECT_THAT(hub_.publish("Cadenzo", "t", {{"a", 1}}),
                ElementsAre(Outgoing{kCadenzo, published}));
}

TEST_F(HubRouterTest, brings_a_direct_message_to_one_or_to_several) {
    Envelope direct{.type = "notify", .from = "A", .to = "Cadenzo"};
    EXPECT_THAT(hub_.received(9, direct), ElementsAre(Outgoing{kCadenzo, direct}));
    direct.to = QJsonArray{"Cadenzo", "Sonavault", "Nobody"};
    EXPECT_THAT(hub_.received(9, direct),
                ElementsAre(Outgoing{kCadenzo, direct}, Outgoing{kSonavault, direct}));
}

TEST_F(HubRouterTest, keeps_values_until_they_are_set_to_null) {
    const Envelope get{
        .id = "g", .type = "state-get", .from = "Cadenzo", .payload = QJsonObject{{"key", "k"}}};
    Envelope set{.type = "state-set",
                 .from = "Sonavault",
                 .payload = QJsonObject{{"key", "k"}, {"value", 5}}};
    EXPECT_THAT(hub_.received(kCadenzo, get),
                ElementsAre(Outgoing{kCadenzo, reply("Cadenzo", "g", {{"exists", false}})}));
    EXPECT_THAT(hub_.received(kSonavault, set), IsEmpty());
    EXPECT_THAT(
        hub_.received(kCadenzo, get),
        ElementsAre(Outgoing{kCadenzo, reply("Cadenzo", "g", {{"exists", true}, {"value", 5}})}));
    set.payload = QJsonObject{{"key", "k"}, {"value", QJsonValue::Null}};
    hub_.received(kSonavault, set);
    EXPECT_TRUE(hub_.state().isEmpty());
}

TEST_F(HubRouterTest, refuses_to_look_for_a_value_without_a_key) {
    EXPECT_THAT(hub_.received(kCadenzo, {.id = "g", .type = "state-get", .from = "Cadenzo"}),
                ElementsAre(Outgoing{kCadenzo, reply("Cadenzo", "g", {{"error", "bad-request"}})}));
}

TEST_F(HubRouterTest, answers_a_ping) {
    EXPECT_THAT(hub_.received(kCadenzo, {.id = "p", .type = "ping", .from = "Cadenzo"}),
                ElementsAre(Outgoing{kCadenzo, reply("Cadenzo", "p", {})}));
}

TEST_F(HubRouterTest, carries_a_query_to_its_recipient_and_the_answer_back_once) {
    const Envelope query{
        .id = "q", .type = "query", .from = "Sonavault", .to = "Cadenzo", .topic = "t"};
    const Envelope answer{.type = "reply", .from = "Cadenzo", .ref = "q"};
    EXPECT_THAT(hub_.received(kSonavault, query), ElementsAre(Outgoing{kCadenzo, query}));
    EXPECT_THAT(hub_.received(kCadenzo, answer), ElementsAre(Outgoing{kSonavault, answer}));
    EXPECT_THAT(hub_.received(kCadenzo, answer), IsEmpty());
    EXPECT_THAT(hub_.queryTimedOut("q"), IsEmpty());
}

TEST_F(HubRouterTest, answers_a_query_that_nobody_answers_in_time) {
    hub_.received(kSonavault,
                  {.id = "q", .type = "query", .from = "Sonavault", .to = "Cadenzo", .topic = "t"});
    EXPECT_THAT(hub_.queryTimedOut("q"),
                ElementsAre(Outgoing{kSonavault, reply("Sonavault", "q", {{"error", "timeout"}})}));
}

TEST_F(HubRouterTest, remembers_a_query_until_it_is_answered_given_up_or_left) {
    const auto ask = [&](const std::string& id) {
        hub_.received(kSonavault,
                      {.id = id, .type = "query", .from = "Sonavault", .to = "Cadenzo"});
    };
    ask("answered");
    ask("given up");
    ask("left");
    EXPECT_EQ(hub_.openQueryCount(), 3U);
    hub_.received(kCadenzo, {.type = "reply", .from = "Cadenzo", .ref = "answered"});
    EXPECT_EQ(hub_.openQueryCount(), 2U);
    hub_.queryTimedOut("given up");
    EXPECT_EQ(hub_.openQueryCount(), 1U);
    hub_.left(kSonavault);
    EXPECT_EQ(hub_.openQueryCount(), 0U);
}

TEST(QueryLimit, is_what_the_query_asks_for_within_bounds) {
    EXPECT_EQ(queryLimitMs({.timeoutMs = 20}), 20);
    EXPECT_EQ(queryLimitMs({}), 5000);
    EXPECT_EQ(queryLimitMs({.timeoutMs = -7}), 0);
    EXPECT_EQ(queryLimitMs({.timeoutMs = std::numeric_limits<std::int64_t>::max()}), 3'600'000);
}

TEST_F(HubRouterTest, refuses_a_query_to_a_stranger) {
    EXPECT_THAT(
        hub_.received(kSonavault, {.id = "q", .type = "query", .from = "Sonavault", .to = "X"}),
        ElementsAre(Outgoing{kSonavault, reply("Sonavault", "q", {{"error", "no-such-app"}})}));
}

TEST_F(HubRouterTest, forgets_who_has_left) {
    hub_.received(kSonavault, {.type = "subscribe", .from = "Sonavault", .topic = "t"});
    hub_.received(kSonavault,
                  {.id = "q", .type = "query", .from = "Sonavault", .to = "Cadenzo", .topic = "t"});
    hub_.left(kSonavault);
    EXPECT_THAT(hub_.publish("A", "t", {}), IsEmpty());
    EXPECT_THAT(hub_.queryTimedOut("q"), IsEmpty());
    EXPECT_THAT(hub_.applications(), ElementsAre("Cadenzo"));
}

}  // namespace
}  // namespace sonavault::demohub
