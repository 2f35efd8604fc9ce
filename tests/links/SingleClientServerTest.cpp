#include "links/SingleClientServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <vector>

#include "links/LinkClient.h"
#include "support/Eventually.h"
#include "support/RecordedLog.h"
#include "support/ScarceDescriptors.h"

namespace sonavault::testing {
namespace {

using ::testing::ElementsAre;

/// Writes down what the server tells of its clients; drops one that says "bad".
class NotingProtocol final : public ClientProtocol {
  public:
    SingleClientServer* server = nullptr;

    std::vector<std::string> events() const {
        std::scoped_lock lock(mutex_);
        return events_;
    }
    bool eventuallyHas(std::size_t count) const {
        return eventually([&] { return events().size() >= count; });
    }
    int count(const std::string& event) const {
        int found = 0;
        for (const auto& each : events()) found += each == event;
        return found;
    }
    std::size_t largestPiece() const {
        std::scoped_lock lock(mutex_);
        return largestPiece_;
    }
    std::size_t total() const {
        std::scoped_lock lock(mutex_);
        return total_;
    }
    /// From now on the server waits within the next piece until let go.
    void hold() { setHeld(true); }
    void letGo() { setHeld(false); }

  private:
    void clientReady() override { note("ready"); }
    void forgetClient() override {}
    void clientGone() override { note("gone"); }
    void bytesReceived(std::span<const std::uint8_t> bytes) override {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return !held_; });
        largestPiece_ = std::max(largestPiece_, bytes.size());
        total_ += bytes.size();
        if (bytes.size() > 20) return;
        events_.emplace_back(bytes.begin(), bytes.end());
        lock.unlock();
        if (bytes.front() == 'b') server->dropClient();
    }
    void note(const std::string& event) {
        std::scoped_lock lock(mutex_);
        events_.push_back(event);
    }
    void setHeld(bool held) {
        std::scoped_lock lock(mutex_);
        held_ = held;
        changed_.notify_all();
    }

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    bool held_ = false;
    std::vector<std::string> events_;
    std::size_t largestPiece_ = 0;
    std::size_t total_ = 0;
};

Bytes text(const std::string& words) {
    return {words.begin(), words.end()};
}

class SingleClientServerTest : public ::testing::Test {
  protected:
    SingleClientServerTest() {
        protocol_.server = &server_;
        server_.start();
    }
    std::uint16_t port() const { return server_.listeningPort(); }

    RecordedLog log_;
    NotingProtocol protocol_;
    SingleClientServer server_{"test.queue", "Test server:", 0, log_, protocol_};
};

TEST_F(SingleClientServerTest, logs_behind_its_prefix) {
    server_.log("hello");
    EXPECT_THAT(log_.lines(), ElementsAre("Test server: listening on " + std::to_string(port()),
                                          "Test server: hello"));
}

TEST_F(SingleClientServerTest, clears_the_newcomer_with_the_client_it_displaced) {
    LinkClient older(port());
    ASSERT_TRUE(older.send(text("one")));
    ASSERT_TRUE(protocol_.eventuallyHas(2));
    LinkClient newer(port());
    newer.send(text("two"));
    EXPECT_TRUE(older.waitForClose());
    EXPECT_TRUE(newer.waitForClose());
    ASSERT_TRUE(protocol_.eventuallyHas(4));
    LinkClient again(port());
    ASSERT_TRUE(again.send(text("three")));
    ASSERT_TRUE(protocol_.eventuallyHas(6));
    EXPECT_THAT(protocol_.events(), ElementsAre("ready", "one", "gone", "ready", "ready", "three"));
}

TEST_F(SingleClientServerTest, never_takes_a_sender_that_closed_and_came_back_for_a_second_one) {
    for (int round = 0; round < 300; ++round) {
        LinkClient client(port());
        ASSERT_TRUE(client.send(text("hi")));
        client.close();
    }
    ASSERT_TRUE(eventually([&] { return protocol_.count("gone") == 300; }));
    std::vector<std::string> expected;
    for (int round = 0; round < 300; ++round)
        for (const char* event : {"ready", "hi", "gone"}) expected.emplace_back(event);
    EXPECT_EQ(protocol_.events(), expected);
}

TEST_F(SingleClientServerTest, drops_a_client_by_an_event_that_follows) {
    LinkClient client(port());
    client.send(text("bad"));
    EXPECT_TRUE(client.waitForClose());
    ASSERT_TRUE(protocol_.eventuallyHas(3));
    EXPECT_THAT(protocol_.events(), ElementsAre("ready", "bad", "gone"));
}

TEST_F(SingleClientServerTest, reads_at_most_65536_bytes_at_a_time) {
    LinkClient client(port());
    ASSERT_TRUE(client.send(Bytes(10'000'000, 'x')));
    ASSERT_TRUE(eventually([&] { return protocol_.total() == 10'000'000; }));
    EXPECT_LE(protocol_.largestPiece(), 65536U);
    EXPECT_GT(protocol_.largestPiece(), 20U);
}

TEST_F(SingleClientServerTest, holds_a_flooding_sender_back_instead_of_filling_its_memory) {
    LinkClient client(port());
    ASSERT_TRUE(client.send(Bytes(100, 'x')));
    ASSERT_TRUE(eventually([&] { return protocol_.total() == 100; }));
    protocol_.hold();
    std::size_t taken = 0;
    while (taken < 200'000'000 && client.push(Bytes(1'000'000, 'x'), 1000)) taken += 1'000'000;
    protocol_.letGo();
    EXPECT_LT(taken, 50'000'000U);
    EXPECT_TRUE(client.send({}));
    EXPECT_TRUE(eventually([&] { return protocol_.total() >= taken + 100; }));
}

TEST_F(SingleClientServerTest, lets_a_newcomer_in_past_a_flooding_sender) {
    LinkClient flood(port());
    for (int i = 0; i < 20; ++i) flood.socket().write(QByteArray(1'000'000, 'x'));
    ASSERT_TRUE(flood.socket().waitForBytesWritten(5000));
    LinkClient newer(port());
    EXPECT_TRUE(newer.waitForClose());
    EXPECT_TRUE(flood.waitForClose());
    LinkClient again(port());
    ASSERT_TRUE(again.send(text("three")));
    EXPECT_TRUE(eventually([&] { return protocol_.count("three") == 1; }));
}

std::size_t openDescriptors() {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
        ++count;
    return count;
}

TEST_F(SingleClientServerTest, keeps_no_descriptor_of_a_thousand_clients) {
    const std::size_t before = openDescriptors();
    for (int i = 0; i < 1000; ++i) {
        LinkClient client(port());
        ASSERT_TRUE(client.isConnected()) << i;
        if (i % 3 == 1) client.socket().write("half");
        if (i % 3 == 2) client.abort();
    }
    LinkClient last(port());
    ASSERT_TRUE(last.send(text("last")));
    ASSERT_TRUE(eventually([&] { return protocol_.count("last") == 1; }));
    last.close();
    EXPECT_TRUE(eventually([&] { return protocol_.events().back() == "gone"; }));
    EXPECT_TRUE(eventually([&] { return openDescriptors() == before; }))
        << before << " before, " << openDescriptors() << " after";
    EXPECT_EQ(protocol_.count("ready"), protocol_.count("gone"));
}

TEST_F(SingleClientServerTest, holds_at_most_a_client_and_a_newcomer_of_a_crowd_that_stays) {
    std::vector<std::unique_ptr<LinkClient>> crowd;
    for (int i = 0; i < 200; ++i) crowd.push_back(std::make_unique<LinkClient>(port()));
    const auto connected = [&] {
        return std::count_if(crowd.begin(), crowd.end(), [](const auto& client) {
            client->socket().waitForReadyRead(1);
            return client->isConnected();
        });
    };
    EXPECT_TRUE(eventually([&] { return connected() <= 1; }));
    // One that displaces another is closed with it, and has to come again.
    LinkClient last;
    EXPECT_TRUE(eventually([&] {
        last.socket().waitForReadyRead(1);
        if (!last.isConnected() && last.connectTo(port())) last.send(text("last"));
        return protocol_.count("last") > 0;
    }));
}

TEST_F(SingleClientServerTest, takes_clients_again_once_a_shortage_of_descriptors_is_over) {
    // The sanitizers need descriptors for what they see the first time, so a whole round comes
    // before the shortage.
    const std::uint16_t serverPort = port();
    const std::size_t before = openDescriptors();
    LinkClient early;
    LinkClient meanwhile;
    LinkClient late;
    const auto visit = [&](LinkClient& client, const char* words) {
        const bool connected = client.connectTo(serverPort);
        client.socket().write(words);
        client.socket().flush();
        return connected;
    };
    ASSERT_TRUE(visit(early, "early"));
    ASSERT_TRUE(eventually([&] { return protocol_.count("early") == 1; }));
    EXPECT_FALSE(early.socket().waitForReadyRead(1));
    early.close();
    ASSERT_TRUE(eventually([&] { return openDescriptors() == before; }));
    bool waited = false;
    {
        ScarceDescriptors scarce;
        scarce.giveOneBack();
        waited = visit(meanwhile, "meanwhile") && !meanwhile.socket().waitForReadyRead(300) &&
                 meanwhile.isConnected() && protocol_.count("meanwhile") == 0;
    }
    ASSERT_TRUE(waited);
    ASSERT_TRUE(eventually([&] { return protocol_.count("meanwhile") == 1; }));
    meanwhile.close();
    ASSERT_TRUE(late.connectTo(serverPort));
    ASSERT_TRUE(late.send(text("late")));
    EXPECT_TRUE(eventually([&] { return protocol_.count("late") == 1; }));
    EXPECT_THAT(log_.containing("failed"), ::testing::IsEmpty());
}

TEST_F(SingleClientServerTest, survives_a_crowd_that_comes_and_goes_while_it_starts_and_stops) {
    for (int round = 0; round < 30; ++round) {
        std::vector<std::unique_ptr<LinkClient>> crowd;
        for (int i = 0; i < 5; ++i) {
            crowd.push_back(std::make_unique<LinkClient>(port()));
            crowd.back()->socket().write("half");
            crowd.back()->socket().flush();
        }
        server_.stop();
        for (auto& client : crowd) EXPECT_TRUE(client->waitForClose());
        server_.start();
        ASSERT_NE(port(), 0);
    }
}

}  // namespace
}  // namespace sonavault::testing
