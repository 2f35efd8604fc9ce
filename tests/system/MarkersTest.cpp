// The marker link, from the automation's socket to the day's log.

#include <gtest/gtest.h>

#include <csignal>

#include "support/Eventually.h"
#include "system/Listening.h"
#include "system/SentMarkers.h"
#include "system/Station.h"

namespace sonavault::testing {
namespace {

using namespace std::chrono_literals;

constexpr auto kClientConnected = "Sonavault marker server: client connected";

/// Sent last, so that all before it has arrived when its row is there.
constexpr auto kLastOrder = "marker note clock=99:00:00 the end";
constexpr auto kLastRow = "99:00:00,note,the end,0\n";

class MarkersToLog : public ::testing::Test {
  protected:
    MarkersToLog() { station_.useLink(); }

    void launch() {
        program_ = station_.start();
        ASSERT_TRUE(program_->waitForLine("Sonavault marker server: listening on 9172", 20s))
            << program_->text();
    }

    void startAutomation(std::vector<std::string> options = {}) {
        options.insert(options.end(), {"--signal", "tone"});
        automation_ = station_.startAutomation(options);
    }

    void type(const std::vector<std::string>& orders) {
        for (const auto& order : orders) automation_->type(order);
    }

    /// Opens the link with a first marker. Gives its row.
    std::string connectWithHour() {
        automation_->type("marker hour");
        expectLogged(",hour,,0\n");
        return log().substr(std::string(kLogHeader).size());
    }

    std::string log() const {
        const auto file = station_.dayFile("csv");
        return std::filesystem::exists(file) ? readFile(file) : std::string();
    }

    void expectLogged(const std::string& row) const {
        EXPECT_TRUE(eventually([&] { return log().ends_with(row); })) << log().substr(0, 2'000);
    }

    /// Ends the markers with one that is known, and waits until it is logged.
    void finish() {
        automation_->type(kLastOrder);
        expectLogged(kLastRow);
        ASSERT_TRUE(automation_->waitForLine("the end", 5s));
    }

    std::size_t timesConnected() const {
        std::size_t count = 0;
        for (const auto& line : program_->lines()) count += line.text == kClientConnected;
        return count;
    }

    Station station_;
    std::unique_ptr<ChildProcess> program_;
    std::unique_ptr<ChildProcess> automation_;
};

class EachMarkerOrder : public MarkersToLog, public ::testing::WithParamInterface<const char*> {};

TEST_P(EachMarkerOrder, logs_what_was_sent_row_for_row_while_air_is_recorded) {
    station_.resumeOnLaunch();
    launch();
    startAutomation({"--marker-byte-order", GetParam()});
    ASSERT_TRUE(program_->waitForLine("Sonavault recorder: started (Cadenzo TCP)", 20s));
    type({"marker hour Hour 12",
          "marker break_start duration=120.5 Stopset A, 4 spots",
          "marker break_end Stopset A, 4 spots",
          "marker break duration=30",
          "marker vt",
          "marker vt_pre duration=8 Jonas says \"hello\", twice",
          "marker vt_post",
          "marker vt-pre",
          "marker vt-post",
          "marker vt_start",
          "marker vt_end",
          "marker mic",
          "marker mic_start Nora – früh",
          "marker mic_end",
          "marker eas test Weekly test",
          "marker silence_start",
          "marker silence_end duration=1234567.8",
          "marker custom ,",
          "marker note \"",
          "marker something_else clock=9:00 file=a.wav kept as it is"});
    finish();
    const auto rows = sentRows(*automation_);
    EXPECT_EQ(rows.size(), 21U);
    EXPECT_EQ(log(), logOf(rows));
    EXPECT_NE(log().find("\"Jonas says \"\"hello\"\", twice\",8\n"), std::string::npos);
    EXPECT_NE(log().find(",silence_end,,1.23457e+06\n"), std::string::npos);
    EXPECT_TRUE(program_->waitForLine("Sonavault sync:", 10s, program_->lineCount()));
    automation_.reset();
    EXPECT_TRUE(program_->waitForLine("Sonavault recorder: stopped → ", 10s));
    EXPECT_NEAR(levelDb(listenTo(station_.dayFile("mp3")).part(0.5, 1)), -20, 1);
}

INSTANTIATE_TEST_SUITE_P(Order, EachMarkerOrder, ::testing::Values("little", "big"),
                         [](const auto& order) { return order.param; });

TEST_F(MarkersToLog, logs_while_nothing_is_recorded) {
    launch();
    startAutomation();
    automation_->type("marker hour");
    finish();
    EXPECT_EQ(log(), logOf(sentRows(*automation_)));
    EXPECT_FALSE(std::filesystem::exists(station_.dayFile("mp3")));
    EXPECT_FALSE(std::filesystem::exists(station_.dayFile("json")));
}

TEST_F(MarkersToLog, loses_no_more_than_the_message_that_is_bad) {
    launch();
    startAutomation();
    const auto hour = kLogHeader + connectWithHour();
    type(
        {"marker-text {\"type\":", "marker-text []", "marker-text",
         R"(marker-text {"type":"eas","clock_time":"12:00:00"})",
         R"(marker-text {"type":7,"clock_time":"12:00:00","wall_clock_iso8601":"x"})",
         R"(marker-text {"type":"eas","clock_time":"12:00:00","wall_clock_iso8601":"x","duration_sec":"5"})",
         "marker-raw 02000000 c328"});
    finish();
    EXPECT_EQ(log(), hour + kLastRow);
    EXPECT_EQ(timesConnected(), 1U);
    std::size_t refused = 0;
    for (const auto& line : program_->lines())
        refused += line.text.starts_with("Sonavault marker server: marker decode failed (");
    EXPECT_EQ(refused, 7U);
}

TEST_F(MarkersToLog, needs_only_the_three_keys_and_passes_over_others) {
    launch();
    startAutomation();
    type(
        {R"(marker-text {"type":"hour","clock_time":"07:00:00","wall_clock_iso8601":"x"})",
         R"(marker-text {"type":"eas","clock_time":"07:00:01","wall_clock_iso8601":"x","more":[1],"label":null})"});
    finish();
    EXPECT_EQ(log(), std::string(kLogHeader) + "07:00:00,hour,,0\n07:00:01,eas,,0\n" + kLastRow);
    EXPECT_TRUE(program_->waitForLine("recv-emit_delta=unparseable", 5s));
}

TEST_F(MarkersToLog, goes_on_after_a_stream_that_lost_its_frames) {
    launch();
    startAutomation();
    automation_->type("marker-raw 00000000");
    ASSERT_TRUE(program_->waitForLine("unparseable length prefix LE=0 BE=0; dropping client", 10s));
    ASSERT_TRUE(automation_->waitForLine("marker link: not connected", 10s));
    connectWithHour();
    automation_->type("marker-raw 01000100");
    ASSERT_TRUE(program_->waitForLine("payload length 65537 exceeds cap; dropping client", 10s));
    ASSERT_TRUE(
        automation_->waitForLine("marker link: not connected", 10s, automation_->lineCount() - 1));
    finish();
    EXPECT_EQ(log(), logOf(sentRows(*automation_)));
    EXPECT_EQ(timesConnected(), 3U);
}

TEST_F(MarkersToLog, waits_for_the_rest_of_a_message) {
    launch();
    startAutomation();
    // 64 bytes behind a length of which half comes at first.
    automation_->type("marker-raw 4000");
    ASSERT_TRUE(automation_->waitForLine("marker bytes sent: 40 00", 10s));
    automation_->type("marker-raw 0000 7b22636c6f636b5f74696d65223a2231303a30303a3030222c");
    ASSERT_TRUE(automation_->waitForLine("marker bytes sent: 00 00 7b", 10s));
    automation_->type(
        "marker-raw 2274797065223a226561732220202c2277616c6c5f636c6f636b5f69736f38363031223a2222"
        "7d");
    expectLogged("10:00:00,eas,,0\n");
}

TEST_F(MarkersToLog, writes_a_repeat_once_and_forgets_it_after_four_hundred_others) {
    launch();
    startAutomation();
    std::string expected = kLogHeader + connectWithHour() + "01:00:00,hour,,5\n";
    type({"marker hour clock=01:00:00 duration=5", "marker hour clock=01:00:00 duration=6"});
    const auto other = [&](int number) {
        automation_->type("marker note clock=02:00:00 " + std::to_string(number));
    };
    for (int i = 1; i <= 399; ++i) {
        other(i);
        expected += "02:00:00,note," + std::to_string(i) + ",0\n";
    }
    automation_->type("marker hour clock=01:00:00");
    other(400);
    expected += "02:00:00,note,400,0\n";
    automation_->type("marker hour clock=01:00:00 duration=7");
    expected += "01:00:00,hour,,7\n";
    expectLogged("01:00:00,hour,,7\n");
    EXPECT_EQ(log(), expected);
}

TEST_F(MarkersToLog, keeps_a_very_long_label_whole) {
    launch();
    startAutomation();
    std::string label;
    while (label.size() < 60'000) label += "it has, among others, a \"quoted\" word; ";
    label.resize(60'000, 'x');
    if (label.ends_with(' ')) label.back() = 'x';
    automation_->type("marker note clock=03:00:00 " + label);
    finish();
    const auto rows = sentRows(*automation_);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_GT(rows[0].size(), 60'000U);
    EXPECT_TRUE(log() == logOf(rows)) << log().size() << " bytes: " << log().substr(0, 200);
}

TEST_F(MarkersToLog, keeps_the_marker_link_when_the_air_is_lost) {
    station_.resumeOnLaunch();
    launch();
    startAutomation();
    connectWithHour();
    automation_->type("drop");
    ASSERT_TRUE(program_->waitForLine("Cadenzo dropped while recording", 10s));
    finish();
    EXPECT_EQ(log(), logOf(sentRows(*automation_)));
    EXPECT_EQ(timesConnected(), 1U);
}

TEST_F(MarkersToLog, loses_no_more_than_the_row_in_hand_to_a_kill_and_goes_on_after_it) {
    launch();
    startAutomation();
    std::string whole = kLogHeader + connectWithHour();
    const std::string padding(3'000, 'x');
    std::jthread typist([&] {
        for (int i = 0; i < 2'000; ++i)
            automation_->type("marker note clock=04:00:00 " + std::to_string(i) + padding);
    });
    EXPECT_TRUE(eventually([&] { return log().size() > 300'000; }));
    program_->signal(SIGKILL);
    ASSERT_TRUE(program_->waitForEnd(5s));
    const auto left = log();
    typist.join();
    for (int i = 0; whole.size() < left.size(); ++i)
        whole += "04:00:00,note," + std::to_string(i) + padding + ",0\n";
    // The system itself may cut the write that a kill meets, but only between two of its pages.
    constexpr std::size_t kPage = 4'096;
    EXPECT_TRUE(whole.starts_with(left)) << left.size() << " bytes";
    EXPECT_TRUE(left.ends_with('\n') || left.size() % kPage == 0) << left.size() << " bytes";
    EXPECT_LT(left.size(), 2'000 * padding.size()) << "the kill came too late to prove anything";

    launch();
    finish();
    EXPECT_TRUE(log().starts_with(left));
}

}  // namespace
}  // namespace sonavault::testing
