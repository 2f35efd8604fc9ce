// A day that is opened, heard, marked and cut by a person at the desk, and by the schedule.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>

#include "store/MarkerLogWriter.h"
#include "support/Eventually.h"
#include "support/Ffmpeg.h"
#include "system/Desk.h"
#include "system/Listening.h"
#include "system/MovableClock.h"
#include "system/ReviewedDay.h"

namespace sonavault::testing {
namespace {

using namespace std::chrono_literals;

constexpr auto kLoaded = "Sonavault: Loaded recording";
constexpr auto kConnected = "Sonavault Switchboard: state = connected(";
constexpr auto kHeartbeat = "sonavault.heartbeat";

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
    return eventually([&] { return std::filesystem::exists(file); });
}

/// The cut sounds as the day did from `from` to `to`, seconds of the day, to one frame at either
/// end.
void expectCut(const std::filesystem::path& cut, const ReviewedDay& day, double from, double to) {
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

std::string dateOf(const Station& station) {
    return station.dayFile("mp3").stem().string().substr(std::string("Sonavault_").size());
}

/// Each with the hub running and the program told where it is.
class ScheduledExportTest : public ::testing::Test {
  protected:
    ScheduledExportTest() {
        station_.setEnvironment({{"SWITCHBOARD_SOCKET", (station_.home() / "hub.sock").string()}});
        haveCard(7);
        hub_ = station_.startHub();
    }

    /// A card of every day, from six on, whose last hour is `endHour`, as preferences hold it.
    static std::string quotedCard(const std::string& label, int endHour) {
        const std::string card =
            R"json({"active":true,"daysOfWeek":[1,2,3,4,5,6,7],"endHour":)json" +
            std::to_string(endHour) + R"json(,"id":")json" + label + R"json(","label":")json" +
            label + R"json(","lastRunDate":"","mode":"liveMic","startHour":6})json";
        std::string quoted;
        for (const char letter : card) {
            if (letter == '"') quoted += '\\';
            quoted += letter;
        }
        return quoted;
    }

    void haveCard(int endHour) {
        station_.choose("SVScheduledAirchecks",
                        "\"@ByteArray([" + quotedCard("Morning", endHour) + "])\"");
    }

    /// One more card behind those that the program itself wrote down.
    void addCard(const std::string& label) const {
        const auto file = station_.home() / ".config/com.calderwave.sonavault.conf";
        std::string all = readFile(file);
        const auto end = all.find("}])\"");
        ASSERT_NE(end, std::string::npos) << all;
        writeFile(file, all.insert(end + 1, "," + quotedCard(label, 7)));
    }

    std::filesystem::path airchecks() const {
        return station_.home() / "Calderwave/Station/Logs/Airchecks";
    }

    std::filesystem::path savedOf(const std::string& label) const {
        return airchecks() / ("Aircheck_" + label + "_Live_" + dateOf(station_) + "_06-07.mp3");
    }

    /// That the hub was told of it, in a line that comes or came.
    static std::string announcementOf(const std::string& label) {
        return R"("label":")" + label + R"(","mode":"liveMic")";
    }
    std::size_t announcementsOf(const std::string& label) const {
        const auto lines = hub_->lines();
        return static_cast<std::size_t>(
            std::count_if(lines.begin(), lines.end(), [&](const HeardLine& line) {
                return line.text.find("sonavault.aircheck-saved") != std::string::npos &&
                       line.text.find(announcementOf(label)) != std::string::npos;
            }));
    }

    Station station_;
    std::unique_ptr<ChildProcess> hub_;
};

TEST_F(ScheduledExportTest, a_card_whose_window_is_over_runs_once_and_is_announced) {
    const ReviewedDay day(station_, micFrom("07:00:00", "07:01:00"));
    ASSERT_TRUE(hub_->waitForLine("listening on", 20s)) << hub_->text();
    {
        const auto program = station_.start();
        ASSERT_TRUE(program->waitForLine(kConnected, 20s)) << program->text();
        expectCut(savedOf("Morning"), day, 7 * 3600 - 8, 7 * 3600 + 60 + 8);
        EXPECT_TRUE(isPieceOf(savedOf("Morning"), day.audio));
        EXPECT_TRUE(eventually([&] { return announcementsOf("Morning") > 0; })) << hub_->text();
    }
    const auto announced = announcementsOf("Morning");
    const auto written = std::filesystem::last_write_time(savedOf("Morning"));
    // The schedule has surely looked at the first card when it has come to the one behind it.
    addCard("Second");
    const auto program = station_.start();
    EXPECT_TRUE(eventually([&] { return announcementsOf("Second") > 0; })) << hub_->text();
    EXPECT_TRUE(hub_->waitForLine(kHeartbeat, 20s, hub_->lineCount())) << hub_->text();
    EXPECT_EQ(announcementsOf("Morning"), announced) << hub_->text();
    EXPECT_EQ(std::filesystem::last_write_time(savedOf("Morning")), written);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(airchecks()), {}), 2);
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
class DeskExportTest : public ::testing::Test {
  protected:
    DeskExportTest() {
        std::filesystem::create_directories(output_);
        desk_.station.choose("SonavaultLastExportFolder", output_.string());
    }

    void open() {
        desk_.open();
        ASSERT_TRUE(desk_.eventuallySays(kLoaded)) << desk_.program->text();
    }

    void press(const std::vector<std::string>& keys) const { desk_.desktop.press(keys); }

    /// The playhead is where the day begins.
    void goToSeven() const { press({"ctrl+Right"}); }
    void goOn(int tensOfSeconds) const {
        press(std::vector<std::string>(static_cast<std::size_t>(tensOfSeconds), "shift+Right"));
    }

    /// Answers the question with its first button and saves under the name that is offered.
    void answerAndSave(const std::string& panel) const {
        desk_.confirm();
        desk_.desktop.awaitFront(panel);
        press({"Return"});
    }

    /// Reads the report and closes it by its last button.
    void closeReport() const {
        desk_.dismiss();
        desk_.desktop.awaitFront(Desk::kWindow);
    }

    std::string date() const { return dateOf(desk_.station); }

    Desk desk_;
    const std::filesystem::path output_ = desk_.station.home() / "cuts";
};

TEST_F(DeskExportTest, two_ranges_are_marked_by_keys_and_saved_as_one_file) {
    const ReviewedDay day(desk_.station);
    open();
    goToSeven();
    press({"bracketleft"});
    goOn(6);
    press({"bracketright"});
    goOn(6);
    press({"i"});
    goOn(3);
    press({"o", "e"});
    answerAndSave("Save Selections");
    const auto cut = output_ / (date() + "_selections.mp3");
    ASSERT_TRUE(eventuallyExists(cut)) << desk_.program->text();
    closeReport();
    const Heard heard = listenTo(cut);
    EXPECT_EQ(damage(heard), "");
    EXPECT_NEAR(heard.durationSec(), 90, 4 * kFrameSec);
    EXPECT_EQ(burstsIn(cut).size(), 8U);
}

TEST_F(DeskExportTest, one_range_has_its_bursts_where_the_day_had_them) {
    const ReviewedDay day(desk_.station);
    open();
    goToSeven();
    press({"bracketleft"});
    goOn(6);
    press({"bracketright", "e"});
    answerAndSave("Save Selections");
    expectCut(output_ / (date() + "_selections.mp3"), day, 7 * 3600, 7 * 3600 + 60);
    closeReport();
    EXPECT_TRUE(isPieceOf(output_ / (date() + "_selections.mp3"), day.audio));
}

TEST_F(DeskExportTest, a_range_that_was_undone_is_not_exported) {
    const ReviewedDay day(desk_.station);
    open();
    goToSeven();
    press({"bracketleft"});
    goOn(6);
    press({"bracketright", "ctrl+z", "e"});
    // A range marked afterwards brings the alert: the keys before it were heard and gave none.
    press({"bracketleft"});
    goOn(1);
    press({"bracketright"});
    EXPECT_FALSE(desk_.desktop.hasWindow(Desk::kAlert));
    press({"e"});
    closeReport();
    EXPECT_TRUE(std::filesystem::is_empty(output_));
}

TEST_F(DeskExportTest, an_aircheck_is_compiled_from_the_log) {
    const ReviewedDay day(desk_.station, micFrom("06:55:00", "06:55:40"));
    open();
    press({"a"});
    answerAndSave("Save Aircheck");
    expectCut(output_ / ("Aircheck_Live_" + date() + ".mp3"), day, 6 * 3600 + 55 * 60 - 8,
              6 * 3600 + 55 * 60 + 48);
    closeReport();
}

/// The frequency of the tone that is heard first, as the middle one of its periods in a second, so
/// that a dropout changes nothing; nothing before so much was heard. Units: hertz
std::optional<double> firstTone(const std::vector<float>& samples) {
    constexpr std::size_t kRate = 48000;
    const auto begin = std::find_if(samples.begin(), samples.end(),
                                    [](float sample) { return std::abs(sample) > 0.1F; });
    std::vector<double> crossings;
    if (samples.end() - begin < 2 * static_cast<std::ptrdiff_t>(kRate)) return std::nullopt;
    for (std::size_t i = 1; i < kRate; ++i) {
        const double before = begin[static_cast<std::ptrdiff_t>(2 * i - 2)];
        const double after = begin[static_cast<std::ptrdiff_t>(2 * i)];
        if (before < 0 && after >= 0)
            crossings.push_back(static_cast<double>(i) - after / (after - before));
    }
    std::vector<double> periods;
    for (std::size_t i = 1; i < crossings.size(); ++i)
        periods.push_back(crossings[i] - crossings[i - 1]);
    if (periods.empty()) return 0;
    const auto middle = periods.begin() + static_cast<std::ptrdiff_t>(periods.size() / 2);
    std::nth_element(periods.begin(), middle, periods.end());
    return kRate / *middle;
}

TEST_F(DeskExportTest, a_day_is_heard_from_seven_on) {
    const ReviewedDay day(desk_.station);
    // A tone that rises by a hertz each second tells its place.
    encodeWithFfmpeg(day.audio, R"(aevalsrc=0.5*sin(2*PI*(500*t+0.5*t*t)):s=16000:d=660)",
                     "-ac 1 -ar 16000 -b:a 24k");
    desk_.sound.listenTo();
    open();
    goToSeven();
    goOn(1);
    press({"space"});
    std::optional<double> heard;
    EXPECT_TRUE(eventually([&] { return (heard = firstTone(desk_.sound.heard())).has_value(); }));
    const double place = 7 * 3600 + 10 - ReviewedDay::kStartsAt;
    EXPECT_NEAR(heard.value_or(0), 500 + place + 0.5, 2);
    press({"space"});
}

}  // namespace
}  // namespace sonavault::testing
