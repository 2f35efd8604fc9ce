// A day that is opened, heard, marked and cut by a person at the desk, and by the schedule.

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <thread>

#include "store/MarkerLogWriter.h"
#include "support/PrivateSoundServer.h"
#include "system/Listening.h"
#include "system/MovableClock.h"
#include "system/PrivateDesktop.h"
#include "system/ReviewedDay.h"

namespace sonavault::testing {
namespace {

using namespace std::chrono_literals;

constexpr auto kWindow = "Sonavault 0.1.128";
constexpr auto kAlert = "Sonavault";
constexpr auto kLoaded = "Sonavault: Loaded recording";
constexpr auto kConnected = "Sonavault Switchboard: state = connected(";

// One frame of 24 kbit/s at 22,050 Hz. Units: seconds
constexpr double kFrameSec = 576.0 / 22050;

// What the ear of the tests is good for. Units: seconds
constexpr double kHearing = 0.011;

std::string micFrom(const std::string& start, const std::string& end) {
    return markerRow(start, "mic_start", "News", 0) + markerRow(end, "mic_end", "News", 0);
}

/// What the decoder said of the stream, but for that it has no header frame to tell its length.
std::string damage(const Heard& heard) {
    std::istringstream lines(heard.complaints);
    std::string rest;
    for (std::string line; std::getline(lines, line);)
        if (line.find("Estimating duration from bitrate") == std::string::npos) rest += line + "\n";
    return rest;
}

bool eventuallyExists(const std::filesystem::path& file) {
    const auto patience = std::chrono::steady_clock::now() + 20s;
    while (!std::filesystem::exists(file)) {
        if (std::chrono::steady_clock::now() > patience) return false;
        std::this_thread::sleep_for(50ms);
    }
    return true;
}

class ExportTest : public ::testing::Test {
  protected:
    /// The cut sounds as the day did from `from` to `to`, seconds of the day, to one frame at
    /// either end.
    void expectCut(const std::filesystem::path& cut, const ReviewedDay& day, double from,
                   double to) const {
        ASSERT_TRUE(eventuallyExists(cut)) << cut;
        const Heard heard = listenTo(cut);
        EXPECT_EQ(damage(heard), "");
        EXPECT_NEAR(heard.durationSec(), to - from, 2 * kFrameSec);
        std::vector<double> expected;
        for (const double burst : burstsIn(day.audio)) {
            const double place = burst - (from - ReviewedDay::kStartsAt);
            if (place > 1 && place < to - from - 1) expected.push_back(place);
        }
        std::vector<double> bursts;
        for (const double burst : burstsIn(cut))
            if (burst > 1 && burst < to - from - 1) bursts.push_back(burst);
        ASSERT_EQ(bursts.size(), expected.size());
        for (std::size_t i = 0; i < bursts.size(); ++i)
            EXPECT_NEAR(bursts[i], expected[i], kFrameSec + kHearing) << "burst " << i;
    }

    std::filesystem::path airchecks() const {
        return station_.home() / "Calderwave/Station/Logs/Airchecks";
    }

    Station station_;
};

/// Each with the hub running and the program told where it is.
class ScheduledExportTest : public ExportTest {
  protected:
    ScheduledExportTest() {
        station_.setEnvironment({{"SWITCHBOARD_SOCKET", (station_.home() / "hub.sock").string()}});
        haveCard(7);
        hub_ = station_.startHub();
    }

    /// One of every day, from six on, whose last hour is `endHour`.
    void haveCard(int endHour) {
        const std::string card =
            R"json([{"active":true,"daysOfWeek":[1,2,3,4,5,6,7],"endHour":)json" +
            std::to_string(endHour) +
            R"json(,"id":"6F0C2B7E","label":"Morning","lastRunDate":"","mode":"liveMic",)json" +
            R"json("startHour":6}])json";
        std::string quoted;
        for (const char letter : card) {
            if (letter == '"') quoted += '\\';
            quoted += letter;
        }
        station_.choose("SVScheduledAirchecks", "\"@ByteArray(" + quoted + ")\"");
    }

    std::filesystem::path card() const {
        const std::string date = station_.dayFile("mp3").stem().string().substr(10);
        return airchecks() / ("Aircheck_Morning_Live_" + date + "_06-07.mp3");
    }

    std::unique_ptr<ChildProcess> hub_;
};

TEST_F(ScheduledExportTest, a_card_whose_window_is_over_runs_once_and_is_announced) {
    const ReviewedDay day(station_, micFrom("07:00:00", "07:01:00"));
    ASSERT_TRUE(hub_->waitForLine("listening on", 20s)) << hub_->text();
    {
        const auto program = station_.start();
        ASSERT_TRUE(program->waitForLine(kConnected, 20s)) << program->text();
        expectCut(card(), day, 7 * 3600 - 8, 7 * 3600 + 60 + 8);
        EXPECT_TRUE(isPieceOf(card(), day.audio));
    }
    const auto written = std::filesystem::last_write_time(card());
    const auto program = station_.start();
    ASSERT_TRUE(program->waitForLine(kConnected, 20s)) << program->text();
    std::this_thread::sleep_for(2s);  // longer than the first run took
    EXPECT_EQ(std::filesystem::last_write_time(card()), written);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(airchecks()), {}), 1);
}

TEST_F(ScheduledExportTest, a_card_that_comes_due_while_the_program_runs_is_announced_on_the_hub) {
    haveCard(12);
    const ReviewedDay day(station_, micFrom("07:00:00", "07:01:00"));
    const MovableClock clock;
    station_.setEnvironment(clock.environment());
    const auto program = station_.start();
    ASSERT_TRUE(program->waitForLine(kConnected, 20s)) << program->text();
    EXPECT_FALSE(std::filesystem::exists(airchecks()));
    clock.showAhead(3600);
    EXPECT_TRUE(hub_->waitForLine("sonavault.aircheck-saved", 60s)) << hub_->text();
    EXPECT_TRUE(hub_->waitForLine(R"("source":"scheduled")", 1s)) << hub_->text();
    EXPECT_TRUE(hub_->waitForLine(R"("segmentCount":1)", 1s)) << hub_->text();
    program->signal(SIGKILL);
    program->waitForEnd(10s);
    MovableClock::cleanUpAfter(*program);
}

/// A person with a window before them.
class DeskExportTest : public ExportTest {
  protected:
    DeskExportTest() {
        sound_.start();
        station_.setEnvironment(sound_.environment());
        station_.setEnvironment(desktop_.environment());
        std::filesystem::create_directories(output_);
        station_.choose("SonavaultLastExportFolder", output_.string());
    }

    void open() {
        program_ = station_.start();
        ASSERT_TRUE(program_->waitForLine(kLoaded, 20s)) << program_->text();
        desktop_.awaitFront(kWindow);
    }

    /// The playhead is where the day begins.
    void goToSeven() const { desktop_.press({"ctrl+Right"}); }
    void goOn(int tensOfSeconds) const {
        desktop_.press(
            std::vector<std::string>(static_cast<std::size_t>(tensOfSeconds), "shift+Right"));
    }

    /// Answers the question with its first button and saves under the name that is offered.
    void answerAndSave(const std::string& panel) const {
        desktop_.awaitFront(kAlert);
        desktop_.press({"Return"});
        desktop_.awaitFront(panel);
        desktop_.press({"Return"});
    }

    /// Reads the report and closes it by its last button.
    void closeReport() const {
        desktop_.awaitFront(kAlert);
        desktop_.press({"Escape"});
        desktop_.awaitFront(kWindow);
    }

    std::string date() const { return station_.dayFile("mp3").stem().string().substr(10); }

    PrivateSoundServer sound_;
    PrivateDesktop desktop_;
    const std::filesystem::path output_ = station_.home() / "cuts";
    std::unique_ptr<ChildProcess> program_;
};

TEST_F(DeskExportTest, two_ranges_are_marked_by_keys_and_saved_as_one_file) {
    const ReviewedDay day(station_);
    open();
    goToSeven();
    desktop_.press({"bracketleft"});
    goOn(6);
    desktop_.press({"bracketright"});
    goOn(6);
    desktop_.press({"i"});
    goOn(3);
    desktop_.press({"o", "e"});
    answerAndSave("Save Selections");
    const auto cut = output_ / (date() + "_selections.mp3");
    ASSERT_TRUE(eventuallyExists(cut)) << program_->text();
    closeReport();
    const Heard heard = listenTo(cut);
    EXPECT_EQ(damage(heard), "");
    EXPECT_NEAR(heard.durationSec(), 90, 4 * kFrameSec);
    EXPECT_EQ(burstsIn(cut).size(), 8U);
}

TEST_F(DeskExportTest, one_range_has_its_bursts_where_the_day_had_them) {
    const ReviewedDay day(station_);
    open();
    goToSeven();
    desktop_.press({"bracketleft"});
    goOn(6);
    desktop_.press({"bracketright", "e"});
    answerAndSave("Save Selections");
    expectCut(output_ / (date() + "_selections.mp3"), day, 7 * 3600, 7 * 3600 + 60);
    closeReport();
    EXPECT_TRUE(isPieceOf(output_ / (date() + "_selections.mp3"), day.audio));
}

TEST_F(DeskExportTest, a_range_that_was_undone_is_not_exported) {
    const ReviewedDay day(station_);
    open();
    goToSeven();
    desktop_.press({"bracketleft"});
    goOn(6);
    desktop_.press({"bracketright", "ctrl+z", "e"});
    // A range marked afterwards brings the alert: the keys before it were heard and gave none.
    desktop_.press({"bracketleft"});
    goOn(1);
    desktop_.press({"bracketright"});
    EXPECT_FALSE(desktop_.hasWindow(kAlert));
    desktop_.press({"e"});
    desktop_.awaitFront(kAlert);
    desktop_.press({"Escape"});
    desktop_.awaitFront(kWindow);
    EXPECT_TRUE(std::filesystem::is_empty(output_));
}

TEST_F(DeskExportTest, an_aircheck_is_compiled_from_the_log) {
    const ReviewedDay day(station_, micFrom("06:55:00", "06:55:40"));
    open();
    desktop_.press({"a"});
    answerAndSave("Save Aircheck");
    expectCut(output_ / ("Aircheck_Live_" + date() + ".mp3"), day, 6 * 3600 + 55 * 60 - 8,
              6 * 3600 + 55 * 60 + 48);
    closeReport();
}

TEST_F(DeskExportTest, a_day_is_heard_from_seven_on) {
    const ReviewedDay day(station_);
    sound_.listenTo();
    open();
    goToSeven();
    goOn(1);
    desktop_.press({"space"});
    const auto loud = [this] {
        const auto heard = sound_.heard();
        return std::count_if(heard.begin(), heard.end(),
                             [](float sample) { return std::abs(sample) > 0.3F; }) > 1000;
    };
    const auto patience = std::chrono::steady_clock::now() + 20s;
    while (!loud() && std::chrono::steady_clock::now() < patience)
        std::this_thread::sleep_for(50ms);
    EXPECT_TRUE(loud());
    desktop_.press({"space"});
}

}  // namespace
}  // namespace sonavault::testing
