#include "links/SVMarkerServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTcpServer>
#include <mutex>

#include "links/LinkClient.h"
#include "links/WireBytes.h"
#include "support/Eventually.h"
#include "support/RecordedLog.h"

namespace sonavault::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

const char* const kConnected = "Sonavault marker server: client connected";

std::string json(const std::string& type) {
    return R"({"type":")" + type +
           R"(","clock_time":"14:05:09","wall_clock_iso8601":"2026-03-02T13:05:09.100Z"})";
}

Bytes frame(const std::string& payload, Order order = Order::little) {
    Bytes bytes;
    appendWord(bytes, static_cast<std::uint32_t>(payload.size()), order);
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    return bytes;
}

/// A message that takes exactly so many bytes.
std::string jsonOfBytes(std::size_t bytes) {
    const std::string start = json("x").substr(0, json("x").size() - 1) + R"(,"label":")";
    return start + std::string(bytes - start.size() - 2, 'y') + "\"}";
}

/// Everything a marker server called back, as the test reads it from its own thread.
class HeardMarkers {
  public:
    void listenTo(SVMarkerServer& server) {
        server.onMarker = [this](const MarkerWire& marker) { note(marker.type); };
        server.onConnect = [this] { note("(connect)"); };
        server.onDisconnect = [this] { note("(disconnect)"); };
    }

    std::vector<std::string> all() const {
        std::scoped_lock lock(mutex_);
        return heard_;
    }

  private:
    void note(const std::string& what) {
        std::scoped_lock lock(mutex_);
        heard_.push_back(what);
    }

    mutable std::mutex mutex_;
    std::vector<std::string> heard_;
};

class SVMarkerServerTest : public ::testing::Test {
  protected:
    SVMarkerServerTest() {
        heard_.listenTo(server_);
        server_.start();
    }

    std::uint16_t port() const { return server_.listeningPort(); }
    bool waitFor(std::size_t callbacks) {
        return eventually([&] { return heard_.all().size() >= callbacks; });
    }
    bool waitForLine(const std::string& line, int times = 1) {
        return eventually([&] { return log_.count(line) >= times; });
    }
    /// The lines that are not about coming and going.
    std::vector<std::string> complaints() const {
        std::vector<std::string> found;
        for (const auto& line : log_.lines())
            if (line != kConnected && line.find("listening on") == std::string::npos &&
                line.find("endianness") == std::string::npos)
                found.push_back(line);
        return found;
    }

    RecordedLog log_;
    HeardMarkers heard_;
    SVMarkerServer server_{log_, 0};
};

TEST_F(SVMarkerServerTest, tells_of_a_client_and_of_its_byte_order) {
    LinkClient client(port());
    ASSERT_TRUE(client.send(frame(json("hour"))));
    ASSERT_TRUE(waitFor(2));
    EXPECT_THAT(log_.lines(),
                ElementsAre("Sonavault marker server: listening on " + std::to_string(port()),
                            kConnected, "Sonavault marker server: length prefix endianness = LE"));
    EXPECT_THAT(heard_.all(), ElementsAre("(connect)", "hour"));
}

TEST_F(SVMarkerServerTest, hands_on_every_field_of_a_message) {
    std::mutex mutex;
    std::optional<MarkerWire> marker;
    server_.stop();
    server_.onMarker = [&](const MarkerWire& heard) {
        std::scoped_lock lock(mutex);
        marker = heard;
    };
    server_.start();
    LinkClient client(port());
    ASSERT_TRUE(client.send(frame(
        R"({"type":"break_start","clock_time":"23:59:59","wall_clock_iso8601":"w","label":"l",)"
        R"("duration_sec":30,"file":"f","test_mode":false})")));
    ASSERT_TRUE(eventually([&] {
        std::scoped_lock lock(mutex);
        return marker.has_value();
    }));
    EXPECT_EQ(*marker, (MarkerWire{"break_start", "23:59:59", "w", "l", 30.0, "f", false}));
}

TEST_F(SVMarkerServerTest, gives_two_frames_of_one_read_in_order) {
    LinkClient client(port());
    ASSERT_TRUE(client.send(frame(json("a")) + frame(json("b"))));
    ASSERT_TRUE(waitFor(3));
    EXPECT_THAT(heard_.all(), ElementsAre("(connect)", "a", "b"));
}

TEST_F(SVMarkerServerTest, waits_for_the_rest_of_a_frame_in_pieces_of_every_size) {
    LinkClient client(port());
    client.socket().setSocketOption(QAbstractSocket::LowDelayOption, 1);
    Bytes bytes;
    for (int i = 0; i < 20; ++i) bytes = bytes + frame(json("m" + std::to_string(i)), Order::big);
    std::size_t at = 0;
    for (std::size_t size = 1; at < bytes.size(); ++size) {
        const std::size_t end = std::min(bytes.size(), at + size);
        ASSERT_TRUE(client.send(Bytes(bytes.begin() + static_cast<std::ptrdiff_t>(at),
                                      bytes.begin() + static_cast<std::ptrdiff_t>(end))));
        at = end;
    }
    ASSERT_TRUE(waitFor(21));
    EXPECT_EQ(heard_.all().back(), "m19");
    EXPECT_THAT(complaints(), IsEmpty());
}

TEST_F(SVMarkerServerTest, lets_a_reconnecting_client_use_the_other_byte_order) {
    for (const Order order : {Order::little, Order::big}) {
        LinkClient client(port());
        ASSERT_TRUE(client.send(frame(json("hour"), order)));
        client.close();
    }
    ASSERT_TRUE(waitFor(6));
    EXPECT_THAT(heard_.all(), ElementsAre("(connect)", "hour", "(disconnect)", "(connect)", "hour",
                                          "(disconnect)"));
    EXPECT_TRUE(log_.has("Sonavault marker server: length prefix endianness = LE"));
    EXPECT_TRUE(log_.has("Sonavault marker server: length prefix endianness = BE"));
}

TEST_F(SVMarkerServerTest, delivers_what_stands_around_a_malformed_message) {
    LinkClient client(port());
    ASSERT_TRUE(
        client.send(frame(json("before")) + frame("{\"type\":\"no end") + frame(json("after"))));
    ASSERT_TRUE(waitFor(3));
    EXPECT_THAT(heard_.all(), ElementsAre("(connect)", "before", "after"));
    EXPECT_THAT(complaints(),
                ElementsAre(AllOf(StartsWith("Sonavault marker server: marker decode failed ("),
                                  ::testing::EndsWith("); payload preview: {\"type\":\"no end"))));
}

TEST_F(SVMarkerServerTest, says_what_is_wrong_with_a_message) {
    LinkClient client(port());
    ASSERT_TRUE(client.send(frame(R"({"type":"hour"})")));
    EXPECT_TRUE(
        waitForLine("Sonavault marker server: marker decode failed (key clock_time is missing); "
                    "payload preview: {\"type\":\"hour\"}"));
}

TEST_F(SVMarkerServerTest, shows_the_first_120_bytes_of_a_message_that_fails) {
    const std::string tail(117, 'a');
    LinkClient client(port());
    ASSERT_TRUE(client.send(frame("[\"" + tail + "ü\"]") + frame("[\"" + tail + "bü\"]") +
                            frame("[\"" + tail + "b\"]")));
    const std::string failed =
        "Sonavault marker server: marker decode failed (not a JSON object); payload preview: ";
    EXPECT_TRUE(waitForLine(failed + "<non-utf8>")) << "cut within a character";
    EXPECT_TRUE(waitForLine(failed + "[\"" + tail + "b", 2));
}

TEST_F(SVMarkerServerTest, shows_no_bytes_that_are_no_text) {
    LinkClient client(port());
    ASSERT_TRUE(client.send(frame("\xFF\xFE") + frame(json("after"))));
    ASSERT_TRUE(waitFor(2));
    ASSERT_EQ(complaints().size(), 1U);
    EXPECT_THAT(complaints()[0], ::testing::EndsWith("payload preview: <non-utf8>"));
}

TEST_F(SVMarkerServerTest, passes_an_empty_message_to_the_decoder_once_the_order_is_known) {
    LinkClient client(port());
    ASSERT_TRUE(client.send(frame(json("a")) + frame("") + frame(json("b"))));
    ASSERT_TRUE(waitFor(3));
    EXPECT_THAT(heard_.all(), ElementsAre("(connect)", "a", "b"));
    EXPECT_THAT(complaints(),
                ElementsAre(AllOf(StartsWith("Sonavault marker server: marker decode failed ("),
                                  ::testing::EndsWith("); payload preview: "))));
}

TEST_F(SVMarkerServerTest, accepts_65536_bytes_and_drops_the_client_at_65537) {
    LinkClient client(port());
    ASSERT_TRUE(client.send(frame(json("small")) + frame(jsonOfBytes(65536))));
    ASSERT_TRUE(waitFor(3));
    EXPECT_THAT(heard_.all(), ElementsAre("(connect)", "small", "x"));
    client.send(frame(jsonOfBytes(65537)));
    EXPECT_TRUE(client.waitForClose());
    ASSERT_TRUE(waitFor(4));
    EXPECT_EQ(heard_.all().back(), "(disconnect)");
    EXPECT_THAT(complaints(),
                ElementsAre("Sonavault marker server: payload length 65537 exceeds cap; dropping "
                            "client"));
}

TEST_F(SVMarkerServerTest, drops_a_client_whose_first_prefix_is_zero) {
    LinkClient client(port());
    client.send(Bytes(4, 0) + frame(json("a")));
    EXPECT_TRUE(client.waitForClose());
    ASSERT_TRUE(waitFor(2));
    EXPECT_THAT(heard_.all(), ElementsAre("(connect)", "(disconnect)"));
    EXPECT_THAT(complaints(),
                ElementsAre("Sonavault marker server: unparseable length prefix LE=0 BE=0; "
                            "dropping client"));
    LinkClient next(port());
    ASSERT_TRUE(next.send(frame(json("next"))));
    EXPECT_TRUE(waitFor(4));
    EXPECT_EQ(heard_.all().back(), "next");
}

TEST_F(SVMarkerServerTest, throws_an_unfinished_frame_of_a_lost_client_away) {
    const Bytes whole = frame(json("cut"));
    {
        LinkClient client(port());
        ASSERT_TRUE(client.send(Bytes(whole.begin(), whole.end() - 1)));
        client.close();
    }
    ASSERT_TRUE(waitFor(2));
    LinkClient next(port());
    ASSERT_TRUE(next.send(frame(json("next"))));
    ASSERT_TRUE(waitFor(4));
    EXPECT_THAT(heard_.all(), ElementsAre("(connect)", "(disconnect)", "(connect)", "next"));
    EXPECT_THAT(complaints(), IsEmpty());
}

TEST_F(SVMarkerServerTest, gives_a_newer_client_the_place_when_it_connects_again) {
    LinkClient older(port());
    ASSERT_TRUE(waitFor(1));
    LinkClient newer(port());
    EXPECT_TRUE(older.waitForClose());
    EXPECT_TRUE(newer.waitForClose());
    LinkClient again(port());
    ASSERT_TRUE(again.send(frame(json("again"))));
    ASSERT_TRUE(eventually([&] { return heard_.all().back() == "again"; }));
}

TEST_F(SVMarkerServerTest, drops_its_client_without_a_word_when_it_is_stopped) {
    LinkClient client(port());
    ASSERT_TRUE(waitFor(1));
    server_.stop();
    EXPECT_TRUE(client.waitForClose());
    EXPECT_EQ(port(), 0);
    EXPECT_THAT(heard_.all(), ElementsAre("(connect)"));
}

TEST(SVMarkerServer, takes_port_9172_unless_told_otherwise) {
    RecordedLog log;
    QTcpServer other;
    other.listen(QHostAddress::Any, 9172);  // if it can't, yet another holds the port already
    SVMarkerServer server(log);
    server.start();
    EXPECT_THAT(log.lines(),
                ElementsAre("Sonavault marker server: NWListener(create) failed: The bound address "
                            "is already in use"));
}

TEST(SVMarkerServer, works_without_any_callback) {
    RecordedLog log;
    SVMarkerServer server(log, 0);
    server.start();
    LinkClient client(server.listeningPort());
    ASSERT_TRUE(client.send(frame(json("a"))));
    client.close();
    LinkClient next(server.listeningPort());
    EXPECT_TRUE(eventually([&] { return log.count(kConnected) == 2; }));
}

TEST(SVMarkerServer, may_be_destroyed_at_any_moment_of_a_stream) {
    for (int round = 0; round < 50; ++round) {
        RecordedLog log;
        LinkClient client;
        {
            HeardMarkers heard;
            SVMarkerServer server(log, 0);
            heard.listenTo(server);
            server.start();
            ASSERT_TRUE(client.connectTo(server.listeningPort()));
            for (int i = 0; i < 40 * (round % 5); ++i)
                client.socket().write(reinterpret_cast<const char*>(frame(json("a")).data()),
                                      static_cast<qint64>(frame(json("a")).size()));
            client.socket().flush();
        }
        EXPECT_TRUE(client.waitForClose());
    }
}

}  // namespace
}  // namespace sonavault::testing
