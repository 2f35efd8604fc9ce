// The station integration without the program around it: no recorder, no window, facts as the test
// gives them.

#include "hub/HubThread.h"
#include "hub/SwitchboardClientImpl.h"
#include "hub/SystemHubNetwork.h"
#include "shell/ForeignText.h"
#include "shell/ShellFixture.h"
#include "support/Eventually.h"

namespace sonavault::testing {
namespace {

constexpr auto kHeartbeat = "sonavault.heartbeat";
constexpr auto kCurrent = "sonavault.current-recording";

class StationIntegrationAloneTest : public ::testing::Test {
  protected:
    std::unique_ptr<StationIntegration> makeStation(StationHub& hub) {
        return std::make_unique<StationIntegration>(
            hub, clock_, log_, preferences_, timers_.make(),
            StationIntegration::Facts{.isRecording = [this] { return isRecording_; },
                                      .recorder = [] { return nullptr; },
                                      .todaysMarkerCount = [this] { return markerCount_; }});
    }

    TempFolder temp_;
    const ScopedTimeZone zone_{"Europe/Berlin"};
    ManualClock clock_{WallTime(std::chrono::milliseconds(1'772'456'709'123))};
    ManualTimers timers_{clock_};
    RecordedLog log_;
    Preferences preferences_{temp_ / "standard.conf"};
    bool isRecording_ = false;
    std::optional<int> markerCount_;
    RecordedHub hub_;
    std::unique_ptr<StationIntegration> station_ = makeStation(hub_);
};

TEST_F(StationIntegrationAloneTest, beats_without_a_recorder) {
    station_->startSwitchboard();
    EXPECT_EQ(hub_.states.at(kHeartbeat), (QJsonObject{{"at", "2026-03-02T13:05:09.123Z"},
                                                       {"version", "0.1.128"},
                                                       {"recording", false},
                                                       {"sourceMode", "unknown"},
                                                       {"cadenzoConnected", false}}));
}

TEST_F(StationIntegrationAloneTest, tells_in_its_heartbeat_that_it_records) {
    isRecording_ = true;
    station_->publishSwitchboardHeartbeat();
    EXPECT_EQ(hub_.states.at(kHeartbeat)["recording"], true);
}

TEST_F(StationIntegrationAloneTest, keeps_its_rhythm_after_a_beat_that_was_late) {
    station_->startSwitchboard();
    clock_.advance(0.3);  // the main thread was busy: the timer goes off later than it was to
    timers_.pass(5);
    EXPECT_EQ(hub_.timesSet.at(kHeartbeat), 2);
    timers_.pass(4.699);
    EXPECT_EQ(hub_.timesSet.at(kHeartbeat), 2);
    timers_.pass(0.002);
    EXPECT_EQ(hub_.timesSet.at(kHeartbeat), 3);
}

TEST_F(StationIntegrationAloneTest, beats_every_five_seconds_though_the_clock_is_set) {
    station_->startSwitchboard();
    int beats = 1;
    for (const double step : {-3600.0, 3600.0, 86400.0, -1.0}) {
        clock_.advance(step);
        timers_.pass(5);
        EXPECT_EQ(hub_.timesSet.at(kHeartbeat), ++beats) << step;
        timers_.pass(4.9);
        EXPECT_EQ(hub_.timesSet.at(kHeartbeat), beats) << step;
        timers_.pass(0.1);
        EXPECT_EQ(hub_.timesSet.at(kHeartbeat), ++beats) << step;
    }
}

TEST_F(StationIntegrationAloneTest, has_no_length_and_no_file_to_tell_of_without_a_recorder) {
    station_->publishCurrentRecordingState();
    EXPECT_EQ(hub_.states.at(kCurrent), (QJsonObject{{"date", "2026-03-02"},
                                                     {"recording", false},
                                                     {"durationSec", 0.0},
                                                     {"qualityLevel", 2},
                                                     {"at", "2026-03-02T13:05:09.123Z"}}));
}

TEST_F(StationIntegrationAloneTest, tells_how_many_markers_today_has) {
    markerCount_ = 7;
    station_->publishCurrentRecordingState();
    EXPECT_EQ(hub_.states.at(kCurrent)["markerCount"], 7);
}

TEST_F(StationIntegrationAloneTest, tells_of_a_beginning_and_an_end_without_a_file_by_their_dates) {
    preferences_.setInteger("SVQualityLevel", 4);
    station_->detectAndPublishRecordingStateTransition();
    isRecording_ = true;
    station_->detectAndPublishRecordingStateTransition();
    ASSERT_EQ(hub_.notified.size(), 1U);
    EXPECT_EQ(hub_.notified[0].what,
              (QJsonObject{{"state", "started"}, {"date", "2026-03-02"}, {"qualityLevel", 4}}));
    isRecording_ = false;
    clock_.advance(24 * 3600);
    station_->detectAndPublishRecordingStateTransition();
    ASSERT_EQ(hub_.notified.size(), 2U);
    EXPECT_EQ(hub_.notified[1].what,
              (QJsonObject{{"state", "stopped"}, {"date", "2026-03-02"}, {"qualityLevel", 4}}));
}

TEST_F(StationIntegrationAloneTest, only_prints_an_event_without_a_recorder) {
    isRecording_ = true;
    station_->handleCadenzoPlaybackStateChanged({{"state", "paused"}});
    EXPECT_TRUE(
        log_.has("Sonavault Switchboard: cadenzo.playback-state-changed state=paused "
                 "cause= at=2026-03-02T13:05:09.123Z"));
}

TEST_F(StationIntegrationAloneTest, prints_no_more_than_the_beginning_of_what_others_wrote) {
    const std::string most(kMostBytesOfForeignText, 'x');
    const QString longText(1'000'000, 'x');
    station_->handleCadenzoPlaybackStateChanged(
        {{"state", longText}, {"cause", longText}, {"at", longText}});
    EXPECT_TRUE(log_.has("Sonavault Switchboard: cadenzo.playback-state-changed state=" + most +
                         " cause=" + most + " at=" + most));
    station_->handleCadenzoPlaybackStateChanged({{longText, 1}});
    const auto lines = log_.containing("missing state field; keys=[" + most + "]; payload={\"xxx");
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_LT(lines[0].size(), 2 * kMostBytesOfForeignText + 200);
    station_->startSwitchboard();
    hub_.tellState(longText.toStdString());
    EXPECT_TRUE(log_.has("Sonavault Switchboard: state = " + most));
}

/// The station's hub over a client of the test's own.
class ClientHub final : public StationHub {
  public:
    ClientHub(SwitchboardClientImpl& client, Executor& queue) : client_(client), queue_(queue) {}

    void join(const std::string& name, std::function<void(const std::string&)>) override {
        client_.connect(name, &queue_);
    }
    void subscribe(const std::string& topic,
                   std::function<void(const QJsonObject&)> handler) override {
        client_.subscribe(topic, [handler = std::move(handler)](const SwitchboardMessage& message) {
            handler(message.payload);
        });
    }
    void notify(const std::string& topic, const QJsonObject& payload) override {
        client_.notifyTopic(topic, payload);
    }
    void stateSet(const std::string& key, const QJsonObject& value) override {
        client_.stateSet(key, value);
    }

  private:
    SwitchboardClientImpl& client_;
    Executor& queue_;
};

TEST_F(StationIntegrationAloneTest, goes_on_publishing_without_a_hub_to_no_effect) {
    using State = SwitchboardState;
    HubThread hub;
    hub.obey("refuse");
    ManualQueue callbacks;
    SwitchboardClientImpl client({.clock = clock_,
                                  .mainQueue = callbacks,
                                  .network = std::make_unique<SystemHubNetwork>(),
                                  .socketPath = hub.path()});
    ClientHub way(client, callbacks);
    const auto station = makeStation(way);
    station->startSwitchboard();
    ASSERT_TRUE(eventually([&] { return client.currentState().is<State::Reconnecting>(); }));
    for (int second = 0; second < 60; second += 3) {
        clock_.advance(3);
        station->publishCurrentRecordingStateIfDue(secondsSince1970(clock_.now()));
    }
    hub.obey("accept");
    ASSERT_TRUE(eventually([&] { return client.currentState().is<State::Connected>(); }));
    // What comes now is the first that the hub hears of it.
    station->publishCurrentRecordingState();
    ASSERT_TRUE(eventually([&] { return hub.heard(kCurrent); }));
    EXPECT_EQ(hub.containing(kCurrent).size(), 1U);
    EXPECT_FALSE(hub.heard(kHeartbeat));
    client.disconnect();
}

}  // namespace
}  // namespace sonavault::testing
