#include "links/SVAudioServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTcpServer>

#include "links/HeardCallbacks.h"
#include "links/LinkClient.h"
#include "links/WireBytes.h"
#include "support/Eventually.h"
#include "support/RecordedLog.h"

namespace sonavault::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const char* const kConnected = "Sonavault audio server: client connected — awaiting handshake";
const char* const kStereo = "handshake 44100 Hz, 2 ch, Float32, interleaved";

class SVAudioServerTest : public ::testing::Test {
  protected:
    SVAudioServerTest() {
        heard_.listenTo(server_);
        server_.start();
    }

    std::uint16_t port() const { return server_.listeningPort(); }
    bool waitForSamples(std::size_t count) {
        return eventually([&] { return heard_.sampleCount() >= count; });
    }
    bool waitForDisconnects(int count) {
        return eventually([&] { return heard_.disconnects() >= count; });
    }
    bool waitForLine(const std::string& line, int times = 1) {
        return eventually([&] { return log_.count(line) >= times; });
    }

    RecordedLog log_;
    HeardCallbacks heard_;
    SVAudioServer server_{log_, 0};
    const Bytes stereo_ = handshakeBytes(44100, 2, 32, Order::little);
};

TEST_F(SVAudioServerTest, says_on_which_port_it_listens) {
    EXPECT_NE(port(), 0);
    EXPECT_THAT(log_.lines(),
                ElementsAre("Sonavault audio server: listening on " + std::to_string(port())));
    EXPECT_TRUE(eventually([&] { return !heard_.states().empty(); }));
    server_.stop();
    EXPECT_THAT(heard_.states(), ElementsAre(ListenerState::ready, ListenerState::cancelled));
    EXPECT_EQ(port(), 0);
}

TEST_F(SVAudioServerTest, listens_on_one_port_however_often_it_is_started) {
    const auto before = port();
    server_.start();
    EXPECT_EQ(port(), before);
    EXPECT_EQ(log_.lines().size(), 1U);
}

TEST_F(SVAudioServerTest, gives_the_samples_of_a_little_endian_sender) {
    LinkClient client(port());
    EXPECT_TRUE(waitForLine(kConnected));
    const auto samples = distinctSamples(1000);
    ASSERT_TRUE(client.send(stereo_ + sampleBytes(samples, Order::little)));
    ASSERT_TRUE(waitForSamples(samples.size()));
    EXPECT_EQ(heard_.samples(), samples);
    EXPECT_THAT(heard_.events(), ElementsAre(kStereo, "samples"));
    EXPECT_EQ(log_.lines().back(),
              "Sonavault audio server: handshake OK — 44100 Hz, 2 ch, Float32, wire=LE (bpf=8)");
}

TEST_F(SVAudioServerTest, gives_the_samples_of_a_big_endian_sender) {
    LinkClient client(port());
    const auto samples = distinctSamples(1000);
    ASSERT_TRUE(
        client.send(handshakeBytes(44100, 2, 32, Order::big) + sampleBytes(samples, Order::big)));
    ASSERT_TRUE(waitForSamples(samples.size()));
    EXPECT_EQ(heard_.samples(), samples);
    EXPECT_TRUE(log_.has(
        "Sonavault audio server: handshake OK — 44100 Hz, 2 ch, Float32, wire=BE (bpf=8)"));
}

TEST_F(SVAudioServerTest, is_reached_over_both_internet_protocols) {
    LinkClient client;
    ASSERT_TRUE(client.connectTo(port(), "::1"));
    ASSERT_TRUE(client.send(stereo_));
    EXPECT_TRUE(eventually([&] { return heard_.events().size() == 1; }));
}

TEST_F(SVAudioServerTest, does_nothing_until_the_twelfth_byte) {
    LinkClient client(port());
    ASSERT_TRUE(client.send(Bytes(stereo_.begin(), stereo_.begin() + 11)));
    ASSERT_TRUE(waitForLine(kConnected));
    EXPECT_THAT(heard_.events(), IsEmpty());
    ASSERT_TRUE(client.send({stereo_.back()}));
    EXPECT_TRUE(eventually([&] { return heard_.events().size() == 1; }));
}

TEST_F(SVAudioServerTest, takes_a_stream_in_pieces_of_every_size) {
    LinkClient client(port());
    client.socket().setSocketOption(QAbstractSocket::LowDelayOption, 1);
    const auto samples = distinctSamples(600);
    const Bytes bytes = stereo_ + sampleBytes(samples, Order::little);
    std::size_t at = 0;
    for (std::size_t size = 1; at < bytes.size(); ++size) {
        const std::size_t end = std::min(bytes.size(), at + size);
        ASSERT_TRUE(client.send(Bytes(bytes.begin() + static_cast<std::ptrdiff_t>(at),
                                      bytes.begin() + static_cast<std::ptrdiff_t>(end))));
        at = end;
    }
    ASSERT_TRUE(waitForSamples(samples.size()));
    EXPECT_EQ(heard_.samples(), samples);
}

TEST_F(SVAudioServerTest, takes_the_highest_rate_and_refuses_the_next) {
    LinkClient client(port());
    ASSERT_TRUE(client.send(handshakeBytes(192000, 8, 32, Order::big)));
    ASSERT_TRUE(waitForLine(
        "Sonavault audio server: handshake OK — 192000 Hz, 8 ch, Float32, wire=BE (bpf=32)"));
    client.close();
    ASSERT_TRUE(waitForDisconnects(1));
    LinkClient tooFast(port());
    tooFast.send(handshakeBytes(192001, 8, 32, Order::big));
    EXPECT_TRUE(tooFast.waitForClose());
    EXPECT_TRUE(waitForDisconnects(2));
}

TEST_F(SVAudioServerTest, drops_a_sender_that_does_not_begin_with_a_handshake) {
    const std::vector<std::pair<Bytes, std::string>> bad = {
        {handshakeBytes(44100, 2, 16, Order::little), "44 ac 00 00 02 00 00 00 10 00 00 00"},
        {handshakeBytes(44100, 2, 16, Order::big), "00 00 ac 44 00 00 00 02 00 00 00 10"},
        {handshakeBytes(44100, 0, 32, Order::little), "44 ac 00 00 00 00 00 00 20 00 00 00"},
        {handshakeBytes(44100, 9, 32, Order::little), "44 ac 00 00 09 00 00 00 20 00 00 00"},
        {{'G', 'E', 'T', ' ', '/', ' ', 'H', 'T', 'T', 'P', '/', '1', '.', '1', '\r', '\n'},
         "47 45 54 20 2f 20 48 54 54 50 2f 31"}};
    int dropped = 0;
    for (const auto& [bytes, hex] : bad) {
        LinkClient client(port());
        client.send(bytes);
        EXPECT_TRUE(client.waitForClose()) << hex;
        EXPECT_TRUE(waitForLine("Sonavault audio server: handshake unparseable; raw bytes [" + hex +
                                "]; dropping client"));
        EXPECT_TRUE(waitForDisconnects(++dropped));
    }
    EXPECT_EQ(heard_.disconnects(), dropped);
    EXPECT_EQ(heard_.sampleCount(), 0U);
}

TEST_F(SVAudioServerTest, tells_of_a_sender_that_closes_once_and_without_words) {
    LinkClient client(port());
    ASSERT_TRUE(client.send(stereo_));
    client.close();
    ASSERT_TRUE(waitForDisconnects(1));
    server_.stop();
    EXPECT_THAT(heard_.events(), ElementsAre(kStereo, "disconnect"));
    EXPECT_EQ(log_.lines().size(), 3U);
}

TEST_F(SVAudioServerTest, gives_all_whole_frames_of_a_stream_that_ends_in_mid_frame) {
    LinkClient client(port());
    const auto samples = distinctSamples(20001);
    ASSERT_TRUE(client.send(stereo_ + sampleBytes(samples, Order::little)));
    client.close();
    ASSERT_TRUE(waitForDisconnects(1));
    EXPECT_THAT(heard_.events(), ElementsAre(kStereo, "samples", "disconnect"));
    EXPECT_EQ(heard_.samples(), std::vector<float>(samples.begin(), samples.end() - 1));
}

TEST_F(SVAudioServerTest, takes_a_sender_back_in_another_order_and_format) {
    {
        LinkClient client(port());
        ASSERT_TRUE(client.send(stereo_ + Bytes(5, 1)));
        client.close();
    }
    LinkClient client(port());
    ASSERT_TRUE(client.send(handshakeBytes(8000, 1, 32, Order::big) +
                            sampleBytes({0.5F, -0.25F}, Order::big)));
    ASSERT_TRUE(waitForSamples(2));
    EXPECT_THAT(heard_.events(),
                ElementsAre(kStereo, "disconnect", "handshake 8000 Hz, 1 ch, Float32, interleaved",
                            "samples"));
    EXPECT_EQ(heard_.samples(), (std::vector<float>{0.5F, -0.25F}));
}

TEST_F(SVAudioServerTest, lets_a_silent_client_hold_the_place_until_a_newer_one_comes) {
    LinkClient silent(port());
    ASSERT_TRUE(waitForLine(kConnected));
    EXPECT_TRUE(silent.isConnected());
    LinkClient newer(port());
    EXPECT_TRUE(silent.waitForClose());
    EXPECT_TRUE(newer.waitForClose());
    LinkClient again(port());
    ASSERT_TRUE(again.send(stereo_));
    EXPECT_TRUE(eventually([&] { return heard_.events().size() == 2; }));
    EXPECT_THAT(heard_.events(), ElementsAre("disconnect", kStereo));
}

TEST_F(SVAudioServerTest, keeps_what_a_displaced_sender_sent_before_the_newcomer) {
    LinkClient older(port());
    const auto samples = distinctSamples(40000);
    ASSERT_TRUE(older.send(stereo_ + sampleBytes(samples, Order::little)));
    LinkClient newer(port());
    ASSERT_TRUE(newer.waitForClose());
    EXPECT_TRUE(older.waitForClose());
    ASSERT_TRUE(waitForDisconnects(1));
    EXPECT_EQ(heard_.samples(), samples);
    EXPECT_THAT(heard_.events(), ElementsAre(kStereo, "samples", "disconnect"));
}

TEST_F(SVAudioServerTest, is_silent_after_stop_while_a_sender_streams) {
    LinkClient client(port());
    ASSERT_TRUE(client.send(stereo_ + Bytes(80000, 0)));
    ASSERT_TRUE(waitForSamples(1));
    client.socket().write(QByteArray(1 << 20, '\0'));
    server_.stop();
    const auto events = heard_.events();
    const auto samples = heard_.sampleCount();
    EXPECT_TRUE(client.waitForClose());
    EXPECT_THAT(events, ElementsAre(kStereo, "samples"));
    server_.start();
    server_.stop();
    EXPECT_EQ(heard_.events(), events);
    EXPECT_EQ(heard_.sampleCount(), samples);
}

TEST_F(SVAudioServerTest, listens_again_after_stop) {
    server_.stop();
    server_.stop();
    server_.start();
    LinkClient client(port());
    ASSERT_TRUE(client.send(stereo_));
    EXPECT_TRUE(eventually([&] { return heard_.events().size() == 1; }));
}

TEST_F(SVAudioServerTest, reports_no_disconnect_of_a_client_it_dropped_itself_at_stop) {
    for (int round = 0; round < 50; ++round) {
        LinkClient displaced(port());
        LinkClient newer(port());
        server_.stop();
        const int before = heard_.disconnects();
        server_.start();
        LinkClient client(port());
        ASSERT_TRUE(client.send(stereo_));
        ASSERT_TRUE(eventually([&] { return heard_.lastEvent() == kStereo; }));
        EXPECT_EQ(heard_.disconnects(), before);
        server_.stop();
        server_.start();
    }
}

TEST(SVAudioServer, takes_port_9171_unless_told_otherwise) {
    RecordedLog log;
    QTcpServer other;
    other.listen(QHostAddress::Any, 9171);  // if it can't, yet another holds the port already
    SVAudioServer server(log);
    server.start();
    EXPECT_THAT(log.lines(),
                ElementsAre("Sonavault audio server: NWListener(create) failed: The bound address "
                            "is already in use"));
}

TEST(SVAudioServer, says_why_it_cannot_listen_and_does_so_later_when_asked_again) {
    QTcpServer other;
    ASSERT_TRUE(other.listen(QHostAddress::Any));
    RecordedLog log;
    HeardCallbacks heard;
    SVAudioServer server(log, other.serverPort());
    heard.listenTo(server);
    server.start();
    EXPECT_THAT(
        log.lines(),
        ElementsAre("Sonavault audio server: NWListener(create) failed: The bound address is "
                    "already in use"));
    EXPECT_EQ(server.listeningPort(), 0);
    const auto port = other.serverPort();
    other.close();
    server.start();
    EXPECT_EQ(server.listeningPort(), port);
    server.stop();
    EXPECT_EQ(heard.states().back(), ListenerState::cancelled);
}

/// Gives how many servers in turn, of twenty, could have the port, each with a client to the end.
int serversInTurnOn(std::uint16_t port) {
    RecordedLog log;
    for (int round = 0; round < 20; ++round) {
        SVAudioServer server(log, port);
        server.start();
        if (server.listeningPort() != port) return round;
        LinkClient client(port);
        if (!client.send(handshakeBytes(44100, 2, 32, Order::little) + Bytes(8000, 0)))
            return round;
    }
    return 20;
}

TEST(SVAudioServer, leaves_its_port_to_the_next_server_at_once) {
    // Another program may come and take a port that was free: not every time.
    int most = 0;
    for (int attempt = 0; attempt < 3 && most < 20; ++attempt)
        most = std::max(most, serversInTurnOn(freePort()));
    EXPECT_EQ(most, 20);
}

TEST(SVAudioServer, may_be_destroyed_at_any_moment_of_a_stream) {
    for (int round = 0; round < 50; ++round) {
        RecordedLog log;
        LinkClient client;
        LinkClient newer;
        {
            HeardCallbacks heard;
            SVAudioServer server(log, 0);
            heard.listenTo(server);
            server.start();
            ASSERT_TRUE(client.connectTo(server.listeningPort()));
            client.socket().write(QByteArray("\x44\xac\0\0\2\0\0\0\x20\0\0\0", 12));
            client.socket().write(QByteArray(100000 * (round % 5), '\0'));
            client.socket().flush();
            if (round % 3 == 0) newer.connectTo(server.listeningPort());
        }
        EXPECT_TRUE(client.waitForClose());
    }
}

TEST(SVAudioServer, calls_nobody_when_it_is_destroyed) {
    RecordedLog log;
    HeardCallbacks heard;
    LinkClient client;
    {
        SVAudioServer server(log, 0);
        heard.listenTo(server);
        server.start();
        ASSERT_TRUE(client.connectTo(server.listeningPort()));
        ASSERT_TRUE(client.send(handshakeBytes(44100, 2, 32, Order::little)));
        ASSERT_TRUE(eventually([&] { return !heard.events().empty(); }));
    }
    EXPECT_THAT(heard.events(), ElementsAre(kStereo));
    EXPECT_THAT(heard.states(), ElementsAre(ListenerState::ready));
}

TEST(SVAudioServer, works_without_any_callback) {
    RecordedLog log;
    SVAudioServer server(log, 0);
    server.start();
    LinkClient client(server.listeningPort());
    ASSERT_TRUE(client.send(handshakeBytes(44100, 2, 32, Order::little) + Bytes(8000, 0)));
    client.close();
    LinkClient next(server.listeningPort());
    EXPECT_TRUE(eventually([&] { return log.count(kConnected) == 2; }));
}

}  // namespace
}  // namespace sonavault::testing
