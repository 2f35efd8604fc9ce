#include "recorder/MarkerIngestion.h"

#include <gmock/gmock.h>

#include "recorder/RecorderFixture.h"
#include "support/ScarceDescriptors.h"

namespace sonavault {
namespace {

using testing::at;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr auto kHeader = "timestamp,event,label,duration\n";

class Markers : public testing::RecorderFixture {
  protected:
    Markers() { useLink(); }

    static MarkerWire marker(const std::string& type, const std::string& clockTime = "14:05:09",
                             std::optional<std::string> label = {}) {
        return {.type = type,
                .clockTime = clockTime,
                .wallClockIso8601 = "2026-03-02T13:05:09.100Z",
                .label = std::move(label)};
    }

    std::string log(const std::string& date = "2026-03-02") const {
        return testing::readFile(dayFile("csv", date));
    }
    int rows() const {
        const std::string text = log();
        return static_cast<int>(std::count(text.begin(), text.end(), '\n')) - 1;
    }
    std::vector<std::string> said() const { return log_.containing("marker"); }
    /// What was said of markers since the links were started.
    void listen() { log_.clear(); }
};

// Rows

TEST_F(Markers, begins_the_days_log_and_writes_the_row_while_nothing_is_recorded) {
    tell(marker("hour"));
    EXPECT_EQ(log(), std::string(kHeader) + "14:05:09,hour,,0\n");
    EXPECT_FALSE(std::filesystem::exists(dayFile("mp3")));
    EXPECT_TRUE(
        log_.has("Sonavault recorder: marker [hour @ 14:05:09] → Sonavault_2026-03-02.csv"));
}

TEST_F(Markers, writes_rows_in_order_of_arrival_with_label_and_duration) {
    auto timed = marker("break_start", "14:06:00", "Spot, \"loud\"");
    timed.durationSec = 45.5;
    tell(timed);
    tell(marker("vt_pre", "14:05:00", "Anna"));
    EXPECT_EQ(log(), std::string(kHeader) +
                         "14:06:00,break_start,\"Spot, \"\"loud\"\"\",45.5\n14:05:00,vt_pre,Anna,"
                         "0\n");
}

TEST_F(Markers, writes_into_the_log_of_a_day_that_is_being_recorded) {
    handshake();
    recorder_->toggleRecording();
    tell(marker("hour"));
    EXPECT_EQ(log(), std::string(kHeader) + "14:05:09,hour,,0\n");
}

TEST_F(Markers, writes_what_was_heard_just_after_midnight_into_the_new_day) {
    clock_.set(at("2026-03-02T23:00:00.250Z"));  // midnight in Berlin
    tell(marker("break_end", "23:59:59"));
    EXPECT_EQ(log("2026-03-03"), std::string(kHeader) + "23:59:59,break_end,,0\n");
    EXPECT_FALSE(std::filesystem::exists(dayFile("csv")));
}

TEST_F(Markers, marks_a_test_in_the_log_line_only) {
    auto test = marker("note");
    test.testMode = true;
    tell(test);
    EXPECT_EQ(log(), std::string(kHeader) + "14:05:09,note,,0\n");
    EXPECT_TRUE(log_.has(
        "Sonavault recorder: marker [note @ 14:05:09] (test_mode) → Sonavault_2026-03-02.csv"));
    auto real = marker("note", "14:05:10");
    real.testMode = false;
    tell(real);
    EXPECT_TRUE(
        log_.has("Sonavault recorder: marker [note @ 14:05:10] → Sonavault_2026-03-02.csv"));
}

// Repeats

TEST_F(Markers, writes_a_repeat_once_and_says_nothing_of_it) {
    tell(marker("hour"));
    listen();
    tell(marker("hour"));
    EXPECT_EQ(rows(), 1);
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(Markers, tells_markers_apart_by_type_clock_time_and_label) {
    tell(marker("note", "14:05:09", "a"));
    tell(marker("note", "14:05:09", "b"));
    tell(marker("note", "14:05:10", "a"));
    tell(marker("hour", "14:05:09", "a"));
    EXPECT_EQ(rows(), 4);
}

TEST_F(Markers, takes_no_label_and_an_empty_one_for_the_same) {
    tell(marker("note"));
    tell(marker("note", "14:05:09", ""));
    EXPECT_EQ(rows(), 1);
}

TEST_F(Markers, keeps_the_first_of_two_that_differ_in_nothing_but_the_rest) {
    auto again = marker("note");
    again.durationSec = 30;
    again.wallClockIso8601 = "2026-03-02T13:05:10.000Z";
    again.file = "other.wav";
    again.testMode = true;
    tell(marker("note"));
    tell(again);
    EXPECT_EQ(log(), std::string(kHeader) + "14:05:09,note,,0\n");
}

TEST_F(Markers, knows_the_latest_400_and_no_more) {
    for (int i = 0; i < 400; ++i) tell(marker("note", "14:05:09", std::to_string(i)));
    tell(marker("note", "14:05:09", "0"));
    EXPECT_EQ(rows(), 400);
    tell(marker("note", "14:05:09", "400"));
    tell(marker("note", "14:05:09", "0"));
    EXPECT_EQ(rows(), 402) << "the first had fallen out";
    tell(marker("note", "14:05:09", "2"));
    EXPECT_EQ(rows(), 402) << "the third had not";
}

TEST_F(Markers, counts_a_repeat_as_no_new_marker_of_the_window) {
    tell(marker("note", "14:05:09", "first"));
    for (int i = 0; i < 1000; ++i) tell(marker("note", "14:05:09", "first"));
    for (int i = 0; i < 399; ++i) tell(marker("note", "14:05:09", std::to_string(i)));
    tell(marker("note", "14:05:09", "first"));
    EXPECT_EQ(rows(), 400);
}

TEST_F(Markers, remembers_over_a_lost_link_a_stop_and_midnight) {
    handshake();
    recorder_->toggleRecording();
    tell(marker("hour"));
    dropLink();
    handshake();
    tell(marker("hour"));
    recorder_->toggleRecording();
    tell(marker("hour"));
    EXPECT_EQ(rows(), 1);
    clock_.set(at("2026-03-03T13:05:09.123Z"));
    tell(marker("hour"));
    EXPECT_FALSE(std::filesystem::exists(dayFile("csv", "2026-03-03")));
}

TEST_F(Markers, forgets_at_a_change_of_source) {
    tell(marker("hour"));
    useLink();
    tell(marker("hour"));
    EXPECT_EQ(rows(), 2);
}

TEST_F(Markers, keeps_every_row_of_a_burst_while_descriptors_are_scarce) {
    {
        testing::ScarceDescriptors scarce;
        for (int i = 0; i < 8; ++i) scarce.giveOneBack();
        for (int i = 0; i < 1000; ++i) markerLink_->onMarker(marker("note", std::to_string(i)));
        mainQueue_.runAll();
    }
    EXPECT_EQ(rows(), 1000);
}

// Failures

TEST_F(Markers, drops_a_marker_without_a_folder_and_does_not_take_its_repeat_either) {
    testing::writeFile(stationPath() / "Logs", "in the way");
    listen();
    tell(marker("hour"));
    EXPECT_EQ(log_.lines().back(), "Sonavault recorder: marker drop — no station folder");
    std::filesystem::remove(stationPath() / "Logs");
    tell(marker("hour"));
    EXPECT_FALSE(std::filesystem::exists(dayFile("csv")));
    tell(marker("hour", "15:00:00"));
    EXPECT_EQ(rows(), 1);
}

TEST_F(Markers, says_why_a_row_could_not_be_added_and_nothing_more) {
    std::filesystem::create_directories(dayFile("csv"));  // a folder stands where the log should
    listen();
    tell(marker("mic_start"));
    EXPECT_THAT(said(),
                ElementsAre("Sonavault recorder: marker CSV append failed: Is a directory"));
    EXPECT_THAT(log_.containing("diag"), IsEmpty());
    std::filesystem::remove(dayFile("csv"));
    tell(marker("mic_start"));
    EXPECT_FALSE(std::filesystem::exists(dayFile("csv"))) << "a resend does not repair it";
}

// Diagnostics

TEST_F(Markers, tells_how_long_a_marker_was_under_way) {
    tell(marker("hour"));
    EXPECT_TRUE(
        log_.has("Sonavault diag: recv hour emit_clock=14:05:09 recv_wall=14:05:09.123 "
                 "recv-emit_delta=23ms"));
}

TEST_F(Markers, rounds_the_delay_half_away_from_zero) {
    const std::vector<std::pair<std::string, std::string>> delays = {
        {"2026-03-02T13:05:09.1225Z", "1ms"},
        {"2026-03-02T13:05:09.1226Z", "0ms"},
        {"2026-03-02T13:05:09.1235Z", "-1ms"},
        {"2026-03-02T13:05:09.1234Z", "0ms"},
        {"2026-03-02T14:05:09.623+01:00", "-500ms"}};
    for (const auto& [sent, delta] : delays) {
        auto late = marker("note", sent);
        late.wallClockIso8601 = sent;
        listen();
        tell(late);
        EXPECT_EQ(log_.lines().back(), "Sonavault diag: recv note emit_clock=" + sent +
                                           " recv_wall=14:05:09.123 recv-emit_delta=" + delta);
    }
}

TEST_F(Markers, writes_the_row_of_a_sender_whose_clock_does_not_read) {
    const std::vector<std::string> unreadable = {"2026-03-02T13:05:09Z",
                                                 "",
                                                 "yesterday",
                                                 "2026-03-02 13:05:09.1Z",
                                                 "9999-01-01T00:00:00.0Z",
                                                 "2026-02-30T13:05:09.1Z"};
    for (const auto& sent : unreadable) {
        auto odd = marker("note", "14:05:09", sent);
        odd.wallClockIso8601 = sent;
        listen();
        tell(odd);
        EXPECT_EQ(log_.lines().back(),
                  "Sonavault diag: recv note emit_clock=14:05:09 recv_wall=14:05:09.123 "
                  "recv-emit_delta=unparseable");
    }
    EXPECT_EQ(rows(), static_cast<int>(unreadable.size()));
}

TEST_F(Markers, takes_a_sender_whose_clock_is_centuries_off) {
    auto old = marker("note");
    old.wallClockIso8601 = "1680-01-01T00:00:00.0Z";
    tell(old);
    EXPECT_EQ(rows(), 1);
    EXPECT_EQ(log_.containing("recv-emit_delta=10923944709123ms").size(), 1U);
}

TEST_F(Markers, tells_its_own_clock_in_local_time_as_it_stands) {
    EXPECT_EQ(clockTextWithMilliseconds(at("2026-10-25T00:59:59.9999Z")), "02:59:59.999");
    EXPECT_EQ(clockTextWithMilliseconds(at("2026-10-25T01:00:00.000Z")), "02:00:00.000");
    EXPECT_EQ(clockTextWithMilliseconds(at("2026-03-29T00:59:59.500Z")), "01:59:59.500");
    EXPECT_EQ(clockTextWithMilliseconds(at("2026-03-29T01:00:00.007Z")), "03:00:00.007");
    const testing::ScopedTimeZone elsewhere("Asia/Kathmandu");
    EXPECT_EQ(clockTextWithMilliseconds(at("2026-03-29T01:00:00.007Z")), "06:45:00.007");
}

// The watch for the first sound of a live microphone

TEST_F(Markers, arms_the_watch_at_a_live_microphone_that_is_only_a_test_too) {
    handshake();
    auto test = marker("mic_start");
    test.testMode = true;
    tell(test);
    EXPECT_EQ(rows(), 1);
    EXPECT_EQ(log_.lines().back(),
              "Sonavault diag: armed first-non-silent watch (mic_start emit_clock=14:05:09)");
    clock_.advance(0.25);
    send(4096, 0.5F);
    const auto heard = log_.containing("first_nonsilent_after_mic_start");
    ASSERT_EQ(heard.size(), 1U);
    EXPECT_THAT(heard[0],
                ::testing::StartsWith("Sonavault diag: first_nonsilent_after_mic_start delta=250ms "
                                      "(mic_start emit_clock=14:05:09, db=-9."));
    send(4096, 0.5F);
    EXPECT_EQ(log_.containing("first_nonsilent_after_mic_start").size(), 1U);
}

TEST_F(Markers, arms_the_watch_anew_at_the_next_live_microphone) {
    handshake();
    tell(marker("mic_start"));
    clock_.advance(4);
    tell(marker("mic_start", "14:05:13"));
    clock_.advance(4);
    send(4096, 0);
    EXPECT_THAT(log_.containing("first_nonsilent_after_mic_start"), IsEmpty());
    clock_.advance(1.5);
    send(4096, 0);
    EXPECT_THAT(log_.containing("first_nonsilent_after_mic_start"),
                ElementsAre("Sonavault diag: first_nonsilent_after_mic_start TIMEOUT (5.0s "
                            "elapsed; mic_start emit_clock=14:05:13; buffer still ≤ -50.0 dBFS)"));
}

TEST_F(Markers, arms_the_watch_at_nothing_else) {
    tell(marker("mic_end"));
    tell(marker("MIC_START"));
    EXPECT_THAT(log_.containing("armed first-non-silent"), IsEmpty());
}

TEST_F(Markers, keeps_the_watch_over_a_stop) {
    handshake();
    recorder_->toggleRecording();
    tell(marker("mic_start"));
    recorder_->toggleRecording();
    send(4096, 0.5F);
    EXPECT_EQ(log_.containing("first_nonsilent_after_mic_start delta").size(), 1U);
}

// Events that came by another road

TEST_F(Markers, writes_an_event_of_another_road_as_often_as_it_is_told) {
    useLineInput();
    listen();
    recorder_->appendSyntheticMarker("14:05:09", "vt_pre", "Anna, live", 12);
    recorder_->appendSyntheticMarker("14:05:09", "vt_pre", "Anna, live");
    EXPECT_EQ(log(), std::string(kHeader) +
                         "14:05:09,vt_pre,\"Anna, live\",12\n14:05:09,vt_pre,\"Anna, live\",0\n");
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(Markers, does_not_compare_an_event_of_another_road_with_the_links) {
    recorder_->appendSyntheticMarker("14:05:09", "hour", "");
    tell(marker("hour"));
    recorder_->appendSyntheticMarker("14:05:09", "hour", "");
    EXPECT_EQ(rows(), 3);
}

TEST_F(Markers, says_when_an_event_of_another_road_could_not_be_written) {
    std::filesystem::create_directories(dayFile("csv"));
    listen();
    recorder_->appendSyntheticMarker("14:05:09", "hour", "");
    EXPECT_THAT(log_.lines(),
                ElementsAre("Sonavault recorder: synthetic marker append failed: Is a directory"));
}

TEST_F(Markers, passes_an_event_of_another_road_over_without_a_folder) {
    testing::writeFile(stationPath() / "Logs", "in the way");
    listen();
    recorder_->appendSyntheticMarker("14:05:09", "hour", "");
    EXPECT_THAT(said(), IsEmpty());
}

// Both links together

TEST_F(Markers, come_over_a_link_that_starts_and_stops_with_the_audio_link) {
    EXPECT_TRUE(linkLife_.listens());
    EXPECT_TRUE(markerLinkLife_.listens());
    EXPECT_FALSE(markerLink_->onConnect);
    EXPECT_FALSE(markerLink_->onDisconnect);
    useLineInput();
    EXPECT_FALSE(markerLinkLife_.listens()) << "the line input has no marker link";
    EXPECT_EQ(markerLinkLife_.starts, 1);
}

TEST_F(Markers, count_still_when_they_were_heard_just_before_the_source_changed) {
    markerLink_->onMarker(marker("hour"));  // posted, and not yet heard
    useLineInput();
    mainQueue_.runAll();
    EXPECT_EQ(rows(), 1);
}

TEST_F(Markers, do_not_reach_a_recorder_that_is_gone) {
    markerLink_->onMarker(marker("hour"));
    recorder_.reset();
    mainQueue_.runAll();
    EXPECT_FALSE(std::filesystem::exists(dayFile("csv")));
}

}  // namespace
}  // namespace sonavault
