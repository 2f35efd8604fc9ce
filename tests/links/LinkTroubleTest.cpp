// A sender that is reset or floods, and a listener that the system takes away.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>

#include "links/LinkClient.h"
#include "links/SVMarkerServer.h"
#include "links/SingleClientServer.h"
#include "support/RecordedLog.h"
#include "support/SocketTrouble.h"

namespace sonavault::testing {
namespace {

using ::testing::SizeIs;

/// Counts what the server tells, and has room when the test says so.
class CountingProtocol final : public ClientProtocol {
  public:
    struct Counts {
        int ready = 0;
        int gone = 0;
        int failed = 0;
        std::size_t bytes = 0;
    };

    template <class Condition>
    bool await(Condition condition) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(20),
                                 [&] { return condition(counts_); });
    }
    Counts counts() {
        const std::scoped_lock lock(mutex_);
        return counts_;
    }
    void setRoom(bool room) {
        const std::scoped_lock lock(mutex_);
        room_ = room;
    }

  private:
    void clientReady() override {
        count([](Counts& all) { ++all.ready; });
    }
    bool hasRoomForBytes() override {
        const std::scoped_lock lock(mutex_);
        return room_;
    }
    void bytesReceived(std::span<const std::uint8_t> bytes) override {
        count([&](Counts& all) { all.bytes += bytes.size(); });
    }
    void forgetClient() override {}
    void clientGone() override {
        count([](Counts& all) { ++all.gone; });
    }
    void listenerStateChanged(ListenerState state) override {
        if (state == ListenerState::failed) count([](Counts& all) { ++all.failed; });
    }

    template <class Change>
    void count(Change change) {
        const std::scoped_lock lock(mutex_);
        change(counts_);
        changed_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    Counts counts_;
    bool room_ = true;
};

class LinkTrouble : public ::testing::Test {
  protected:
    LinkTrouble() { server_.start(); }
    std::uint16_t port() const { return server_.listeningPort(); }

    /// A client that is connected, has sent `bytes`, and was heard with it.
    void connect(LinkClient& client, std::size_t bytes = 3) {
        ASSERT_TRUE(client.connectTo(port()));
        ASSERT_TRUE(client.send(Bytes(bytes, 'x')));
        ASSERT_TRUE(protocol_.await([&](const auto& all) { return all.bytes >= bytes; }));
    }

    RecordedLog log_;
    CountingProtocol protocol_;
    SingleClientServer server_{"test.queue", "Test server:", 0, log_, protocol_};
};

TEST_F(LinkTrouble, tells_once_that_a_client_that_was_reset_is_gone) {
    LinkClient client;
    connect(client);
    ASSERT_TRUE(closeWithReset(client.socket().socketDescriptor()));
    client.socket().abort();
    ASSERT_TRUE(protocol_.await([](const auto& all) { return all.gone > 0; }));
    LinkClient next;
    connect(next, 5);
    EXPECT_EQ(protocol_.counts().gone, 1);
    EXPECT_EQ(protocol_.counts().ready, 2);
    EXPECT_THAT(log_.containing("failed"), SizeIs(0)) << "the server goes on";
}

TEST_F(LinkTrouble, tells_when_the_system_takes_the_listener_away) {
    ASSERT_TRUE(takeListenerAway(port()));
    ASSERT_TRUE(protocol_.await([](const auto& all) { return all.failed > 0; }));
    EXPECT_THAT(log_.containing("Test server: listener failed: "), SizeIs(::testing::Ge(1)));
}

TEST_F(LinkTrouble, holds_a_sender_back_while_there_is_no_room_and_loses_nothing) {
    LinkClient client;
    connect(client);
    protocol_.setRoom(false);
    std::size_t sent = 3;
    while (sent < 200'000'000 && client.push(Bytes(1'000'000, 'x'), 500)) sent += 1'000'000;
    ASSERT_LT(sent, 50'000'000U) << "the network holds no more";
    // One piece may have been on its way when the room ran out.
    EXPECT_LE(protocol_.counts().bytes, 3U + 65536U);
    protocol_.setRoom(true);
    ASSERT_TRUE(client.send({}));
    EXPECT_TRUE(protocol_.await([&](const auto& all) { return all.bytes == sent + 1'000'000; }));
}

TEST_F(LinkTrouble, lets_newcomers_wait_while_there_is_no_room) {
    LinkClient client;
    connect(client);
    protocol_.setRoom(false);
    client.close();
    ASSERT_TRUE(protocol_.await([](const auto& all) { return all.gone == 1; }));
    LinkClient next(port());
    ASSERT_TRUE(next.isConnected()) << "by the system, in the server's name";
    ASSERT_TRUE(next.send(Bytes(5, 'x')));
    EXPECT_FALSE(next.socket().waitForReadyRead(200));
    EXPECT_EQ(protocol_.counts().ready, 1);
    protocol_.setRoom(true);
    EXPECT_TRUE(protocol_.await([](const auto& all) { return all.bytes == 8; }));
    EXPECT_EQ(protocol_.counts().ready, 2);
}

TEST_F(LinkTrouble, stops_and_starts_while_there_is_no_room) {
    LinkClient client;
    connect(client);
    protocol_.setRoom(false);
    client.push(Bytes(1'000'000, 'x'), 100);
    server_.stop();
    EXPECT_TRUE(client.waitForClose());
    server_.start();
    LinkClient next(port());
    ASSERT_TRUE(next.isConnected());
    server_.stop();
    EXPECT_TRUE(next.waitForClose());
    EXPECT_LE(protocol_.counts().bytes, 3U + 65536U);
}

TEST(SVMarkerServerInTrouble, reads_on_only_where_the_receiver_has_room) {
    RecordedLog log;
    SVMarkerServer server(log, 0);
    std::mutex mutex;
    std::condition_variable changed;
    int markers = 0;
    bool room = false;
    server.hasRoom = [&] {
        const std::scoped_lock lock(mutex);
        return room;
    };
    server.onMarker = [&](const MarkerWire&) {
        const std::scoped_lock lock(mutex);
        ++markers;
        changed.notify_all();
    };
    server.start();
    {
        const std::scoped_lock lock(mutex);
        room = true;
    }
    LinkClient client(server.listeningPort());
    const std::string json = R"({"type":"hour","clock_time":"","wall_clock_iso8601":""})";
    const std::string framed = std::string{static_cast<char>(json.size()), 0, 0, 0} + json;
    const Bytes frame(framed.begin(), framed.end());
    ASSERT_TRUE(client.send(frame));
    std::unique_lock lock(mutex);
    EXPECT_TRUE(changed.wait_for(lock, std::chrono::seconds(20), [&] { return markers == 1; }));
    room = false;
    lock.unlock();
    ASSERT_TRUE(client.send(frame));
    EXPECT_FALSE(client.socket().waitForReadyRead(200));
    lock.lock();
    EXPECT_EQ(markers, 1);
    room = true;
    EXPECT_TRUE(changed.wait_for(lock, std::chrono::seconds(20), [&] { return markers == 2; }));
    lock.unlock();
    server.stop();
}

}  // namespace
}  // namespace sonavault::testing
