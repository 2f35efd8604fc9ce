#include "shell/PlaybackEvent.h"

#include <gtest/gtest.h>

#include <QJsonArray>

#include "support/ScopedTimeZone.h"

namespace sonavault {
namespace {

std::string labelOf(const QJsonObject& payload) {
    const auto event = PlaybackEvent::from(payload);
    EXPECT_TRUE(event);
    return event ? event->markerLabel : "";
}

TEST(PlaybackEvent, becomes_a_marker_by_its_state) {
    const struct {
        const char* state;
        const char* type;
        const char* label;
    } kStates[] = {{"silence", "silence_start", "Cadenzo dead-air start"},
                   {"recovered", "silence_end", "Cadenzo dead-air recovered"},
                   {"paused", "cadenzo_pause", "Cadenzo paused"},
                   {"playing", "cadenzo_resume", "Cadenzo resumed"},
                   {"stopped", "cadenzo_stopped", "Cadenzo stopped"},
                   {"buffering", "cadenzo_state", "Cadenzo buffering"},
                   {"Paused", "cadenzo_state", "Cadenzo Paused"},
                   {"", "cadenzo_state", "Cadenzo "}};
    for (const auto& expected : kStates) {
        const auto event = PlaybackEvent::from({{"playbackState", expected.state}});
        ASSERT_TRUE(event) << expected.state;
        EXPECT_EQ(event->markerType, expected.type);
        EXPECT_EQ(event->markerLabel, expected.label);
    }
}

TEST(PlaybackEvent, takes_the_second_key_when_the_first_is_no_text) {
    const auto event = PlaybackEvent::from({{"playbackState", 3}, {"state", "paused"}});
    ASSERT_TRUE(event);
    EXPECT_EQ(event->state, "paused");
    EXPECT_EQ(PlaybackEvent::from({{"playbackState", "playing"}, {"state", "paused"}})->state,
              "playing");
}

TEST(PlaybackEvent, is_none_without_a_state) {
    EXPECT_FALSE(PlaybackEvent::from({}));
    EXPECT_FALSE(PlaybackEvent::from({{"state", QJsonArray{"paused"}}}));
    EXPECT_EQ(missingStateLine({{"cause", "x"}, {"at", 1}}),
              "Sonavault Switchboard: cadenzo.playback-state-changed missing state field; "
              "keys=[at, cause]; payload={\"at\":1,\"cause\":\"x\"}");
}

TEST(PlaybackEvent, tells_cause_duration_and_resumption_in_its_label) {
    EXPECT_EQ(
        labelOf(
            {{"state", "silence"}, {"cause", "silence detector"}, {"silenceDurationSec", 12.4}}),
        "Cadenzo dead-air start — silence detector — 12.4s");
    EXPECT_EQ(labelOf({{"state", "paused"}, {"resumeAt", "15:00"}, {"durationSec", 30}}),
              "Cadenzo paused — 30.0s — resumeAt=15:00");
}

TEST(PlaybackEvent, copies_the_cause_into_its_label_as_it_stands) {
    EXPECT_EQ(labelOf({{"state", "paused"}, {"cause", "by \"Ann\",\nat noon"}}),
              "Cadenzo paused — by \"Ann\",\nat noon");
}

TEST(PlaybackEvent, shows_only_the_first_of_two_durations) {
    EXPECT_EQ(labelOf({{"state", "silence"}, {"silenceDurationSec", 12}, {"durationSec", 99}}),
              "Cadenzo dead-air start — 12.0s");
    EXPECT_EQ(labelOf({{"state", "silence"}, {"silenceDurationSec", "12"}, {"durationSec", 99}}),
              "Cadenzo dead-air start — 99.0s");
}

TEST(PlaybackEvent, passes_over_what_is_of_another_type) {
    EXPECT_EQ(labelOf({{"state", "playing"}, {"cause", 7}, {"resumeAt", true}, {"at", 5}}),
              "Cadenzo resumed");
    EXPECT_FALSE(PlaybackEvent::from({{"state", "playing"}, {"at", 5}})->at);
}

TEST(ClockTimeFromIso, is_local_whatever_the_zone_of_the_text) {
    const testing::ScopedTimeZone zone("Europe/Berlin");
    EXPECT_EQ(hmsClockTimeFromIso("2026-05-08T14:03:07.250Z"), "16:03:07");
    EXPECT_EQ(hmsClockTimeFromIso("2026-05-08T14:03:07.999+02:00"), "14:03:07");
    EXPECT_EQ(hmsClockTimeFromIso("2026-01-08T23:30:00.000Z"), "00:30:00");
}

TEST(ClockTimeFromIso, needs_no_fraction) {
    const testing::ScopedTimeZone zone("Europe/Berlin");
    EXPECT_EQ(hmsClockTimeFromIso("2026-05-08T14:03:07Z"), "16:03:07");
    EXPECT_EQ(hmsClockTimeFromIso("2026-05-08T14:03:07-05:00"), "21:03:07");
}

TEST(ClockTimeFromIso, is_none_of_what_is_no_time) {
    for (const auto* text :
         {"", "now", "14:03:07", "2026-05-08", "2026-13-08T14:03:07Z", "2026-05-08T14:03:07",
          "2026-05-08T14:03:07.Z", "........................"})
        EXPECT_EQ(hmsClockTimeFromIso(text), std::nullopt) << text;
}

}  // namespace
}  // namespace sonavault
