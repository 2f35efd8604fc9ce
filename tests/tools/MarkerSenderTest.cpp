#include "automation/MarkerSender.h"

#include <gtest/gtest.h>

#include <QTcpServer>

#include "support/Eventually.h"
#include "support/ManualClock.h"

namespace sonavault::automation {
namespace {

using sonavault::testing::eventuallyServingEvents;
using sonavault::testing::ManualClock;

const WallTime kNoon = WallTime(std::chrono::hours(20'000 * 24 + 12));

std::string text(const std::string& type) {
    return "{\"type\":\"" + type + "\"}";
}

/// A frame of fewer than 256 bytes, as it looks on the wire.
std::string frame(const std::string& payload, bool bigEndian = false) {
    const char length = static_cast<char>(payload.size());
    return bigEndian ? std::string(3, '\0') + length + payload
                     : length + std::string(3, '\0') + payload;
}

/// A sender and a plain server that keeps the bytes of each of its connections.
class MarkerSenderTest : public ::testing::Test {
  protected:
    MarkerSenderTest() {
        QObject::connect(&server_, &QTcpServer::newConnection, [this] {
            sockets_.push_back(server_.nextPendingConnection());
            received_.emplace_back();
        });
        listen();
        options_.port = server_.serverPort();
    }

    void listen(std::uint16_t port = 0) {
        ASSERT_TRUE(server_.listen(QHostAddress::LocalHost, port));
    }

    void startSender() {
        sender_ = std::make_unique<MarkerSender>(
            options_, clock_, [this](const std::string& line) { said_.push_back(line); });
        sender_->start();
    }

    template <class Condition>
    bool meanwhile(Condition condition) {
        return eventuallyServingEvents([&] {
            for (std::size_t i = 0; i < sockets_.size(); ++i)
                if (sockets_[i]->isOpen()) received_[i] += sockets_[i]->readAll().toStdString();
            return condition();
        });
    }

    bool receives(std::size_t connection, const std::string& bytes) {
        return meanwhile([&] {
                   return received_.size() > connection &&
                          received_[connection].size() >= bytes.size();
               }) &&
               received_[connection] == bytes;
    }

    bool hasSaid(const std::string& line) const {
        return std::find(said_.begin(), said_.end(), line) != said_.end();
    }

    ManualClock clock_{kNoon};
    QTcpServer server_;
    std::vector<QTcpSocket*> sockets_;
    std::vector<std::string> received_;
    MarkerOptions options_;
    std::vector<std::string> said_;
    std::unique_ptr<MarkerSender> sender_;
};

TEST_F(MarkerSenderTest, sends_what_it_says_in_either_byte_order) {
    for (const bool bigEndian : {false, true}) {
        options_.bigEndian = bigEndian;
        startSender();
        sender_->obey(StationMarker{"hour"});
        const std::string payload = markerPayload({"hour"}, kNoon, kNoon);
        EXPECT_TRUE(receives(bigEndian ? 1 : 0, frame(payload, bigEndian)));
        EXPECT_TRUE(hasSaid("marker sent: " + payload));
        said_.clear();
    }
}

TEST_F(MarkerSenderTest, sends_damage_as_it_is) {
    startSender();
    sender_->obey(MarkerBytes{{0, 1, 255}});
    sender_->obey(MarkerText{"{"});
    EXPECT_TRUE(receives(0, std::string("\0\1\xff", 3) + frame("{")));
    EXPECT_TRUE(hasSaid("marker bytes sent: 00 01 ff"));
}

TEST_F(MarkerSenderTest, does_not_connect_before_there_is_something_to_send) {
    startSender();
    const auto later = std::chrono::steady_clock::now() + std::chrono::milliseconds(100);
    ASSERT_TRUE(meanwhile([&] { return std::chrono::steady_clock::now() > later; }));
    EXPECT_TRUE(sockets_.empty());
    EXPECT_TRUE(said_.empty());
    sender_->obey(MarkerText{text("a")});
    EXPECT_TRUE(receives(0, frame(text("a"))));
}

TEST_F(MarkerSenderTest, connects_again_after_a_drop_and_sends_what_came_meanwhile) {
    startSender();
    sender_->obey(MarkerText{text("a")});
    ASSERT_TRUE(receives(0, frame(text("a"))));
    sender_->obey(MarkerLinkDrop{});
    sender_->obey(MarkerText{text("b")});
    EXPECT_TRUE(receives(1, frame(text("b"))));
}

TEST_F(MarkerSenderTest, connects_again_after_the_other_side_closed) {
    startSender();
    sender_->obey(MarkerText{text("a")});
    ASSERT_TRUE(receives(0, frame(text("a"))));
    sockets_[0]->close();
    ASSERT_TRUE(meanwhile([&] { return sockets_.size() == 2; }));
    EXPECT_TRUE(hasSaid("marker link: not connected: closed"));
    sender_->obey(MarkerText{text("b")});
    EXPECT_TRUE(receives(1, frame(text("b"))));
}

TEST_F(MarkerSenderTest, keeps_the_last_hundred_for_a_server_that_is_not_there_yet) {
    server_.close();
    startSender();
    std::string expected;
    for (int i = 0; i < 103; ++i) {
        sender_->obey(MarkerText{text(std::to_string(i))});
        if (i >= 3) expected += frame(text(std::to_string(i)));
    }
    ASSERT_TRUE(meanwhile([&] { return said_.size() > 3; }));
    EXPECT_EQ(
        std::count(said_.begin(), said_.end(), "marker lost, having waited for a link too long"),
        3);
    listen(options_.port);
    EXPECT_TRUE(receives(0, expected));
}

TEST_F(MarkerSenderTest, sends_the_markers_of_the_programme_when_the_clock_reaches_them) {
    options_.source = MarkerSource::demo;
    clock_.set(after(kNoon, -0.5));
    startSender();
    ASSERT_TRUE(meanwhile([&] { return sockets_.size() == 1; }));
    clock_.set(kNoon);
    clock_.set(after(kNoon, 0.001));
    std::string expected;
    for (const Cue& cue : Rundown(1).cues(kNoon, after(kNoon, 0.001)))
        expected += frame(markerPayload(cue.marker, kNoon, after(kNoon, 0.001)));
    ASSERT_TRUE(receives(0, expected));
    EXPECT_NE(expected.find("\"hour\""), std::string::npos);
    EXPECT_NE(expected.find("\"mic_start\""), std::string::npos);
}

TEST_F(MarkerSenderTest, passes_over_what_a_step_of_the_clock_skipped) {
    options_.source = MarkerSource::demo;
    clock_.set(after(kNoon, -600));
    startSender();
    ASSERT_TRUE(meanwhile([&] { return sockets_.size() == 1; }));
    clock_.set(after(kNoon, 0.001));
    const auto later = std::chrono::steady_clock::now() + std::chrono::milliseconds(50);
    ASSERT_TRUE(meanwhile([&] { return std::chrono::steady_clock::now() > later; }));
    EXPECT_EQ(received_[0], "");
    sender_->obey(MarkerText{text("x")});
    EXPECT_TRUE(receives(0, frame(text("x"))));
}

TEST_F(MarkerSenderTest, follows_a_script) {
    options_.source = MarkerSource::script;
    options_.script = {
        {0.05, MarkerText{text("a")}}, {0.1, MarkerLinkDrop{}}, {0.3, MarkerText{text("b")}}};
    startSender();
    EXPECT_TRUE(receives(0, frame(text("a"))));
    EXPECT_TRUE(receives(1, frame(text("b"))));
}

TEST_F(MarkerSenderTest, sends_everything_before_it_ends) {
    startSender();
    sender_->obey(MarkerText{text("a")});
    ASSERT_TRUE(receives(0, frame(text("a"))));
    const std::string payload(60'000, 'x');
    for (int i = 0; i < 5; ++i) sender_->obey(MarkerText{payload});
    sender_->end();
    EXPECT_TRUE(
        meanwhile([&] { return received_[0].size() == frame(text("a")).size() + 5 * 60'004; }));
}

}  // namespace
}  // namespace sonavault::automation
