#include "hub/DemoHub.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <filesystem>
#include <fstream>

#include "support/Eventually.h"
#include "support/TempFolder.h"

namespace sonavault::demohub {
namespace {

using sonavault::testing::eventuallyServingEvents;
using ::testing::HasSubstr;
using Kind = HubCommand::Kind;

constexpr char kAnnounce[] = "{\"type\":\"announce\",\"from\":\"A\",\"id\":\"1\"}\n";

/// A hub and one client of it, on one thread.
class DemoHubTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(hub_.listen());
        ASSERT_TRUE(connectTo(client_));
    }

    std::string path() const { return folder_ / "hub.sock"; }

    bool connectTo(QLocalSocket& socket) const {
        socket.connectToServer(QString::fromStdString(path()));
        return eventuallyServingEvents(
            [&] { return socket.state() == QLocalSocket::ConnectedState; });
    }

    /// What the client is told, as far as `part` and the end of its line.
    std::string hears(const std::string& part) {
        eventuallyServingEvents([&] {
            heard_ += client_.readAll().toStdString();
            const auto at = heard_.find(part);
            return at != std::string::npos && heard_.find('\n', at) != std::string::npos;
        });
        return heard_;
    }

    bool said(const std::string& line) const {
        return std::find(said_.begin(), said_.end(), line) != said_.end();
    }

    testing::TempFolder folder_;
    std::vector<std::string> said_;
    DemoHub hub_{path(), [this](const std::string& line) { said_.push_back(line); }};
    QLocalSocket client_;
    std::string heard_;
};

TEST_F(DemoHubTest, answers_and_tells_what_passes) {
    client_.write(kAnnounce);
    EXPECT_THAT(hears("session_id"), HasSubstr(R"("session_id":"session-1")"));
    EXPECT_TRUE(said("#1 connected"));
    EXPECT_TRUE(said(R"(#1 > {"type":"announce","from":"A","id":"1"})"));
    EXPECT_TRUE(said(R"(#1 < {"from":"HUB","payload":{"session_id":"session-1"},"ref":"1","to":)"
                     R"("A","type":"reply","v":1})"));
}

TEST_F(DemoHubTest, tells_a_line_it_does_not_understand_and_goes_on) {
    client_.write("[]\n");
    client_.write(kAnnounce);
    hears("session_id");
    EXPECT_TRUE(said("#1 SwitchboardError(malformedReply: envelope not a JSON object)"));
}

TEST_F(DemoHubTest, publishes_pings_and_sends_bytes_on_command) {
    client_.write(kAnnounce);
    client_.write("{\"type\":\"subscribe\",\"from\":\"A\",\"topic\":\"t\"}\n");
    ASSERT_TRUE(eventuallyServingEvents([&] { return said_.size() >= 5; }));
    hub_.obey({.kind = Kind::publish, .from = "B", .topic = "t", .payload = {{"x", 1}}});
    EXPECT_THAT(hears("notify"), HasSubstr(R"({"from":"B","payload":{"x":1},"topic":"t",)"));
    hub_.obey({.kind = Kind::ping});
    EXPECT_THAT(hears("ping"), HasSubstr(R"("type":"ping")"));
    hub_.obey({.kind = Kind::raw, .text = "{rubbish\n"});
    EXPECT_THAT(hears("rubbish"), HasSubstr("\n{rubbish\n"));
    hub_.obey({.kind = Kind::show});
    EXPECT_TRUE(said("program A"));
    EXPECT_TRUE(said("state {}"));
}

TEST_F(DemoHubTest, answers_a_query_itself_when_its_recipient_does_not) {
    client_.write(kAnnounce);
    client_.write(
        "{\"type\":\"query\",\"from\":\"A\",\"to\":\"A\",\"id\":\"q\",\"timeout_ms\":20}\n");
    EXPECT_THAT(hears("timeout\""), HasSubstr(R"("payload":{"error":"timeout"},"ref":"q")"));
    EXPECT_EQ(hub_.router().openQueryCount(), 0U);
}

TEST_F(DemoHubTest, drops_its_clients_and_takes_them_again) {
    hub_.obey({.kind = Kind::drop});
    ASSERT_TRUE(
        eventuallyServingEvents([&] { return client_.state() == QLocalSocket::UnconnectedState; }));
    ASSERT_TRUE(eventuallyServingEvents([&] { return said("#1 disconnected"); }));
    EXPECT_TRUE(connectTo(client_));
    EXPECT_TRUE(eventuallyServingEvents([&] { return said("#2 connected"); }));
}

TEST_F(DemoHubTest, refuses_newcomers_until_it_accepts_again) {
    hub_.obey({.kind = Kind::refuse});
    QLocalSocket newcomer;
    newcomer.connectToServer(QString::fromStdString(path()));
    EXPECT_TRUE(eventuallyServingEvents(
        [&] { return newcomer.state() == QLocalSocket::UnconnectedState; }));
    hub_.obey({.kind = Kind::accept});
    EXPECT_TRUE(connectTo(newcomer));
}

TEST_F(DemoHubTest, delays_what_goes_out_in_its_order) {
    hub_.obey({.kind = Kind::delay, .milliseconds = 100});
    QElapsedTimer time;
    time.start();
    hub_.obey({.kind = Kind::raw, .text = "one\n"});
    ASSERT_TRUE(eventuallyServingEvents([&] { return said("#1 connected"); }));
    hub_.obey({.kind = Kind::raw, .text = "two\n"});
    hub_.obey({.kind = Kind::raw, .text = "three\n"});
    EXPECT_THAT(hears("three"), HasSubstr("two\nthree\n"));
    EXPECT_GE(time.elapsed(), 95);
}

TEST_F(DemoHubTest, leaves_what_comes_in_unread_until_it_reads_again) {
    ASSERT_TRUE(eventuallyServingEvents([&] { return said("#1 connected"); }));
    hub_.obey({.kind = Kind::stopReading});
    client_.write(kAnnounce);
    client_.write(QByteArray(2'000'000, ' ') + "\n");
    client_.write("{\"type\":\"ping\",\"from\":\"A\",\"id\":\"2\"}\n");
    QElapsedTimer time;
    time.start();
    eventuallyServingEvents([&] { return time.elapsed() > 100; });
    EXPECT_GT(client_.bytesToWrite(), 1'000'000);
    EXPECT_EQ(said_.size(), 2U);
    hub_.obey({.kind = Kind::read});
    EXPECT_THAT(hears(R"("ref":"2")"), HasSubstr("session_id"));
}

TEST_F(DemoHubTest, is_silent_until_it_speaks_again) {
    hub_.obey({.kind = Kind::silent});
    client_.write(kAnnounce);
    ASSERT_TRUE(eventuallyServingEvents([&] { return said_.size() >= 3; }));
    hub_.obey({.kind = Kind::speak});
    client_.write("{\"type\":\"ping\",\"from\":\"A\",\"id\":\"2\"}\n");
    const std::string heard = hears(R"("ref":"2")");
    EXPECT_EQ(heard.find("session_id"), std::string::npos);
}

TEST_F(DemoHubTest, closes_after_each_line_until_it_keeps_open) {
    hub_.obey({.kind = Kind::closeAfter});
    client_.write(kAnnounce);
    client_.write(kAnnounce);
    ASSERT_TRUE(
        eventuallyServingEvents([&] { return client_.state() == QLocalSocket::UnconnectedState; }));
    EXPECT_THAT(client_.readAll().toStdString(), HasSubstr("session-1"));
    hub_.obey({.kind = Kind::keepOpen});
    ASSERT_TRUE(connectTo(client_));
    client_.write(kAnnounce);
    EXPECT_THAT(hears("session-2"), HasSubstr("session-2"));
    EXPECT_EQ(client_.state(), QLocalSocket::ConnectedState);
}

TEST_F(DemoHubTest, takes_no_others_place_but_that_of_a_hub_that_died) {
    DemoHub second(path(), [](const std::string&) {});
    EXPECT_FALSE(second.listen());
    const std::string left = folder_ / "left.sock";
    {
        QLocalServer dying;
        const std::string bound = folder_ / "dying.sock";
        ASSERT_TRUE(dying.listen(QString::fromStdString(bound)));
        std::filesystem::create_hard_link(bound, left);
    }
    DemoHub successor(left, [](const std::string&) {});
    EXPECT_TRUE(successor.listen());
}

TEST_F(DemoHubTest, leaves_a_file_that_is_no_socket_alone) {
    const std::string file = folder_ / "notes.txt";
    const std::string link = folder_ / "link.sock";
    std::ofstream(file) << "precious";
    std::filesystem::create_symlink(file, link);
    for (const auto& occupied : {file, link, folder_.path().string()}) {
        DemoHub hub(occupied, [](const std::string&) {});
        const auto outcome = hub.listen();
        ASSERT_FALSE(outcome);
        EXPECT_EQ(outcome.error(), occupied + ": is no socket");
    }
    EXPECT_EQ(std::filesystem::file_size(file), 8U);
    EXPECT_TRUE(std::filesystem::is_symlink(link));
}

}  // namespace
}  // namespace sonavault::demohub
