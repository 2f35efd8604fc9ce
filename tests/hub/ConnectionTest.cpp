#include <QJsonArray>
#include <algorithm>
#include <cstdint>

#include "hub/ClientFixture.h"

namespace sonavault::testing {
namespace {

using std::chrono::milliseconds;
using ::testing::ElementsAre;

class HubConnectionTest : public ClientFixture {
  protected:
    void hubIsAbsent() { hub().tell(Kind::waiting, "No such file or directory"); }
    void nextAttempt() { world_->advance(std::chrono::seconds(31)); }
};

TEST_F(HubConnectionTest, is_disconnected_before_anybody_connects) {
    EXPECT_EQ(client_->currentState(), State{});
    EXPECT_TRUE(world_->connections.empty());
}

TEST_F(HubConnectionTest, opens_a_socket_to_the_given_path) {
    connect();
    EXPECT_EQ(client_->currentState(), State{State::Connecting{1}});
    EXPECT_THAT(world_->paths, ElementsAre("/the/hub.sock"));
    EXPECT_TRUE(hub().started);
}

TEST_F(HubConnectionTest, announces_itself_once_the_socket_is_ready) {
    connect();
    EXPECT_TRUE(takeSent().empty());
    hub().tell(Kind::ready);
    EXPECT_EQ(client_->currentState(), State{State::AwaitingAnnounce{}});
    const auto announce = sentOne();
    EXPECT_EQ(announce.keys(), (QStringList{"from", "id", "type", "v"}));
    EXPECT_EQ(announce["type"], "announce");
    EXPECT_EQ(announce["from"], "Sonavault");
    EXPECT_EQ(announce["v"], 1);
    EXPECT_EQ(announce["id"].toString().size(), 36);
}

TEST_F(HubConnectionTest, is_connected_with_the_hubs_answer) {
    connect();
    hub().tell(Kind::ready);
    clock_.advance(1.5);
    hubSays(R"({"type":"reply","from":"HUB","payload":{"session_id":"abc"}})");
    EXPECT_EQ(client_->currentState(), (State{State::Connected{"abc", after(start_, 1.5)}}));
    EXPECT_THAT(states(), ElementsAre("connecting(attempt: 1)", "awaitingAnnounce",
                                      "connected(sessionId: \"abc\", since: "
                                      "2026-05-08T14:03:08.500Z)"));
}

TEST_F(HubConnectionTest, takes_no_answer_for_the_hubs_that_only_resembles_it) {
    connect();
    hub().tell(Kind::ready);
    for (const std::string line :
         {R"({"type":"reply","from":"hub","payload":{"session_id":"a"}})",
          R"({"type":"reply","from":"HUB","payload":{"session_id":5}})",
          R"({"type":"reply","from":"HUB","payload":{}})", R"({"type":"reply","from":"HUB"})",
          R"({"type":"notify","from":"HUB","payload":{"session_id":"a"}})"})
        hubSays(line);
    EXPECT_EQ(client_->currentState(), State{State::AwaitingAnnounce{}});
}

TEST_F(HubConnectionTest, waits_for_the_answer_as_long_as_the_socket_lives) {
    connect();
    hub().tell(Kind::ready);
    EXPECT_TRUE(world_->waitingDelays().empty());
    world_->advance(std::chrono::hours(24));
    EXPECT_EQ(client_->currentState(), State{State::AwaitingAnnounce{}});
}

TEST_F(HubConnectionTest, tells_nothing_of_a_socket_that_is_under_way) {
    connect();
    states();
    hub().tell(Kind::setup);
    hub().tell(Kind::preparing);
    EXPECT_THAT(states(), ElementsAre());
    EXPECT_EQ(client_->currentState(), State{State::Connecting{1}});
}

TEST_F(HubConnectionTest, backs_off_from_an_absent_hub_in_growing_steps_for_ever) {
    connect();
    std::vector<std::int64_t> delays;
    for (int attempt = 1; attempt <= 10; ++attempt) {
        const auto former = world_->connections.back();
        hubIsAbsent();
        EXPECT_TRUE(former->cancelled);
        const double delay = reconnectDelaySec(attempt);
        EXPECT_EQ(client_->currentState(),
                  (State{State::Reconnecting{after(clock_.now(), delay), attempt}}));
        ASSERT_EQ(world_->waitingDelays().size(), 1U);
        delays.push_back(world_->waitingDelays().front());
        world_->advance(milliseconds(delays.back() - 1));
        EXPECT_TRUE(client_->currentState().is<State::Reconnecting>());
        world_->advance(milliseconds(1));
        EXPECT_EQ(client_->currentState(), State{State::Connecting{attempt}});
        EXPECT_NE(world_->connections.back(), former);
        world_->runQueue();
        EXPECT_EQ(client_->currentState(), State{State::Connecting{attempt}});
    }
    EXPECT_THAT(delays,
                ElementsAre(500, 1000, 2000, 4000, 8000, 16000, 30000, 30000, 30000, 30000));
}

TEST_F(HubConnectionTest, tells_each_step_of_the_back_off_to_its_observers) {
    connect();
    hubIsAbsent();
    nextAttempt();
    hubIsAbsent();
    EXPECT_THAT(states(),
                ElementsAre("connecting(attempt: 1)",
                            "reconnecting(nextAttemptAt: 2026-05-08T14:03:07.500Z, attempt: 1)",
                            "connecting(attempt: 1)",
                            "reconnecting(nextAttemptAt: 2026-05-08T14:03:08.000Z, attempt: 2)"));
}

TEST_F(HubConnectionTest, begins_at_half_a_second_again_after_a_completed_announce) {
    connect();
    for (int i = 0; i < 5; ++i) {
        hubIsAbsent();
        nextAttempt();
    }
    acceptConnection();
    hub().tell(Kind::failed, "broken");
    EXPECT_THAT(world_->waitingDelays(), ElementsAre(500));
    nextAttempt();
    EXPECT_EQ(client_->currentState(), State{State::Connecting{1}});
}

TEST_F(HubConnectionTest, stays_in_back_off_with_a_hub_that_accepts_and_drops) {
    connect();
    std::vector<std::int64_t> delays;
    for (int i = 0; i < 4; ++i) {
        hub().tell(Kind::ready);
        hub().tell(Kind::failed, "dropped");
        delays.push_back(world_->waitingDelays().front());
        nextAttempt();
    }
    EXPECT_THAT(delays, ElementsAre(500, 1000, 2000, 4000));
}

TEST_F(HubConnectionTest, takes_a_session_of_an_unexpected_moment_for_an_ordinary_reply) {
    join("first");
    std::vector<QJsonObject> answers;
    client_->query("Cadenzo", "t", {}, 5000, [&](QueryResult result) {
        answers.push_back(result ? result.value().payload : QJsonObject());
    });
    const auto id = takeSent().back()["id"].toString().toStdString();
    hubSays(R"({"type":"reply","from":"HUB","ref":")" + id +
            R"(","payload":{"session_id":"second"}})");
    EXPECT_EQ(client_->currentState(), (State{State::Connected{"first", start_}}));
    callbacks_.runAll();
    EXPECT_THAT(answers, ElementsAre(QJsonObject{{"session_id", "second"}}));
}

TEST_F(HubConnectionTest, keeps_half_a_line_of_a_broken_connection_from_the_next) {
    connect();
    hub().tell(Kind::ready);
    hub().deliver(R"({"type":"reply","from":"HUB","payload":)");
    hub().tell(Kind::failed, "broken");
    nextAttempt();
    hub().tell(Kind::ready);
    hub().deliver("{\"session_id\":\"x\"}}\n");
    EXPECT_EQ(client_->currentState(), State{State::AwaitingAnnounce{}});
    hubSays(R"({"type":"reply","from":"HUB","payload":{"session_id":"y"}})");
    EXPECT_TRUE(client_->currentState().is<State::Connected>());
}

TEST_F(HubConnectionTest, answers_both_of_two_lines_in_one_read) {
    join();
    takeSent();
    hub().deliver(
        "{\"type\":\"ping\",\"from\":\"A\",\"id\":\"1\"}\n{\"type\":\"ping\",\"from\":\"B\","
        "\"id\":\"2\"}\n");
    const auto sent = takeSent();
    ASSERT_EQ(sent.size(), 2U);
    EXPECT_EQ(sent[0]["ref"], "1");
    EXPECT_EQ(sent[1]["ref"], "2");
}

TEST_F(HubConnectionTest, answers_a_line_that_comes_byte_by_byte_once) {
    join();
    takeSent();
    const std::string line = "{\"type\":\"ping\",\"from\":\"A\",\"id\":\"1\"}\n";
    for (const char byte : line) hub().deliver(std::string(1, byte));
    EXPECT_EQ(sentOne()["ref"], "1");
}

TEST_F(HubConnectionTest, never_loses_the_connection_over_a_bad_line) {
    join();
    takeSent();
    hub().deliver("\n\n{oops\n[]\n3\n{}\n\xff\xfe\n");
    hub().deliver(std::string(200'000, '[') + "\n");
    hub().deliver(std::string("\0\0\n", 3));
    hubSays(R"({"type":"ping","from":"A","id":"1"})");
    EXPECT_EQ(sentOne()["ref"], "1");
    EXPECT_TRUE(client_->currentState().is<State::Connected>());
}

TEST_F(HubConnectionTest, understands_a_line_of_5_mebibytes) {
    join();
    std::size_t heard = 0;
    client_->subscribe("big", [&](const SwitchboardMessage& message) {
        heard = static_cast<std::size_t>(message.payload["text"].toString().size());
    });
    const std::string text(5'242'880, 'x');
    const std::string line =
        R"({"type":"notify","from":"A","topic":"big","payload":{"text":")" + text + "\"}}\n";
    for (std::size_t at = 0; at < line.size(); at += 65'536)
        hub().deliver(std::string_view(line).substr(at, 65'536));
    callbacks_.runAll();
    EXPECT_EQ(heard, text.size());
}

/// Publications of nearly the longest line that a program may send, of many of one thing each.
class HubLongLineTest : public HubConnectionTest,
                        public ::testing::WithParamInterface<const char*> {};

TEST_P(HubLongLineTest, is_understood_whatever_it_is_made_of) {
    join();
    int heard = 0;
    client_->subscribe("t", [&](const SwitchboardMessage& message) {
        heard += message.payload["x"].toArray().size() > 10'000;
    });
    const std::string one = GetParam();
    std::string line = R"({"type":"notify","from":"A","topic":"t","payload":{"x":[0)";
    while (line.size() + one.size() + 5 < kMaxEnvelopeBytes) line += ',' + one;
    hubSays(line + "]}}");
    callbacks_.runAll();
    EXPECT_EQ(heard, 1);
}

INSTANTIATE_TEST_SUITE_P(Of, HubLongLineTest,
                         ::testing::Values("0", R"("")", R"("[{,:\"\\")", "[]", "{}", "[1]",
                                           "[[[1]]]", R"({"":1})", R"({"a":{"b":[{}]}})"));

TEST_F(HubConnectionTest, understands_a_long_text_whatever_it_says) {
    join();
    std::vector<QString> heard;
    client_->subscribe("t", [&](const SwitchboardMessage& message) {
        heard.push_back(message.payload["x"].toString());
    });
    for (const QString marks : {"[", "{", ",", ":", "\"", "\\", "[{,:\"\\"}) {
        const QString text = marks.repeated(3'000'000 / static_cast<int>(marks.size()));
        heard.clear();
        hubSays(QJsonDocument(QJsonObject{{"type", "notify"},
                                          {"from", "A"},
                                          {"topic", "t"},
                                          {"payload", QJsonObject{{"x", text}}}})
                    .toJson(QJsonDocument::Compact)
                    .toStdString());
        for (int turn = 0; turn < 3 && heard.empty(); ++turn) {
            callbacks_.runAll();
            world_->advance(milliseconds(10));
        }
        ASSERT_EQ(heard.size(), 1U) << marks.toStdString();
        EXPECT_EQ(heard[0], text);
    }
}

TEST_F(HubConnectionTest, tells_its_observers_disconnected_twice_when_a_socket_existed) {
    join();
    states();
    client_->disconnect();
    EXPECT_EQ(client_->currentState(), State{});
    EXPECT_TRUE(hub().cancelled);
    EXPECT_THAT(states(), ElementsAre("disconnected"));
    world_->runQueue();
    EXPECT_THAT(states(), ElementsAre("disconnected"));
}

TEST_F(HubConnectionTest, tells_its_observers_disconnected_once_without_a_socket) {
    connect();
    hubIsAbsent();
    world_->runQueue();
    states();
    client_->disconnect();
    world_->runQueue();
    EXPECT_THAT(states(), ElementsAre("disconnected"));
}

TEST_F(HubConnectionTest, stays_disconnected_after_a_disconnect_during_the_back_off) {
    connect();
    hubIsAbsent();
    client_->disconnect();
    EXPECT_TRUE(world_->waitingDelays().empty());
    world_->advance(std::chrono::hours(1));
    EXPECT_EQ(world_->connections.size(), 1U);
    EXPECT_EQ(client_->currentState(), State{});
}

TEST_F(HubConnectionTest, does_not_come_back_when_a_socket_breaks_after_a_disconnect) {
    join();
    client_->disconnect();
    states();
    hub().tell(Kind::failed, "late");
    hub().tell(Kind::waiting, "later");
    EXPECT_THAT(states(), ElementsAre("disconnected", "disconnected"));
    EXPECT_TRUE(world_->waitingDelays().empty());
}

TEST_F(HubConnectionTest, leaves_the_former_socket_when_connected_again) {
    join();
    const auto former = world_->connections.back();
    states();
    client_->connect("Other", &callbacks_);
    EXPECT_TRUE(former->cancelled);
    world_->runQueue();
    EXPECT_THAT(states(), ElementsAre("connecting(attempt: 1)"));
    hub().tell(Kind::ready);
    EXPECT_EQ(sentOne()["from"], "Other");
}

TEST_F(HubConnectionTest, forgets_the_back_off_when_connected_again) {
    connect();
    for (int i = 0; i < 3; ++i) {
        hubIsAbsent();
        nextAttempt();
    }
    hubIsAbsent();
    connect();
    EXPECT_TRUE(world_->waitingDelays().empty());
    EXPECT_EQ(client_->currentState(), State{State::Connecting{1}});
    hubIsAbsent();
    EXPECT_THAT(world_->waitingDelays(), ElementsAre(500));
}

TEST_F(HubConnectionTest, connects_again_after_a_disconnect) {
    join();
    client_->disconnect();
    connect();
    world_->runQueue();
    acceptConnection("again");
    EXPECT_EQ(client_->currentState(), (State{State::Connected{"again", start_}}));
}

TEST_F(HubConnectionTest, tells_a_late_observer_nothing_of_the_past_and_all_in_their_order) {
    connect();
    callbacks_.runAll();
    std::vector<std::string> order;
    client_->addStateObserver([&](const State&) { order.emplace_back("second"); });
    client_->addStateObserver([&](const State&) { order.emplace_back("third"); });
    callbacks_.runAll();
    EXPECT_TRUE(order.empty());
    hub().tell(Kind::ready);
    EXPECT_TRUE(order.empty());
    callbacks_.runAll();
    EXPECT_THAT(order, ElementsAre("second", "third"));
}

TEST_F(HubConnectionTest, tells_its_observers_on_the_main_queue_before_it_was_ever_connected) {
    client_->disconnect();
    EXPECT_EQ(callbacks_.runAll(), 0);
    EXPECT_EQ(mainQueue_.runAll(), 1);
    EXPECT_THAT(states(), ElementsAre("disconnected"));
}

TEST_F(HubConnectionTest, sends_an_envelope_of_exactly_the_longest_line_and_none_longer) {
    join();
    takeSent();
    client_->notifyTopic("t", {{"text", ""}, {"x", 0}});
    const std::size_t bare = hub().sent.back().size();
    hub().sent.clear();
    const auto notify = [&](std::size_t length) {
        client_->notifyTopic("t", {{"text", QString(static_cast<int>(length), 'a')}, {"x", 0}});
    };
    notify(kMaxEnvelopeBytes - bare + 1);
    EXPECT_TRUE(hub().sent.empty());
    notify(kMaxEnvelopeBytes - bare);
    ASSERT_EQ(hub().sent.size(), 1U);
    EXPECT_EQ(hub().sent[0].size(), 1'048'576U);
    EXPECT_TRUE(client_->currentState().is<State::Connected>());
}

TEST_F(HubConnectionTest, sends_nothing_that_json_cannot_hold) {
    join();
    takeSent();
    client_->stateSet("k", std::numeric_limits<double>::quiet_NaN());
    EXPECT_TRUE(takeSent().empty());
}

TEST_F(HubConnectionTest, stops_reading_while_callbacks_lag_behind_and_goes_on_when_they_ran) {
    join();
    int heard = 0;
    client_->subscribe("t", [&](const SwitchboardMessage&) { ++heard; });
    const std::string line = R"({"type":"notify","from":"A","topic":"t","payload":{"text":")" +
                             std::string(100'000, 'x') + R"("}})";
    int said = 0;
    for (; said < 1000 && !hub().paused; ++said) hubSays(line);
    EXPECT_LT(said, 100);
    world_->advance(std::chrono::seconds(10));
    EXPECT_TRUE(hub().paused);
    for (int turn = 0; turn < 3; ++turn) {
        callbacks_.runAll();
        world_->advance(milliseconds(10));
    }
    EXPECT_EQ(heard, said);
    EXPECT_FALSE(hub().paused);
    EXPECT_TRUE(world_->waitingDelays().empty());
}

TEST_F(HubConnectionTest, lets_no_more_callbacks_wait_than_fit_into_one_turn_and_loses_none) {
    constexpr int kLines = 20'000;
    join();
    callbacks_.runAll();
    std::vector<int> heard;
    client_->subscribe("t", [&](const SwitchboardMessage& message) {
        heard.push_back(message.payload["n"].toInt());
    });
    client_->subscribe("t", [](const SwitchboardMessage&) {});
    std::string flood;
    for (int n = 0; n < kLines; ++n)
        flood += R"({"type":"notify","from":"A","topic":"t","payload":{"n":)" + std::to_string(n) +
                 "}}\n";
    hub().deliver(flood);
    EXPECT_TRUE(hub().paused);
    for (int turn = 0; turn < kLines && heard.size() < kLines; ++turn) {
        const int ran = callbacks_.runAll();
        ASSERT_GT(ran, 0);
        ASSERT_LE(ran, static_cast<int>(kMostUndeliveredCallbacks));
        world_->advance(milliseconds(10));
    }
    EXPECT_EQ(heard.size(), std::size_t{kLines});
    EXPECT_TRUE(std::is_sorted(heard.begin(), heard.end()));
    EXPECT_EQ(callbacks_.runAll(), 0);
    EXPECT_FALSE(hub().paused);
    EXPECT_TRUE(world_->waitingDelays().empty());
}

TEST_F(HubConnectionTest, answers_a_ping_though_callbacks_lag_behind) {
    join();
    client_->subscribe("t", [](const SwitchboardMessage&) {});
    takeSent();
    std::string words;
    for (std::size_t n = 0; n < 3 * kMostUndeliveredCallbacks; ++n)
        words += "{\"type\":\"notify\",\"from\":\"A\",\"topic\":\"t\"}\n";
    hub().deliver(words + "{\"type\":\"ping\",\"from\":\"A\",\"id\":\"behind\"}\n");
    EXPECT_EQ(sentOne()["ref"], "behind");
    EXPECT_FALSE(hub().paused);
}

TEST_F(HubConnectionTest, completes_the_handshake_though_callbacks_lag_behind) {
    join();
    client_->subscribe("t", [](const SwitchboardMessage&) {});
    for (std::size_t n = 0; n < 3 * kMostUndeliveredCallbacks; ++n)
        hubSays(R"({"type":"notify","from":"A","topic":"t"})");
    hub().tell(Kind::failed, "broken");
    world_->advance(milliseconds(500));
    acceptConnection("s2");
    EXPECT_EQ(client_->currentState(), (State{State::Connected{"s2", start_}}));
}

TEST_F(HubConnectionTest, ends_the_wait_of_a_request_that_is_answered_though_callbacks_lag_behind) {
    join();
    std::vector<std::string> heard;
    client_->subscribe("t", [&](const SwitchboardMessage&) { heard.emplace_back("word"); });
    client_->query("A", "t", {}, 500, [&](const QueryResult& result) {
        heard.emplace_back(result ? "answer" : result.error().message);
    });
    const auto id = takeSent().back()["id"].toString().toStdString();
    constexpr std::size_t kWords = 2 * kMostUndeliveredCallbacks;
    for (std::size_t n = 0; n < kWords; ++n) hubSays(R"({"type":"notify","from":"A","topic":"t"})");
    hubSays(R"({"type":"reply","from":"A","ref":")" + id + R"("})");
    world_->advance(std::chrono::seconds(2));
    for (int turn = 0; turn < 10 && heard.size() <= kWords; ++turn) {
        callbacks_.runAll();
        world_->advance(milliseconds(10));
    }
    ASSERT_EQ(heard.size(), kWords + 1);
    EXPECT_EQ(heard.back(), "answer") << "and behind all that came before it";
}

TEST_F(HubConnectionTest, goes_on_with_what_it_had_read_before_the_hub_says_more) {
    join();
    client_->subscribe("t", [](const SwitchboardMessage&) {});
    callbacks_.runAll();
    takeSent();
    const std::string line = R"({"type":"notify","from":"A","topic":"t","payload":{"text":")" +
                             std::string(1'000'000, 'x') + "\"}}\n";
    std::string words;
    for (int n = 0; n < 10; ++n) words += line;
    hub().deliver(words + "{\"type\":\"ping\",\"from\":\"A\",\"id\":\"behind\"}\n");
    EXPECT_TRUE(takeSent().empty()) << "there is no room for more";
    EXPECT_TRUE(hub().paused);
    for (int turn = 0; turn < 5; ++turn) {
        callbacks_.runAll();
        world_->advance(milliseconds(10));
    }
    EXPECT_EQ(sentOne()["ref"], "behind");
    EXPECT_FALSE(hub().paused);
}

TEST_F(HubConnectionTest, counts_what_a_message_takes_once_it_is_decoded) {
    join();
    client_->subscribe("t", [](const SwitchboardMessage&) {});
    std::string lists = "[1]";
    for (int n = 0; n < 15'000; ++n) lists += ",[1]";
    std::size_t said = 0;
    while (said < kMostUndeliveredBytes && !hub().paused) {
        hubSays(R"({"type":"notify","from":"A","topic":"t","payload":{"lists":[)" + lists + "]}}");
        said += lists.size();
    }
    EXPECT_LT(said, kMostUndeliveredBytes / 20);
}

TEST_F(HubConnectionTest, does_not_decode_a_line_that_would_fill_the_memory) {
    join();
    takeSent();
    std::string lists = R"({"type":"ping","from":"A","id":"huge","payload":{"x":[1)";
    for (int n = 0; n < 400'000; ++n) lists += ",[1]";
    hubSays(lists + "]}}");
    hubSays(R"({"type":"ping","from":"A","id":"next"})");
    EXPECT_EQ(sentOne()["ref"], "next");
    EXPECT_TRUE(client_->currentState().is<State::Connected>());
}

TEST_F(HubConnectionTest, still_tells_what_it_had_understood_of_a_connection_that_was_given_up) {
    join();
    int heard = 0;
    client_->subscribe("t", [&](const SwitchboardMessage&) { ++heard; });
    states();
    constexpr int kWords = 2 * kMostUndeliveredCallbacks;
    for (int n = 0; n < kWords; ++n) hubSays(R"({"type":"notify","from":"A","topic":"t"})");
    client_->disconnect();
    for (int turn = 0; turn < 10; ++turn) {
        EXPECT_TRUE(heard_.empty() || heard == kWords) << "the end comes behind the last words";
        callbacks_.runAll();
        world_->advance(milliseconds(10));
    }
    EXPECT_EQ(heard, kWords);
    EXPECT_THAT(states(), ElementsAre("disconnected"));
    EXPECT_TRUE(world_->waitingDelays().empty());
}

TEST_F(HubConnectionTest, forgets_what_it_had_not_understood_of_a_connection_that_was_given_up) {
    join();
    int heard = 0;
    client_->subscribe("t", [&](const SwitchboardMessage&) { ++heard; });
    const std::string line = R"({"type":"notify","from":"A","topic":"t","payload":{"text":")" +
                             std::string(1'000'000, 'x') + "\"}}\n";
    std::string words;
    for (int n = 0; n < 20; ++n) words += line;
    hub().deliver(words);
    ASSERT_TRUE(hub().paused);
    client_->disconnect();
    for (int turn = 0; turn < 10; ++turn) {
        callbacks_.runAll();
        world_->advance(milliseconds(10));
    }
    EXPECT_GT(heard, 0);
    EXPECT_LT(heard, 10);
    EXPECT_TRUE(world_->waitingDelays().empty());
}

TEST_F(HubConnectionTest, reads_a_new_connection_though_callbacks_lag_behind) {
    join();
    client_->subscribe("t", [](const SwitchboardMessage&) {});
    const std::string line = R"({"type":"notify","from":"A","topic":"t","payload":{"text":")" +
                             std::string(100'000, 'x') + R"("}})";
    while (!hub().paused) hubSays(line);
    hub().tell(Kind::failed, "broken");
    world_->advance(milliseconds(500));
    EXPECT_FALSE(hub().paused);
    hub().tell(Kind::ready);
    hubSays(R"({"type":"reply","from":"HUB","payload":{"session_id":"new"}})");
    EXPECT_TRUE(client_->currentState().is<State::Connected>());
    EXPECT_TRUE(hub().paused);
}

}  // namespace
}  // namespace sonavault::testing
