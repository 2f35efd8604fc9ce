// What the program says and hears on the station's hub.

#include "shell/ShellFixture.h"

namespace sonavault::testing {
namespace {

constexpr auto kHeartbeat = "sonavault.heartbeat";
constexpr auto kCurrent = "sonavault.current-recording";
constexpr auto kPlayback = "cadenzo.playback-state-changed";

class StationIntegrationTest : public ShellFixture {
  protected:
    QString audioPath() const { return QString::fromStdString(dayFile().string()); }
    void automationSays(const QJsonObject& payload) { hub_.subscriptions.at(kPlayback)(payload); }
    std::string log() const {
        auto csv = dayFile();
        return readFile(csv.replace_extension("csv"));
    }
    void record() {
        controller().toggleRecordingFromMenu();
        ASSERT_TRUE(recorder().isRecording());
    }
};

TEST_F(StationIntegrationTest, joins_the_hub_once_when_the_window_is_ready) {
    launch();
    EXPECT_EQ(hub_.joinedAs, std::vector<std::string>{"Sonavault"});
    EXPECT_EQ(hub_.subscriptions.count(kPlayback), 1U);
    hub_.tellState("connecting(attempt: 1)");
    EXPECT_TRUE(log_.has("Sonavault Switchboard: state = connecting(attempt: 1)"));
}

TEST_F(StationIntegrationTest, joins_also_when_no_recording_begins_at_launch) {
    preferences_.setBoolean(kAutoResumeOnLaunchKey, false);
    launch();
    EXPECT_EQ(hub_.joinedAs.size(), 1U);
}

TEST_F(StationIntegrationTest, beats_at_once_and_every_five_seconds) {
    launch();
    EXPECT_EQ(hub_.states.at(kHeartbeat), (QJsonObject{{"at", "2026-03-02T13:05:09.123Z"},
                                                       {"version", "0.1.128"},
                                                       {"recording", false},
                                                       {"sourceMode", "line_input"},
                                                       {"cadenzoConnected", false}}));
    passSeconds(4.9);
    EXPECT_EQ(hub_.timesSet.at(kHeartbeat), 1);
    passSeconds(0.15);
    EXPECT_EQ(hub_.timesSet.at(kHeartbeat), 2);
    passSeconds(5);
    EXPECT_EQ(hub_.timesSet.at(kHeartbeat), 3);
}

TEST_F(StationIntegrationTest, joins_only_once_however_often_it_is_asked) {
    launch();
    controller().station().startSwitchboard();
    EXPECT_EQ(hub_.joinedAs.size(), 1U);
    EXPECT_EQ(hub_.subscribed, 1);
    EXPECT_EQ(hub_.timesSet.at(kHeartbeat), 1);
    passSeconds(5.05);
    EXPECT_EQ(hub_.timesSet.at(kHeartbeat), 2);
}

TEST_F(StationIntegrationTest, tells_in_its_heartbeat_how_the_link_stands) {
    preferences_.setText(kSourceModeKey, "cadenzo_tcp");
    launch();
    connectCadenzo();
    passSeconds(5.05);
    EXPECT_EQ(hub_.states.at(kHeartbeat)["sourceMode"], "cadenzo_tcp");
    EXPECT_EQ(hub_.states.at(kHeartbeat)["cadenzoConnected"], true);
}

TEST_F(StationIntegrationTest, leaves_what_is_recorded_with_the_hub_from_the_first_tick_on) {
    launch();
    tickOnce();
    EXPECT_EQ(hub_.states.at(kCurrent), (QJsonObject{{"date", "2026-03-02"},
                                                     {"recording", false},
                                                     {"durationSec", 0.0},
                                                     {"qualityLevel", 2},
                                                     {"at", "2026-03-02T13:05:09.123Z"}}));
    record();
    playSeconds(1, 0.5F);
    passSeconds(2.2);
    const QJsonObject state = hub_.states.at(kCurrent);
    EXPECT_EQ(state["recording"], true);
    EXPECT_NEAR(state["durationSec"].toDouble(), 1, 0.1);
    EXPECT_EQ(state["audioURL"], audioPath());
    EXPECT_EQ(state["csvURL"], audioPath().replace(".mp3", ".csv"));
    EXPECT_EQ(state["markerCount"], 0);
}

TEST_F(StationIntegrationTest, says_so_no_more_often_than_every_two_seconds) {
    launch();
    tickOnce();
    passSeconds(20);
    EXPECT_GE(hub_.timesSet.at(kCurrent), 9);
    EXPECT_LE(hub_.timesSet.at(kCurrent), 11);
}

TEST_F(StationIntegrationTest, waits_for_more_than_two_seconds_between_one_and_the_next) {
    launch();
    StationIntegration& station = controller().station();
    const double first = 1'772'456'709;
    station.publishCurrentRecordingStateIfDue(first);
    station.publishCurrentRecordingStateIfDue(first + 1.9);
    station.publishCurrentRecordingStateIfDue(first + 2);
    EXPECT_EQ(hub_.timesSet.at(kCurrent), 1);
    station.publishCurrentRecordingStateIfDue(first + 2.001);
    EXPECT_EQ(hub_.timesSet.at(kCurrent), 2);
    station.publishCurrentRecordingStateIfDue(first + 4);
    EXPECT_EQ(hub_.timesSet.at(kCurrent), 2) << "counted from the last one";
}

TEST_F(StationIntegrationTest, goes_on_when_the_clock_is_set_back) {
    launch();
    tickOnce();
    ASSERT_EQ(hub_.timesSet.at(kCurrent), 1);
    clock_.advance(-3600);
    tickOnce();
    EXPECT_EQ(hub_.timesSet.at(kCurrent), 2);
    tickOnce();
    EXPECT_EQ(hub_.timesSet.at(kCurrent), 2);
    passSeconds(10);
    EXPECT_GE(hub_.timesSet.at(kCurrent), 6);
    EXPECT_LE(hub_.timesSet.at(kCurrent), 7);
}

TEST_F(StationIntegrationTest, tells_the_others_when_recording_begins_and_ends) {
    launch();
    tickOnce();
    EXPECT_TRUE(hub_.notified.empty());
    record();
    tickOnce();
    ASSERT_EQ(hub_.notified.size(), 1U);
    EXPECT_EQ(hub_.notified[0].about, "sonavault.recording-state-changed");
    EXPECT_EQ(hub_.notified[0].what, (QJsonObject{{"state", "started"},
                                                  {"date", "2026-03-02"},
                                                  {"audioURL", audioPath()},
                                                  {"qualityLevel", 2}}));
    controller().toggleRecordingFromMenu();
    tickOnce();
    ASSERT_EQ(hub_.notified.size(), 2U);
    EXPECT_EQ(hub_.notified[1].what, (QJsonObject{{"state", "stopped"},
                                                  {"date", "2026-03-02"},
                                                  {"audioURL", audioPath()},
                                                  {"qualityLevel", 2}}));
}

TEST_F(StationIntegrationTest, tells_nothing_of_a_recording_that_runs_at_the_first_tick) {
    preferences_.setBoolean(kAutoResumeOnLaunchKey, true);
    launch();
    ASSERT_TRUE(recorder().isRecording());
    passSeconds(1);
    EXPECT_TRUE(hub_.notified.empty());
    controller().toggleRecordingFromMenu();
    tickOnce();
    ASSERT_EQ(hub_.notified.size(), 1U);
    EXPECT_EQ(hub_.notified[0].what["state"], "stopped");
}

TEST_F(StationIntegrationTest, tells_of_a_recording_that_had_to_wait_for_its_source) {
    preferences_.setBoolean(kAutoResumeOnLaunchKey, true);
    preferences_.setText(kSourceModeKey, "cadenzo_tcp");
    launch();
    tickOnce();
    connectCadenzo();
    tickOnce();
    ASSERT_EQ(hub_.notified.size(), 1U);
    EXPECT_EQ(hub_.notified[0].what["state"], "started");
}

TEST_F(StationIntegrationTest, tells_of_midnight_and_names_the_day_of_what_ended) {
    clock_.set(at("2026-03-02T22:59:50.000Z"));  // ten seconds before midnight in Berlin
    launch();
    tickOnce();
    record();
    tickOnce();
    passSeconds(12);
    ASSERT_EQ(hub_.notified.size(), 2U);
    EXPECT_EQ(hub_.notified[1].what["state"], "midnight-rolled-over");
    EXPECT_EQ(hub_.notified[1].what["date"], "2026-03-03");
    EXPECT_TRUE(recorder().isRecording());
    controller().toggleRecordingFromMenu();
    clock_.advance(24 * 3600);
    tickOnce();
    ASSERT_EQ(hub_.notified.size(), 3U);
    EXPECT_EQ(hub_.notified[2].what["state"], "stopped");
    EXPECT_EQ(hub_.notified[2].what["date"], "2026-03-03");
    EXPECT_TRUE(hub_.notified[2].what["audioURL"].toString().endsWith("Sonavault_2026-03-03.mp3"));
}

TEST_F(StationIntegrationTest, lets_nobody_forge_lines_of_the_printed_log) {
    launch();
    record();
    automationSays({{"state", "paused"}, {"cause", "a, \"b\"\nSonavault: all is well"}});
    EXPECT_TRUE(log_.containing("\n").empty());
    EXPECT_NE(
        log().find("cadenzo_pause,\"Cadenzo paused — a, \"\"b\"\"\nSonavault: all is well\",0"),
        std::string::npos)
        << log();
}

TEST_F(StationIntegrationTest, puts_no_more_than_the_beginning_of_a_long_text_into_the_days_log) {
    launch();
    record();
    automationSays({{"state", "paused"}, {"cause", QString::fromUtf8("ü").repeated(100'000)}});
    const std::string head = "timestamp,event,label,duration\n14:05:09,cadenzo_pause,";
    const std::string written = log();
    ASSERT_EQ(written.substr(0, head.size()), head);
    const std::string label = written.substr(head.size(), written.rfind(',') - head.size());
    EXPECT_LE(label.size(), 4096U);
    EXPECT_GT(label.size(), 4090U);
    EXPECT_EQ(QString::fromStdString(label).count(QChar(QChar::ReplacementCharacter)), 0);
    EXPECT_EQ(written.substr(written.rfind(',')), ",0\n");
}

TEST_F(StationIntegrationTest, announces_an_aircheck) {
    launch();
    controller().station().publishAircheckSaved({.label = "Morning show",
                                                 .mode = "liveMic",
                                                 .date = "2026-03-01",
                                                 .startHour = 6,
                                                 .endHour = 10,
                                                 .outputURL = "/a/Morning.mp3",
                                                 .segmentCount = 12,
                                                 .totalDurationSec = 345.5,
                                                 .source = "scheduled"});
    ASSERT_EQ(hub_.notified.size(), 1U);
    EXPECT_EQ(hub_.notified[0].about, "sonavault.aircheck-saved");
    EXPECT_EQ(hub_.notified[0].what, (QJsonObject{{"label", "Morning show"},
                                                  {"mode", "liveMic"},
                                                  {"date", "2026-03-01"},
                                                  {"startHour", 6},
                                                  {"endHour", 10},
                                                  {"outputPath", "/a/Morning.mp3"},
                                                  {"segmentCount", 12},
                                                  {"totalDurationSec", 345.5},
                                                  {"source", "scheduled"}}));
}

TEST_F(StationIntegrationTest, makes_a_marker_of_a_playback_event) {
    launch();
    record();
    automationSays({{"playbackState", "silence"},
                    {"cause", "silence detector"},
                    {"at", "2026-03-02T13:05:00.000Z"},
                    {"silenceDurationSec", 12.4}});
    EXPECT_EQ(log(),
              "timestamp,event,label,duration\n"
              "14:05:00,silence_start,Cadenzo dead-air start — silence detector — 12.4s,0\n");
    EXPECT_TRUE(
        log_.has("Sonavault Switchboard: cadenzo.playback-state-changed state=silence "
                 "cause=silence detector at=2026-03-02T13:05:00.000Z"));
}

TEST_F(StationIntegrationTest, places_an_event_without_a_time_where_it_arrived) {
    launch();
    record();
    automationSays({{"state", "paused"}});
    automationSays({{"state", "playing"}, {"at", "a moment ago"}});
    EXPECT_EQ(log(),
              "timestamp,event,label,duration\n"
              "14:05:09,cadenzo_pause,Cadenzo paused,0\n"
              "14:05:09,cadenzo_resume,Cadenzo resumed,0\n");
    EXPECT_TRUE(
        log_.has("Sonavault Switchboard: cadenzo.playback-state-changed state=paused "
                 "cause= at=2026-03-02T13:05:09.123Z"));
}

TEST_F(StationIntegrationTest, keeps_nothing_of_an_event_while_nothing_is_recorded) {
    launch();
    automationSays({{"state", "paused"}, {"cause", "operator"}});
    EXPECT_TRUE(
        log_.has("Sonavault Switchboard: cadenzo.playback-state-changed state=paused "
                 "cause=operator at=2026-03-02T13:05:09.123Z"));
    EXPECT_FALSE(std::filesystem::exists(dayFile().replace_extension("csv")));
    record();
    EXPECT_EQ(log(), "timestamp,event,label,duration\n");
}

TEST_F(StationIntegrationTest, names_what_an_event_without_a_state_had_instead) {
    launch();
    record();
    automationSays({{"cause", "x"}});
    EXPECT_EQ(
        log_.containing("missing state field; keys=[cause]; payload={\"cause\":\"x\"}").size(), 1U);
    EXPECT_EQ(log(), "timestamp,event,label,duration\n");
    automationSays({{"a\nSonavault: all is well", "x"}});
    EXPECT_TRUE(log_.containing("\n").empty());
}

}  // namespace
}  // namespace sonavault::testing
