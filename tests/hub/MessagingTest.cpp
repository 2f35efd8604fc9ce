#include <QJsonArray>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "hub/ClientFixture.h"

namespace sonavault::testing {
namespace {

using std::chrono::milliseconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Code = SwitchboardError::Code;

class HubMessagingTest : public ClientFixture {
  protected:
    void query(std::int64_t timeoutMs = 5000, const QJsonObject& payload = {}) {
        client_->query("Cadenzo", "a.topic", payload, timeoutMs,
                       [this](QueryResult result) { results_.push_back(std::move(result)); });
    }
    void ping(std::int64_t timeoutMs = 1000) {
        client_->ping(timeoutMs,
                      [this](PingResult result) { pings_.push_back(std::move(result)); });
    }
    void stateGet() {
        client_->stateGet("a.key",
                          [this](StateGetResult result) { values_.push_back(std::move(result)); });
    }
    std::string lastId() { return takeSent().back()["id"].toString().toStdString(); }
    void replyTo(const std::string& id, const std::string& from, const std::string& payload) {
        hubSays(R"({"type":"reply","from":")" + from + R"(","ref":")" + id + R"(","payload":)" +
                payload + "}");
    }
    void tellTooLongAReplyTo(const std::string& id) {
        hub().deliver(R"({"type":"reply","from":"Cadenzo","ref":")" + id + R"(","payload":{"x":")");
        for (std::size_t said = 0; said <= LineSplitter::kMostBytesOfALine; said += 65'536)
            hub().deliver(std::string(65'536, 'x'));
        hub().deliver("\"}}\n");
    }

    std::vector<QueryResult> results_;
    std::vector<PingResult> pings_;
    std::vector<StateGetResult> values_;
};

const SwitchboardError kNotConnected{Code::notConnected, {}, "client not connected", {}};

TEST_F(HubMessagingTest, refuses_requests_before_it_was_ever_connected) {
    query();
    ping();
    stateGet();
    EXPECT_THAT(results_, IsEmpty());
    mainQueue_.runAll();
    ASSERT_EQ(results_.size(), 1U);
    EXPECT_EQ(results_[0].error(), kNotConnected);
    ASSERT_EQ(pings_.size(), 1U);
    EXPECT_EQ(pings_[0].error(), kNotConnected);
    EXPECT_THAT(values_, ElementsAre(StateGetResult::error(kNotConnected)));
    EXPECT_TRUE(world_->timers.empty());
}

TEST_F(HubMessagingTest, keeps_a_subscription_made_before_it_was_ever_connected) {
    client_->subscribe("t", [](const SwitchboardMessage&) {});
    client_->notifyTopic("t", {});
    client_->stateSet("k", 1);
    client_->unsubscribe("other");
    connect();
    hub().tell(Kind::ready);
    takeSent();
    hubSays(R"({"type":"reply","from":"HUB","payload":{"session_id":"s"}})");
    const auto sent = sentOne();
    EXPECT_EQ(sent["type"], "subscribe");
    EXPECT_EQ(sent["topic"], "t");
}

TEST_F(HubMessagingTest, gives_up_a_subscription_that_ended_before_it_was_ever_connected) {
    client_->subscribe("t", [](const SwitchboardMessage&) {});
    client_->unsubscribe("t");
    connect();
    hub().tell(Kind::ready);
    takeSent();
    hubSays(R"({"type":"reply","from":"HUB","payload":{"session_id":"s"}})");
    EXPECT_TRUE(takeSent().empty());
}

TEST_F(HubMessagingTest, subscribes_with_the_hub_at_each_call) {
    join();
    takeSent();
    client_->subscribe("t", [](const SwitchboardMessage&) {});
    client_->subscribe("t", [](const SwitchboardMessage&) {});
    const auto sent = takeSent();
    ASSERT_EQ(sent.size(), 2U);
    for (const auto& each : sent) {
        EXPECT_EQ(each.keys(), (QStringList{"from", "topic", "type", "v"}));
        EXPECT_EQ(each["type"], "subscribe");
        EXPECT_EQ(each["topic"], "t");
    }
}

TEST_F(HubMessagingTest, leaves_what_is_sent_before_the_socket_is_ready_to_the_connection) {
    connect();
    client_->subscribe("t", [](const SwitchboardMessage&) {});
    EXPECT_EQ(sentOne()["type"], "subscribe");
}

TEST_F(HubMessagingTest, brings_a_publication_to_each_callback_of_its_topic_in_a_block_of_its_own) {
    join();
    std::vector<std::string> heard;
    client_->subscribe("t", [&](const SwitchboardMessage& m) {
        heard.push_back("first " + m.from + " " + m.payload["n"].toString().toStdString());
    });
    client_->subscribe("t", [&](const SwitchboardMessage& m) {
        heard.push_back("second " + m.from + " " + m.payload["n"].toString().toStdString());
    });
    callbacks_.runAll();
    hubSays(R"({"type":"notify","from":"Cadenzo","topic":"t","payload":{"n":"1"}})");
    EXPECT_THAT(heard, IsEmpty());
    EXPECT_EQ(callbacks_.runAll(), 2);
    EXPECT_THAT(heard, ElementsAre("first Cadenzo 1", "second Cadenzo 1"));
}

TEST_F(HubMessagingTest, copies_a_publication_field_for_field) {
    join();
    std::optional<SwitchboardMessage> heard;
    client_->subscribe("t", [&](const SwitchboardMessage& m) { heard = m; });
    hubSays(R"({"v":9,"type":"notify","from":"A","to":["x"],"id":"i","ref":"r","topic":"t"})");
    callbacks_.runAll();
    EXPECT_EQ(heard, (SwitchboardMessage{"notify", "A", QJsonArray{"x"}, "t", "i", "r", {}}));
}

TEST_F(HubMessagingTest, drops_a_publication_nobody_listens_to) {
    join();
    client_->subscribe("t", [](const SwitchboardMessage&) {});
    callbacks_.runAll();
    hubSays(R"({"type":"notify","from":"A","topic":"T","payload":{}})");
    EXPECT_EQ(callbacks_.runAll(), 0);
}

TEST_F(HubMessagingTest, hears_a_publication_of_another_version) {
    join();
    int heard = 0;
    client_->subscribe("t", [&](const SwitchboardMessage&) { ++heard; });
    hubSays(R"({"v":7,"type":"notify","from":"A","topic":"t"})");
    callbacks_.runAll();
    EXPECT_EQ(heard, 1);
}

TEST_F(HubMessagingTest, hears_no_more_of_a_topic_it_has_unsubscribed_from) {
    join();
    int heard = 0;
    client_->subscribe("t", [&](const SwitchboardMessage&) { ++heard; });
    takeSent();
    client_->unsubscribe("t");
    const auto sent = sentOne();
    EXPECT_EQ(sent.keys(), (QStringList{"from", "topic", "type", "v"}));
    EXPECT_EQ(sent["type"], "unsubscribe");
    hubSays(R"({"type":"notify","from":"A","topic":"t"})");
    callbacks_.runAll();
    EXPECT_EQ(heard, 0);
}

TEST_F(HubMessagingTest, subscribes_again_after_a_reconnect_once_the_announce_is_answered) {
    join();
    client_->subscribe("b", [](const SwitchboardMessage&) {});
    client_->subscribe("a", [](const SwitchboardMessage&) {});
    client_->subscribe("a", [](const SwitchboardMessage&) {});
    hub().tell(Kind::failed, "broken");
    world_->advance(milliseconds(500));
    hub().tell(Kind::ready);
    EXPECT_EQ(sentOne()["type"], "announce");
    hubSays(R"({"type":"reply","from":"HUB","payload":{"session_id":"s2"}})");
    std::vector<std::string> topics;
    for (const auto& each : takeSent()) {
        EXPECT_EQ(each["type"], "subscribe");
        topics.push_back(each["topic"].toString().toStdString());
    }
    EXPECT_THAT(topics, ::testing::UnorderedElementsAre("a", "b"));
}

TEST_F(HubMessagingTest, forgets_its_subscriptions_with_a_disconnect) {
    join();
    client_->subscribe("t", [](const SwitchboardMessage&) {});
    client_->disconnect();
    join();
    ASSERT_EQ(takeSent().size(), 1U);
}

TEST_F(HubMessagingTest, sends_a_direct_message_to_one_by_name_and_to_more_by_list) {
    join();
    takeSent();
    client_->notifyRecipients({"Cadenzo"}, {{"a", 1}});
    auto sent = sentOne();
    EXPECT_EQ(sent.keys(), (QStringList{"from", "payload", "to", "type", "v"}));
    EXPECT_EQ(sent["type"], "notify");
    EXPECT_EQ(sent["to"], "Cadenzo");
    EXPECT_EQ(sent["payload"], (QJsonObject{{"a", 1}}));
    client_->notifyRecipients({"A", "B"}, {});
    sent = sentOne();
    EXPECT_EQ(sent["to"], (QJsonArray{"A", "B"}));
    EXPECT_FALSE(sent.contains("payload"));
    client_->notifyRecipients({}, {});
    EXPECT_EQ(sentOne()["to"], QJsonArray());
}

TEST_F(HubMessagingTest, publishes_with_a_payload_only_when_there_is_one) {
    join();
    takeSent();
    client_->notifyTopic("sonavault.x", {{"state", "started"}});
    auto sent = sentOne();
    EXPECT_EQ(sent["type"], "notify");
    EXPECT_EQ(sent["topic"], "sonavault.x");
    EXPECT_EQ(sent["payload"], (QJsonObject{{"state", "started"}}));
    client_->notifyTopic("sonavault.x", {});
    EXPECT_EQ(sentOne().keys(), (QStringList{"from", "topic", "type", "v"}));
}

TEST_F(HubMessagingTest, puts_a_value_into_the_hubs_store) {
    join();
    takeSent();
    client_->stateSet("k", QJsonObject{{"at", "now"}});
    const auto sent = sentOne();
    EXPECT_EQ(sent.keys(), (QStringList{"from", "payload", "type", "v"}));
    EXPECT_EQ(sent["type"], "state-set");
    EXPECT_EQ(sent["payload"], (QJsonObject{{"key", "k"}, {"value", QJsonObject{{"at", "now"}}}}));
}

TEST_F(HubMessagingTest, deletes_a_value_by_putting_null) {
    join();
    takeSent();
    client_->stateSet("k", QJsonValue::Null);
    const auto payload = sentOne()["payload"].toObject();
    EXPECT_TRUE(payload.contains("value"));
    EXPECT_TRUE(payload["value"].isNull());
}

TEST_F(HubMessagingTest, asks_for_a_value_without_a_time_limit) {
    join();
    takeSent();
    stateGet();
    const auto sent = sentOne();
    EXPECT_EQ(sent.keys(), (QStringList{"from", "id", "payload", "type", "v"}));
    EXPECT_EQ(sent["type"], "state-get");
    EXPECT_EQ(sent["payload"], (QJsonObject{{"key", "a.key"}}));
    EXPECT_TRUE(world_->timers.empty());
    replyTo(sent["id"].toString().toStdString(), "HUB", R"({"exists":true,"value":[1]})");
    EXPECT_THAT(values_, IsEmpty());
    EXPECT_EQ(callbacks_.runAll(), 1 + 3);  // with the three states since the start
    EXPECT_THAT(values_, ElementsAre(StateGetResult::found(QJsonArray{1})));
}

TEST_F(HubMessagingTest, sends_a_query_with_the_hubs_limit) {
    join();
    takeSent();
    query(5000, {{"q", 1}});
    auto sent = sentOne();
    EXPECT_EQ(sent.keys(),
              (QStringList{"from", "id", "payload", "timeout_ms", "to", "topic", "type", "v"}));
    EXPECT_EQ(sent["type"], "query");
    EXPECT_EQ(sent["to"], "Cadenzo");
    EXPECT_EQ(sent["topic"], "a.topic");
    EXPECT_EQ(sent["timeout_ms"], 5000);
    EXPECT_EQ(sent["payload"], (QJsonObject{{"q", 1}}));
    query();
    EXPECT_FALSE(sentOne().contains("payload"));
}

TEST_F(HubMessagingTest, brings_the_reply_to_a_query_once_and_ends_its_timer) {
    join();
    query();
    const auto id = lastId();
    replyTo(id, "Cadenzo", R"({"a":1})");
    replyTo(id, "Cadenzo", R"({"a":2})");
    EXPECT_THAT(world_->waitingDelays(), IsEmpty());
    EXPECT_THAT(results_, IsEmpty());
    callbacks_.runAll();
    world_->advance(std::chrono::hours(1));
    callbacks_.runAll();
    ASSERT_EQ(results_.size(), 1U);
    ASSERT_TRUE(results_[0]);
    EXPECT_EQ(results_[0].value(),
              (SwitchboardMessage{"reply", "Cadenzo", {}, {}, {}, id, QJsonObject{{"a", 1}}}));
}

TEST_F(HubMessagingTest, runs_the_callback_of_a_query_two_hops_after_the_reply) {
    join();
    callbacks_.runAll();
    query();
    replyTo(lastId(), "Cadenzo", "{}");
    EXPECT_EQ(callbacks_.runAll(), 2);
}

TEST_F(HubMessagingTest, fails_a_query_by_its_own_timer_later_than_the_hub_would) {
    join();
    query(5000);
    query(500);
    EXPECT_THAT(world_->waitingDelays(), ElementsAre(7500, 1000));
    world_->advance(milliseconds(999));
    callbacks_.runAll();
    EXPECT_THAT(results_, IsEmpty());
    world_->advance(milliseconds(1));
    callbacks_.runAll();
    ASSERT_EQ(results_.size(), 1U);
    EXPECT_EQ(results_[0].error(),
              (SwitchboardError{Code::timeout,
                                {},
                                "query timed out locally after 1000ms (no reply from hub or "
                                "recipient)",
                                {}}));
    world_->advance(milliseconds(6500));
    callbacks_.runAll();
    ASSERT_EQ(results_.size(), 2U);
    EXPECT_EQ(results_[1].error().message,
              "query timed out locally after 7500ms (no reply from hub or recipient)");
}

TEST_F(HubMessagingTest, drops_a_reply_that_comes_after_the_timer) {
    join();
    query(500);
    const auto id = lastId();
    world_->advance(milliseconds(1000));
    replyTo(id, "Cadenzo", "{}");
    callbacks_.runAll();
    ASSERT_EQ(results_.size(), 1U);
    EXPECT_FALSE(results_[0]);
}

TEST_F(HubMessagingTest, lets_the_first_of_reply_and_timer_win_when_both_pass) {
    join();
    query(500);
    const auto timer = world_->timers.back();
    replyTo(lastId(), "Cadenzo", "{}");
    timer->ring();  // was already on its way
    callbacks_.runAll();
    ASSERT_EQ(results_.size(), 1U);
}

TEST_F(HubMessagingTest, does_not_refuse_a_query_while_merely_disconnected) {
    connect();
    hub().tell(Kind::waiting, "No such file or directory");
    query(500);
    callbacks_.runAll();
    EXPECT_THAT(results_, IsEmpty());
    EXPECT_THAT(takeSent(), IsEmpty());
    client_->disconnect();
    callbacks_.runAll();
    ASSERT_EQ(results_.size(), 1U);
    query(500);
    world_->advance(milliseconds(1000));
    callbacks_.runAll();
    ASSERT_EQ(results_.size(), 2U);
    EXPECT_EQ(results_[1].error().code, Code::timeout);
}

TEST_F(HubMessagingTest, is_untouched_by_a_reply_it_knows_nothing_of) {
    join();
    query();
    takeSent();
    callbacks_.runAll();
    hubSays(R"({"type":"reply","from":"HUB","ref":"unknown","payload":{"error":"x"}})");
    hubSays(R"({"type":"reply","from":"HUB","payload":{"error":"x"}})");
    hubSays(R"({"type":"reply","from":"HUB","ref":7})");
    EXPECT_EQ(callbacks_.runAll(), 0);
    EXPECT_THAT(takeSent(), IsEmpty());
    EXPECT_EQ(world_->waitingDelays().size(), 1U);
}

TEST_F(HubMessagingTest, fails_a_query_with_the_hubs_word) {
    join();
    query();
    replyTo(lastId(), "HUB", R"({"error":"timeout"})");
    callbacks_.runAll();
    ASSERT_EQ(results_.size(), 1U);
    EXPECT_EQ(results_[0].error(),
              (SwitchboardError{Code::timeout, "timeout", "hub error reply: \"timeout\"",
                                QJsonObject{{"error", "timeout"}}}));
}

TEST_F(HubMessagingTest, takes_a_recipients_error_for_its_answer) {
    join();
    query();
    replyTo(lastId(), "Cadenzo", R"({"error":"timeout"})");
    callbacks_.runAll();
    ASSERT_EQ(results_.size(), 1U);
    ASSERT_TRUE(results_[0]);
    EXPECT_EQ(results_[0].value().from, "Cadenzo");
    EXPECT_EQ(results_[0].value().payload, (QJsonObject{{"error", "timeout"}}));
}

TEST_F(HubMessagingTest, ends_by_its_timer_a_query_whose_answer_was_too_long_to_be_heard) {
    join();
    query(500);
    tellTooLongAReplyTo(lastId());
    callbacks_.runAll();
    EXPECT_THAT(results_, IsEmpty());
    world_->advance(milliseconds(1000));
    callbacks_.runAll();
    ASSERT_EQ(results_.size(), 1U);
    EXPECT_EQ(results_[0].error().code, Code::timeout);
    EXPECT_FALSE(results_[0].error().hubErrorCode);
    EXPECT_TRUE(client_->currentState().is<State::Connected>());
    takeSent();
    hubSays(R"({"type":"ping","from":"A","id":"next"})");
    EXPECT_EQ(sentOne()["ref"], "next");
}

TEST_F(HubMessagingTest, ends_with_its_connection_a_state_get_whose_answer_was_too_long) {
    join();
    stateGet();
    tellTooLongAReplyTo(lastId());
    world_->advance(std::chrono::hours(1));
    callbacks_.runAll();
    EXPECT_THAT(values_, IsEmpty());
    EXPECT_TRUE(client_->currentState().is<State::Connected>());
    hub().tell(Kind::failed, "Connection reset by peer");
    callbacks_.runAll();
    ASSERT_EQ(values_.size(), 1U);
    EXPECT_EQ(std::get<SwitchboardError>(values_[0].outcome).hubErrorCode, "connection_lost");
}

TEST_F(HubMessagingTest, pings_with_exactly_the_given_limit) {
    join();
    takeSent();
    ping(250);
    EXPECT_EQ(sentOne().keys(), (QStringList{"from", "id", "type", "v"}));
    EXPECT_THAT(world_->waitingDelays(), ElementsAre(250));
    world_->advance(milliseconds(250));
    callbacks_.runAll();
    ASSERT_EQ(pings_.size(), 1U);
    EXPECT_EQ(pings_[0].error(),
              (SwitchboardError{Code::timeout, {}, "ping timed out after 250ms", {}}));
}

TEST_F(HubMessagingTest, takes_any_answer_to_a_ping_for_a_success) {
    join();
    ping();
    replyTo(lastId(), "HUB", "{}");
    callbacks_.runAll();
    ASSERT_EQ(pings_.size(), 1U);
    EXPECT_TRUE(pings_[0]);
    EXPECT_THAT(world_->waitingDelays(), IsEmpty());
}

TEST_F(HubMessagingTest, answers_a_ping_by_itself) {
    join();
    takeSent();
    callbacks_.runAll();
    hubSays(R"({"type":"ping","from":"Cadenzo","id":"P1"})");
    const auto sent = sentOne();
    EXPECT_EQ(sent.keys(), (QStringList{"from", "ref", "to", "type", "v"}));
    EXPECT_EQ(sent["type"], "reply");
    EXPECT_EQ(sent["from"], "Sonavault");
    EXPECT_EQ(sent["ref"], "P1");
    EXPECT_EQ(sent["to"], "Cadenzo");
    EXPECT_EQ(callbacks_.runAll(), 0);
}

TEST_F(HubMessagingTest, does_not_answer_a_ping_without_an_id) {
    join();
    takeSent();
    hubSays(R"({"type":"ping","from":"Cadenzo"})");
    hubSays(R"({"type":"ping","from":"Cadenzo","id":12})");
    EXPECT_THAT(takeSent(), IsEmpty());
}

TEST_F(HubMessagingTest, does_not_answer_a_ping_whose_id_can_not_be_said_again) {
    join();
    takeSent();
    hubSays(R"({"type":"ping","from":"Cadenzo","id":"a\ud800"})");
    EXPECT_THAT(takeSent(), IsEmpty());
}

TEST_F(HubMessagingTest, ignores_every_other_envelope) {
    join();
    client_->subscribe("t", [](const SwitchboardMessage&) {});
    takeSent();
    callbacks_.runAll();
    for (const std::string line :
         {R"({"type":"notify","from":"A","to":"Sonavault","payload":{"a":1}})",
          R"({"type":"query","from":"A","id":"1","topic":"t"})",
          R"({"type":"subscribe","from":"A","topic":"t"})",
          R"({"type":"state-set","from":"A","payload":{"key":"k","value":1}})",
          R"({"type":"error","from":"HUB","id":"1","topic":"t"})",
          R"({"type":"Notify","from":"A","topic":"t"})", R"({"type":"","from":"","topic":"t"})"})
        hubSays(line);
    EXPECT_EQ(callbacks_.runAll(), 0);
    EXPECT_THAT(takeSent(), IsEmpty());
}

TEST_F(HubMessagingTest, fails_every_request_at_once_when_the_connection_breaks) {
    join();
    query();
    ping();
    stateGet();
    hub().tell(Kind::failed, "Connection reset by peer");
    EXPECT_EQ(world_->waitingDelays(), std::vector<std::int64_t>{500});
    callbacks_.runAll();
    const QJsonObject detail{{"error", "connection_lost"},
                             {"detail", "NWConnection failed: Connection reset by peer"}};
    ASSERT_EQ(results_.size(), 1U);
    EXPECT_EQ(results_[0].error(),
              (SwitchboardError{Code::hubError, "connection_lost",
                                "hub error reply: \"connection_lost\"", detail}));
    ASSERT_EQ(pings_.size(), 1U);
    EXPECT_EQ(pings_[0].error(), (SwitchboardError{Code::hubError, "connection_lost",
                                                   "ping hub error: \"connection_lost\"", detail}));
    EXPECT_THAT(values_, ElementsAre(StateGetResult::error(
                             {Code::hubError, "connection_lost",
                              "hub returned error \"connection_lost\" for state-get", detail})));
}

TEST_F(HubMessagingTest, fails_a_request_that_waits_for_an_absent_hub_with_its_reason) {
    connect();
    stateGet();
    hub().tell(Kind::waiting, "No such file or directory");
    callbacks_.runAll();
    ASSERT_EQ(values_.size(), 1U);
    const auto& error = std::get<SwitchboardError>(values_[0].outcome);
    EXPECT_EQ(error.detail->value("detail"), "NWConnection waiting: No such file or directory");
}

TEST_F(HubMessagingTest, fails_a_query_made_while_reconnecting_with_the_next_break) {
    join();
    hub().tell(Kind::failed, "broken");
    ASSERT_TRUE(client_->currentState().is<State::Reconnecting>());
    takeSent();
    query(60'000);
    world_->advance(milliseconds(500));
    ASSERT_EQ(client_->currentState(), State{State::Connecting{1}});
    EXPECT_THAT(takeSent(), IsEmpty()) << "the query belonged to no connection";
    callbacks_.runAll();
    EXPECT_THAT(results_, IsEmpty());
    hub().tell(Kind::waiting, "Connection refused");
    callbacks_.runAll();
    ASSERT_EQ(results_.size(), 1U);
    EXPECT_EQ(results_[0].error().hubErrorCode, "connection_lost");
    EXPECT_EQ(results_[0].error().detail->value("detail"),
              "NWConnection waiting: Connection refused");
    EXPECT_THAT(world_->waitingDelays(), ElementsAre(1000)) << "only the next attempt waits";
}

TEST_F(HubMessagingTest, keeps_nothing_of_what_is_published_without_a_hub) {
    connect();
    hub().tell(Kind::waiting, "No such file or directory");
    callbacks_.runAll();
    const auto timers = world_->timers.size();
    for (int second = 0; second < 20; second += 2) {
        client_->stateSet("sonavault.current-recording", QJsonObject{{"second", second}});
        client_->notifyTopic("sonavault.recording-state-changed", {{"state", "started"}});
    }
    EXPECT_EQ(world_->timers.size(), timers);
    EXPECT_EQ(callbacks_.runAll(), 0);
    EXPECT_THAT(takeSent(), IsEmpty());
    world_->advance(milliseconds(500));
    acceptConnection();
    EXPECT_EQ(sentOne()["type"], "announce") << "and nothing of the past";
}

TEST_F(HubMessagingTest, fails_every_request_with_a_disconnect) {
    join();
    query();
    client_->disconnect();
    callbacks_.runAll();
    ASSERT_EQ(results_.size(), 1U);
    EXPECT_EQ(results_[0].error().detail->value("detail"), "client disconnected intentionally");
}

TEST_F(HubMessagingTest, answers_nothing_any_more_when_the_client_is_gone) {
    join();
    query();
    callbacks_.runAll();
    client_.reset();
    EXPECT_THAT(world_->waitingDelays(), IsEmpty());
    EXPECT_EQ(callbacks_.runAll(), 0);
    EXPECT_THAT(results_, IsEmpty());
}

TEST_F(HubMessagingTest, runs_callbacks_on_a_queue_of_its_own_when_given_none) {
    client_->connect("Sonavault");
    hub().tell(Kind::ready);
    hubSays(R"({"type":"reply","from":"HUB","payload":{"session_id":"s"}})");
    std::mutex mutex;
    std::condition_variable changed;
    std::optional<std::thread::id> ranOn;
    client_->ping(1000, [&](const PingResult&) {
        std::scoped_lock lock(mutex);
        ranOn = std::this_thread::get_id();
        changed.notify_all();
    });
    replyTo(lastId(), "HUB", "{}");
    std::unique_lock lock(mutex);
    ASSERT_TRUE(
        changed.wait_for(lock, std::chrono::seconds(20), [&] { return ranOn.has_value(); }));
    EXPECT_NE(*ranOn, std::this_thread::get_id());
    EXPECT_EQ(mainQueue_.runAll(), 0);
}

}  // namespace
}  // namespace sonavault::testing
