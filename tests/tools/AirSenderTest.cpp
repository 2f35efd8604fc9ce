#include "automation/AirSender.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTcpServer>
#include <optional>

#include "links/HeardCallbacks.h"
#include "support/Eventually.h"
#include "support/RecordedLog.h"

namespace sonavault::automation {
namespace {

using sonavault::testing::eventually;
using sonavault::testing::eventuallyServingEvents;
using sonavault::testing::HeardCallbacks;
using sonavault::testing::RecordedLog;

/// A sender and the server it sends to.
class AirSenderTest : public ::testing::Test {
  protected:
    AirSenderTest() {
        heard_.listenTo(server_);
        server_.start();
        options_.port = server_.listeningPort();
        options_.signal.kind = SignalKind::tone;
    }

    void startSender() {
        sender_ = std::make_unique<AirSender>(
            options_, clock_, [this](const std::string& line) { said_.push_back(line); });
        sender_->start([this](int exitCode) { exitCode_ = exitCode; });
    }

    bool hears(std::size_t samples) {
        return eventuallyServingEvents([&] { return heard_.sampleCount() >= samples; });
    }

    RecordedLog log_;
    HeardCallbacks heard_;
    SVAudioServer server_{log_, 0};
    SystemClock clock_;
    Options options_;
    std::vector<std::string> said_;
    std::optional<int> exitCode_;
    std::unique_ptr<AirSender> sender_;
};

TEST_F(AirSenderTest, sends_the_signal_in_the_format_it_announced) {
    options_.format = {22050, 3, true};
    options_.signal.sampleRate = 22050;
    startSender();
    ASSERT_TRUE(hears(3 * 4410));
    EXPECT_EQ(heard_.events().front(), "handshake 22050 Hz, 3 ch, Float32, interleaved");
    std::vector<float> expected(4410);
    makeSignal(options_.signal)->fill(expected, {});
    const auto samples = heard_.samples();
    for (std::size_t i = 0; i < expected.size(); ++i)
        ASSERT_EQ(samples[3 * i + 1], expected[i]) << i;
}

TEST_F(AirSenderTest, sends_no_more_than_real_time_allows) {
    QElapsedTimer time;
    time.start();
    startSender();
    ASSERT_TRUE(hears(2 * 44100 / 2));
    EXPECT_GE(time.elapsed(), 495);
    EXPECT_LE(static_cast<double>(sender_->framesSent()),
              static_cast<double>(time.nsecsElapsed()) * 44100e-9);
}

TEST_F(AirSenderTest, comes_back_with_a_new_handshake_after_a_drop) {
    // A busy machine may need a while before the first samples are there.
    options_.plan.add({AirState::dropped, 1, 0.2});
    startSender();
    ASSERT_TRUE(eventuallyServingEvents([&] { return heard_.events().size() >= 5; }));
    const std::string handshake = "handshake 44100 Hz, 2 ch, Float32, interleaved";
    EXPECT_EQ(heard_.events(),
              (std::vector<std::string>{handshake, "samples", "disconnect", handshake, "samples"}));
}

TEST_F(AirSenderTest, stays_connected_through_a_stall_and_does_not_make_it_good) {
    options_.plan.add({AirState::stalled, 0.1, 0.3});
    QElapsedTimer time;
    time.start();
    startSender();
    ASSERT_TRUE(hears(2 * 8820));
    EXPECT_GE(time.elapsed(), 495);
    EXPECT_EQ(heard_.events().size(), 2U);
}

TEST_F(AirSenderTest, obeys_commands) {
    startSender();
    ASSERT_TRUE(hears(1));
    sender_->obey({Command::Kind::drop});
    ASSERT_TRUE(eventuallyServingEvents([&] { return heard_.disconnects() == 1; }));
    ASSERT_TRUE(eventuallyServingEvents([&] { return heard_.lastEvent() == "samples"; }));
    sender_->obey({Command::Kind::stall, 1000});
    sender_->obey({Command::Kind::resume});
    ASSERT_TRUE(hears(heard_.sampleCount() + 5000));
    sender_->obey({Command::Kind::quit});
    EXPECT_EQ(exitCode_, 0);
    EXPECT_TRUE(eventually([&] { return heard_.disconnects() == 2; }));
}

TEST_F(AirSenderTest, connects_once_the_server_listens) {
    server_.stop();
    startSender();
    ASSERT_TRUE(eventuallyServingEvents([&] { return !said_.empty(); }));
    HeardCallbacks heard;
    SVAudioServer later(log_, options_.port);
    heard.listenTo(later);
    later.start();
    EXPECT_TRUE(eventuallyServingEvents([&] { return heard.sampleCount() > 0; }));
    EXPECT_FALSE(exitCode_);
}

TEST_F(AirSenderTest, connects_again_after_a_newer_sender_displaced_it) {
    startSender();
    ASSERT_TRUE(hears(1));
    QTcpSocket other;
    other.connectToHost("127.0.0.1", options_.port);
    ASSERT_TRUE(eventuallyServingEvents([&] { return heard_.disconnects() == 1; }));
    EXPECT_TRUE(eventuallyServingEvents([&] { return heard_.lastEvent() == "samples"; }));
}

TEST_F(AirSenderTest, ends_after_its_duration) {
    options_.durationSec = 0.2;
    startSender();
    ASSERT_TRUE(eventuallyServingEvents([&] { return exitCode_.has_value(); }));
    EXPECT_EQ(*exitCode_, 0);
    EXPECT_TRUE(eventually([&] { return heard_.disconnects() == 1; }));
    EXPECT_EQ(heard_.sampleCount(), 2 * static_cast<std::size_t>(sender_->framesSent()));
}

TEST_F(AirSenderTest, ends_with_its_only_connection_when_told_to_connect_once) {
    options_.once = true;
    startSender();
    ASSERT_TRUE(hears(1));
    server_.stop();
    ASSERT_TRUE(eventuallyServingEvents([&] { return exitCode_.has_value(); }));
    EXPECT_EQ(*exitCode_, 0);
}

TEST_F(AirSenderTest, fails_when_told_to_connect_once_and_nobody_listens) {
    options_.once = true;
    server_.stop();
    startSender();
    ASSERT_TRUE(eventuallyServingEvents([&] { return exitCode_.has_value(); }));
    EXPECT_EQ(*exitCode_, 1);
}

}  // namespace
}  // namespace sonavault::automation
