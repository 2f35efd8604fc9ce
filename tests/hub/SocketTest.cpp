#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QLocalServer>
#include <QLocalSocket>
#include <algorithm>
#include <atomic>

#include "hub/HubThread.h"
#include "hub/SocketConnection.h"
#include "hub/SwitchboardClientImpl.h"
#include "hub/SystemHubNetwork.h"
#include "support/Eventually.h"
#include "support/ManualQueue.h"

namespace sonavault::testing {
namespace {

using State = SwitchboardState;
using ::testing::ElementsAre;

/// A client on the machine's own sockets and timers.
class HubSocketTest : public ::testing::Test {
  protected:
    std::unique_ptr<SwitchboardClientImpl> makeClient(const std::string& path) {
        return std::make_unique<SwitchboardClientImpl>(
            SwitchboardClientImpl::Services{.clock = clock_,
                                            .mainQueue = mainQueue_,
                                            .network = std::make_unique<SystemHubNetwork>(),
                                            .socketPath = path});
    }
    void join(SwitchboardClientImpl& client) {
        client.connect("Sonavault", &callbacks_);
        ASSERT_TRUE(becomes<State::Connected>(client));
    }
    template <class Case>
    static bool becomes(const SwitchboardClientImpl& client) {
        return eventually([&] { return client.currentState().is<Case>(); });
    }
    /// What a request that was waiting is told of the connection's end.
    std::string reasonOfBreak(SwitchboardClientImpl& client) {
        std::string reason;
        client.connect("Sonavault", &callbacks_);
        client.stateGet("k", [&](const StateGetResult& result) {
            if (const auto* error = std::get_if<SwitchboardError>(&result.outcome))
                reason = error->detail->value("detail").toString().toStdString();
        });
        eventually([&] {
            callbacks_.runAll();
            return !reason.empty();
        });
        return reason;
    }

    /// Has another client ask, so that the hub has done what it was asked before.
    void awaitAnswerFrom(const HubThread& hub) {
        ManualQueue answers;
        bool answered = false;
        const auto witness = makeClient(hub.path());
        witness->connect("Witness", &answers);
        ASSERT_TRUE(becomes<State::Connected>(*witness));
        witness->stateGet("k", [&](const StateGetResult&) { answered = true; });
        EXPECT_TRUE(eventually([&] {
            answers.runAll();
            return answered;
        }));
    }

    SystemClock clock_;
    ManualQueue mainQueue_;
    ManualQueue callbacks_;
    TempFolder folder_;
};

TEST_F(HubSocketTest, meets_a_path_where_nothing_is) {
    const auto client = makeClient(folder_ / "nothing.sock");
    EXPECT_EQ(reasonOfBreak(*client), "NWConnection waiting: No such file or directory");
    EXPECT_TRUE(becomes<State::Reconnecting>(*client));
}

TEST_F(HubSocketTest, meets_a_socket_that_nobody_listens_on) {
    {
        const std::string path = folder_ / "stale.sock";
        QLocalServer server;
        ASSERT_TRUE(server.listen(QString::fromStdString(path)));
        std::filesystem::create_hard_link(path, folder_ / "kept.sock");
    }
    const auto client = makeClient(folder_ / "kept.sock");
    EXPECT_EQ(reasonOfBreak(*client), "NWConnection waiting: Connection refused");
}

TEST_F(HubSocketTest, meets_a_path_that_no_socket_can_have) {
    const auto client = makeClient("/tmp/" + std::string(200, 'x'));
    EXPECT_EQ(reasonOfBreak(*client), "NWConnection waiting: File name too long");
}

TEST_F(HubSocketTest, never_hangs_on_a_hub_that_does_not_accept) {
    QLocalServer server;
    server.setListenBacklogSize(1);
    const QString path = QString::fromStdString(folder_ / "full.sock");
    ASSERT_TRUE(server.listen(path));
    // Nothing runs the server's event loop, so whoever comes stays in its queue.
    const auto first = makeClient(path.toStdString());
    const auto second = makeClient(path.toStdString());
    first->connect("A", &callbacks_);
    second->connect("B", &callbacks_);
    ASSERT_TRUE(becomes<State::AwaitingAnnounce>(*first));
    ASSERT_TRUE(becomes<State::AwaitingAnnounce>(*second));
    const auto third = makeClient(path.toStdString());
    EXPECT_EQ(reasonOfBreak(*third), "NWConnection waiting: Resource temporarily unavailable");
    EXPECT_TRUE(becomes<State::Reconnecting>(*third));
}

TEST_F(HubSocketTest, talks_with_a_hub) {
    HubThread hub;
    ASSERT_TRUE(hub.listens());
    const auto client = makeClient(hub.path());
    std::vector<std::string> heard;
    client->subscribe("t", [&](const SwitchboardMessage& message) {
        heard.push_back(message.from + " " + message.payload["n"].toString().toStdString());
    });
    join(*client);
    ASSERT_TRUE(eventually([&] { return hub.heard(R"("type":"subscribe")"); }));
    hub.obey(R"(publish Cadenzo t {"n":"1"})");
    client->notifyTopic("t", {{"n", "2"}});
    client->stateSet("k", QJsonObject{{"a", 5}});
    std::optional<StateGetResult> value;
    client->stateGet("k", [&](StateGetResult result) { value = std::move(result); });
    bool answered = false;
    client->ping(60'000, [&](const PingResult& result) { answered = static_cast<bool>(result); });
    std::string refusal;
    client->query("Nobody", "t", {}, 60'000, [&](const QueryResult& result) {
        if (!result) refusal = result.error().description();
    });
    ASSERT_TRUE(eventually([&] {
        callbacks_.runAll();
        return value && answered && !refusal.empty() && heard.size() == 2;
    }));
    EXPECT_THAT(heard, ElementsAre("Cadenzo 1", "Sonavault 2"));
    EXPECT_EQ(*value, StateGetResult::found(QJsonObject{{"a", 5}}));
    EXPECT_EQ(refusal,
              "SwitchboardError(hubError, hub=no-such-app: hub error reply: \"no-such-app\")");
    hub.obey("ping");
    EXPECT_TRUE(eventually([&] { return hub.heard(R"("to":"HUB","type":"reply")"); }));
}

TEST_F(HubSocketTest, fails_a_ping_that_a_silent_hub_leaves_unanswered) {
    HubThread hub;
    const auto client = makeClient(hub.path());
    join(*client);
    hub.obey("silent");
    std::string fault;
    client->ping(30, [&](const PingResult& result) { fault = result.error().message; });
    ASSERT_TRUE(eventually([&] {
        callbacks_.runAll();
        return !fault.empty();
    }));
    EXPECT_EQ(fault, "ping timed out after 30ms");
}

TEST_F(HubSocketTest, waits_for_a_time_beyond_all_measure) {
    HubThread hub;
    const auto client = makeClient(hub.path());
    join(*client);
    hub.obey("silent");
    std::vector<std::string> faults;
    client->ping(std::numeric_limits<std::int64_t>::max(),
                 [&](const PingResult& result) { faults.push_back(result.error().message); });
    client->query("A", "t", {}, std::numeric_limits<std::int64_t>::max(),
                  [&](const QueryResult& result) { faults.push_back(result.error().message); });
    client->ping(-5, [&](const PingResult& result) { faults.push_back(result.error().message); });
    ASSERT_TRUE(eventually([&] {
        callbacks_.runAll();
        return !faults.empty();
    }));
    EXPECT_THAT(faults, ElementsAre("ping timed out after -5ms"));
}

TEST_F(HubSocketTest, stays_with_a_hub_that_never_answers_the_announce) {
    HubThread hub;
    hub.obey("silent");
    const auto client = makeClient(hub.path());
    client->connect("Sonavault", &callbacks_);
    ASSERT_TRUE(eventually([&] { return hub.heard(R"("type":"announce")"); }));
    EXPECT_EQ(client->currentState(), State{State::AwaitingAnnounce{}});
}

TEST_F(HubSocketTest, follows_a_hub_that_stops_and_starts_again) {
    HubThread hub;
    const auto client = makeClient(hub.path());
    client->subscribe("t", [](const SwitchboardMessage&) {});
    join(*client);
    ASSERT_TRUE(eventually([&] { return hub.heard(R"("type":"subscribe")"); }));
    hub.obey("refuse");
    hub.obey("drop");
    ASSERT_TRUE(becomes<State::Reconnecting>(*client));
    hub.obey("accept");
    ASSERT_TRUE(becomes<State::Connected>(*client));
    EXPECT_TRUE(eventually([&] { return hub.containing(R"("subscribe")").size() >= 2; }));
}

TEST_F(HubSocketTest, hears_the_last_words_of_a_hub_that_closes) {
    HubThread hub;
    const auto client = makeClient(hub.path());
    int heard = 0;
    client->subscribe("t", [&](const SwitchboardMessage&) { ++heard; });
    join(*client);
    ASSERT_TRUE(eventually([&] { return hub.heard(R"("type":"subscribe")"); }));
    constexpr int kWords = kMostUndeliveredCallbacks - 1;
    for (int i = 0; i < kWords; ++i) hub.obeyLater("publish HUB t");
    hub.obeyLater("drop");
    ASSERT_TRUE(becomes<State::Reconnecting>(*client));
    callbacks_.runAll();
    EXPECT_EQ(heard, kWords);
}

/// A hub that accepts one program, says something at once and goes away.
class HubOfLastWords {
  public:
    explicit HubOfLastWords(const std::string& path) {
        server_.listen(QString::fromStdString(path));
    }
    bool isJoined() { return server_.waitForNewConnection(20'000); }
    bool says(const QByteArray& bytes) {
        hub_.reset(server_.nextPendingConnection());
        hub_->write(bytes);
        while (hub_->bytesToWrite() > 0)
            if (!hub_->waitForBytesWritten(20'000)) return false;
        return true;
    }
    void goes() { hub_.reset(); }

  private:
    QLocalServer server_;
    std::unique_ptr<QLocalSocket> hub_;
};

QByteArray publications(int count) {
    QByteArray lines;
    for (int n = 0; n < count; ++n)
        lines += R"({"type":"notify","from":"A","topic":"t","payload":{"n":)" +
                 QByteArray::number(n) + "}}\n";
    return lines;
}

class HubLastWordsTest : public HubSocketTest, public ::testing::WithParamInterface<bool> {};

TEST_P(HubLastWordsTest, are_heard_before_the_end_though_callbacks_lag_behind) {
    constexpr std::size_t kWords = 5 * kMostUndeliveredCallbacks;
    const bool weSpeakOn = GetParam();
    HubOfLastWords hub(folder_ / "last.sock");
    const auto client = makeClient(folder_ / "last.sock");
    std::vector<int> heard;
    client->subscribe("t", [&](const SwitchboardMessage& message) {
        heard.push_back(message.payload["n"].toInt());
    });
    client->connect("Sonavault", &callbacks_);
    ASSERT_TRUE(hub.isJoined());
    ASSERT_TRUE(becomes<State::AwaitingAnnounce>(*client));
    ASSERT_TRUE(hub.says(publications(kWords)));
    hub.goes();
    // Found out by writing, the end must not cost the words before it either.
    if (weSpeakOn) client->notifyTopic("x", {});
    EXPECT_TRUE(becomes<State::Reconnecting>(*client)) << "the end is met though callbacks wait";
    EXPECT_TRUE(eventually([&] {
        callbacks_.runAll();
        return heard.size() >= kWords;
    }));
    EXPECT_EQ(heard.size(), kWords);
    EXPECT_TRUE(std::is_sorted(heard.begin(), heard.end()));
}

INSTANTIATE_TEST_SUITE_P(Whether, HubLastWordsTest, ::testing::Bool(), [](const auto& weSpeakOn) {
    return weSpeakOn.param ? "the_client_speaks_on" : "the_client_is_silent";
});

TEST_F(HubSocketTest, tells_of_the_end_of_the_hub_behind_its_last_words) {
    HubOfLastWords hub(folder_ / "last.sock");
    const auto client = makeClient(folder_ / "last.sock");
    std::vector<std::string> heard;
    client->subscribe("t", [&](const SwitchboardMessage&) { heard.emplace_back("word"); });
    client->connect("Sonavault", &callbacks_);
    client->stateGet("k", [&](const StateGetResult&) { heard.emplace_back("end"); });
    ASSERT_TRUE(hub.isJoined());
    ASSERT_TRUE(becomes<State::AwaitingAnnounce>(*client));
    ASSERT_TRUE(hub.says(publications(2 * kMostUndeliveredCallbacks)));
    hub.goes();
    ASSERT_TRUE(becomes<State::Reconnecting>(*client));
    EXPECT_TRUE(heard.empty());
    ASSERT_TRUE(eventually([&] {
        callbacks_.runAll();
        return !heard.empty() && heard.back() == "end";
    }));
    EXPECT_EQ(heard.size(), 2 * kMostUndeliveredCallbacks + 1);
}

TEST_F(HubSocketTest, gives_its_requests_the_reason_when_a_hub_closes) {
    HubThread hub;
    const auto client = makeClient(hub.path());
    join(*client);
    hub.obey("silent");
    std::string reason;
    client->stateGet("k", [&](const StateGetResult& result) {
        reason = std::get<SwitchboardError>(result.outcome)
                     .detail->value("detail")
                     .toString()
                     .toStdString();
    });
    ASSERT_TRUE(eventually([&] { return hub.heard(R"("type":"state-get")"); }));
    hub.obey("drop");
    ASSERT_TRUE(eventually([&] {
        callbacks_.runAll();
        return !reason.empty();
    }));
    EXPECT_EQ(reason, "NWConnection failed: the hub closed the connection");
}

TEST_F(HubSocketTest, goes_on_after_rubbish_of_all_kinds) {
    HubThread hub;
    const auto client = makeClient(hub.path());
    join(*client);
    hub.obey("raw \\n\\n{\\n[]\\n\\xff\\xfe\\x00\\n{\"type\":5}\\n");
    hub.obey("raw " + std::string(300'000, '[') + "\\n");
    hub.obey("ping");
    EXPECT_TRUE(eventually([&] { return hub.heard(R"("to":"HUB","type":"reply")"); }));
    EXPECT_TRUE(client->currentState().is<State::Connected>());
}

/// The numbers of the publications that reached the hub; fails for a line that is torn.
std::vector<int> numbersAt(const HubThread& hub) {
    std::vector<int> numbers;
    for (const auto& line : hub.received()) {
        const auto json = line.substr(line.find('{'));
        const auto document = QJsonDocument::fromJson(QByteArray::fromStdString(json));
        if (!document.isObject()) ADD_FAILURE() << "torn: " << json.substr(0, 100);
        const auto payload = document["payload"].toObject();
        if (payload.contains("n")) numbers.push_back(payload["n"].toInt());
    }
    return numbers;
}

TEST_F(HubSocketTest, drops_whole_envelopes_when_the_hub_stops_reading_and_keeps_no_more) {
    constexpr int kEnvelopes = 1000;
    const QString padding(100'000, 'x');
    HubThread hub;
    const auto client = makeClient(hub.path());
    join(*client);
    hub.obey("stop-reading");
    for (int n = 0; n < kEnvelopes; ++n) client->notifyTopic("t", {{"n", n}, {"padding", padding}});
    EXPECT_TRUE(client->currentState().is<State::Connected>());
    hub.obey("read");
    int last = kEnvelopes;
    ASSERT_TRUE(eventually([&] {
        client->notifyTopic("t", {{"n", ++last}});
        const auto numbers = numbersAt(hub);
        return !numbers.empty() && numbers.back() > kEnvelopes;
    }));
    const auto numbers = numbersAt(hub);
    EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
    const auto kept =
        std::count_if(numbers.begin(), numbers.end(), [&](int n) { return n < kEnvelopes; });
    // What the client keeps (4 MiB) and what the system and the hub had room for.
    EXPECT_GE(kept, 40);
    EXPECT_LT(kept, 80);
}

TEST_F(HubSocketTest, reads_no_faster_than_its_callbacks_run_and_loses_nothing) {
    constexpr int kMessages = 300;
    QLocalServer server;
    const QString path = QString::fromStdString(folder_ / "flood.sock");
    ASSERT_TRUE(server.listen(path));
    const auto client = makeClient(path.toStdString());
    std::vector<int> heard;
    client->subscribe("t", [&](const SwitchboardMessage& message) {
        heard.push_back(message.payload["n"].toInt());
    });
    client->connect("Sonavault", &callbacks_);
    ASSERT_TRUE(server.waitForNewConnection(20'000));
    const std::unique_ptr<QLocalSocket> hub(server.nextPendingConnection());
    const QByteArray padding(100'000, 'x');
    for (int n = 0; n < kMessages; ++n)
        hub->write(R"({"type":"notify","from":"A","topic":"t","payload":{"n":)" +
                   QByteArray::number(n) + R"(,"padding":")" + padding + "\"}}\n");
    const auto all = hub->bytesToWrite();
    while (hub->waitForBytesWritten(300)) continue;
    const auto read = all - hub->bytesToWrite();
    EXPECT_GT(hub->bytesToWrite(), 0) << "the client read everything";
    EXPECT_LT(read, 12'000'000);
    ASSERT_TRUE(eventually([&] {
        callbacks_.runAll();
        hub->waitForBytesWritten(1);
        return heard.size() == kMessages;
    }));
    EXPECT_TRUE(std::is_sorted(heard.begin(), heard.end()));
}

TEST_F(HubSocketTest, answers_a_hub_while_its_callers_are_held_up) {
    HubThread hub;
    const auto client = makeClient(hub.path());
    int heard = 0;
    client->subscribe("t", [&](const SwitchboardMessage&) { ++heard; });
    join(*client);
    ASSERT_TRUE(eventually([&] { return hub.heard(R"("type":"subscribe")"); }));
    constexpr int kWords = 5 * kMostUndeliveredCallbacks;
    for (int i = 0; i < kWords; ++i) hub.obeyLater("publish HUB t");
    hub.obeyLater("ping");
    EXPECT_TRUE(eventually([&] { return hub.heard(R"("to":"HUB","type":"reply")"); }));
    EXPECT_EQ(heard, 0);
    EXPECT_TRUE(eventually([&] {
        callbacks_.runAll();
        return heard == kWords;
    }));
}

TEST_F(HubSocketTest, reads_no_more_than_one_chunk_at_a_time) {
    QLocalServer server;
    const QString path = QString::fromStdString(folder_ / "chunks.sock");
    ASSERT_TRUE(server.listen(path));
    std::atomic<std::size_t> total{0};
    std::atomic<std::size_t> largest{0};
    SerialQueue queue{"test.network"};
    const auto connection = std::make_shared<SocketConnection>(
        queue, path.toStdString(),
        HubConnection::Handlers{.event = [](const ConnectionEvent&) {},
                                .received =
                                    [&](std::string_view bytes) {
                                        total += bytes.size();
                                        largest = std::max(largest.load(), bytes.size());
                                    }});
    queue.runAndWait([&] { connection->pauseReceiving(true); });
    connection->start();
    ASSERT_TRUE(server.waitForNewConnection(20'000));
    const std::unique_ptr<QLocalSocket> hub(server.nextPendingConnection());
    constexpr qint64 kBytes = 1'000'000;
    hub->write(QByteArray(kBytes, 'x'));
    while (hub->waitForBytesWritten(200)) continue;
    ASSERT_LT(hub->bytesToWrite(), kBytes - 2 * static_cast<qint64>(kReceiveChunkBytes))
        << "more than one chunk is there to be read";
    EXPECT_EQ(total, 0U);
    queue.runAndWait([&] { connection->pauseReceiving(false); });
    EXPECT_TRUE(eventually([&] {
        hub->waitForBytesWritten(1);
        return total == kBytes;
    }));
    EXPECT_EQ(largest, 65'536U);
    queue.runAndWait([&] { connection->cancel(); });
}

TEST_F(HubSocketTest, takes_a_flood_of_lines_and_answers_the_last) {
    constexpr int kLines = 10'000;
    QLocalServer server;
    const QString path = QString::fromStdString(folder_ / "lines.sock");
    ASSERT_TRUE(server.listen(path));
    const auto client = makeClient(path.toStdString());
    int heard = 0;
    client->subscribe("t", [&](const SwitchboardMessage&) { ++heard; });
    client->connect("Sonavault", &callbacks_);
    ASSERT_TRUE(server.waitForNewConnection(20'000));
    const std::unique_ptr<QLocalSocket> hub(server.nextPendingConnection());
    QByteArray lines;
    for (int n = 0; n < kLines; ++n)
        lines += n % 2 == 0 ? R"({"type":"notify","from":"A","topic":"t"})"
                              "\n"
                            : R"({"type":"notify","from":"A","topic":"other"})"
                              "\n";
    hub->write(lines + R"({"type":"ping","from":"A","id":"last"})"
                       "\n");
    QByteArray said;
    EXPECT_TRUE(eventually([&] {
        callbacks_.runAll();
        hub->waitForReadyRead(1);
        said += hub->readAll();
        return said.contains(R"("ref":"last")");
    }));
    EXPECT_TRUE(eventually([&] {
        callbacks_.runAll();
        return heard >= kLines / 2;
    }));
    EXPECT_EQ(heard, kLines / 2);
}

TEST_F(HubSocketTest, can_go_away_in_the_midst_of_everything_and_then_tells_nobody_more) {
    HubThread hub;
    int told = 0;
    const auto hear = [&told](const auto&) { ++told; };
    for (int round = 0; round < 100; ++round) {
        auto client = makeClient(hub.path());
        client->subscribe("t", hear);
        client->connect("Sonavault", &callbacks_);
        client->query("A", "t", {}, 5000, hear);
        client->ping(1, hear);
        client->stateGet("k", hear);
        if (round % 3 == 0) {
            ASSERT_TRUE(becomes<State::Connected>(*client));
        }
        if (round % 4 == 0) client->disconnect();
        if (round % 5 == 0) hub.obey("drop");
        client.reset();
        callbacks_.runAll();  // what it handed over before
        const int toldByItself = told;
        awaitAnswerFrom(hub);
        EXPECT_EQ(callbacks_.runAll(), 0) << "in round " << round;
        EXPECT_EQ(told, toldByItself) << "in round " << round;
    }
    EXPECT_GT(told, 0);
}

}  // namespace
}  // namespace sonavault::testing
