// The audio link, from the automation's socket to the decoded file.

#include <gtest/gtest.h>

#include <csignal>

#include "platform/LocalTime.h"
#include "store/RecordingManifest.h"
#include "system/Listening.h"
#include "system/Station.h"

namespace sonavault::testing {
namespace {

using namespace std::chrono_literals;

constexpr auto kStarted = "Sonavault recorder: started (Cadenzo TCP) → ";
constexpr auto kStopped = "Sonavault recorder: stopped → ";
constexpr double kSentDb = -20;  // what the automation sends unless told otherwise

/// What the encoder adds to a run when it is closed: its own delay and the padding of the last
/// frame, 1152 to 1727 samples at the file's rate.
constexpr double closingFrames(double rate) {
    return 1440 / rate;
}
constexpr double closingSpread(double rate) {
    return 288 / rate;
}

class AudioLinkToFile : public ::testing::Test {
  protected:
    AudioLinkToFile() {
        station_.useLink();
        station_.resumeOnLaunch();
    }

    void launch() {
        program_ = station_.start();
        ASSERT_TRUE(program_->waitForLine("Sonavault audio server: listening on 9171", 20s))
            << program_->text();
    }

    void send(const std::vector<std::string>& options) {
        automation_ = station_.startAutomation(options);
    }

    std::chrono::system_clock::time_point wait(const std::string& line,
                                               std::chrono::milliseconds patience,
                                               std::size_t fromLine = 0) {
        const auto heard = program_->waitForLine(line, patience, fromLine);
        if (!heard) ADD_FAILURE() << "no \"" << line << "\" in\n" << program_->text();
        return heard ? heard->at : std::chrono::system_clock::time_point{};
    }

    WallTime frameZero() const {
        return readManifestStartedAt(station_.dayFile("json")).value_or(WallTime{});
    }

    /// The file against the clock: how much longer it is than the time from its first frame to
    /// `closed`, without what the encoder adds at a close. Units: seconds
    void expectTrueToTheClock(const Heard& heard,
                              std::chrono::system_clock::time_point closed) const {
        const double wall = secondsBetween(frameZero(), closed);
        const double beyond = heard.durationSec() - closingFrames(heard.sampleRate) - wall;
        RecordProperty("duration_minus_wall_ms",
                       std::to_string((heard.durationSec() - wall) * 1000));
        EXPECT_NEAR(beyond, 0, 0.06 + closingSpread(heard.sampleRate))
            << heard.durationSec() << " s of file for " << wall << " s on the clock";
    }

    Station station_;
    std::unique_ptr<ChildProcess> program_;
    std::unique_ptr<ChildProcess> automation_;
};

struct Wire {
    const char* name;
    const char* rate;
    const char* channels;
    const char* order;
    const char* logged;
};

class EachWire : public AudioLinkToFile, public ::testing::WithParamInterface<Wire> {};

TEST_P(EachWire, is_recorded_at_its_frequency_and_level) {
    launch();
    send({"--signal", "tone", "--frequency", "997", "--rate", GetParam().rate, "--channels",
          GetParam().channels, "--byte-order", GetParam().order, "--duration", "12", "--once"});
    wait(std::string("Sonavault audio server: handshake OK — ") + GetParam().logged, 10s);
    const auto closed = wait(kStopped, 20s);
    const auto heard = listenTo(station_.dayFile("mp3"));
    const auto middle = heard.part(1, 11);
    EXPECT_NEAR(toneFrequency(middle, heard.sampleRate, 997), 997, 0.1);
    EXPECT_NEAR(levelDb(middle), kSentDb, 1);
    expectTrueToTheClock(heard, closed);
}

INSTANTIATE_TEST_SUITE_P(Wire, EachWire,
                         ::testing::Values(Wire{"mono_8_kHz", "8000", "1", "little",
                                                "8000 Hz, 1 ch, Float32, wire=LE (bpf=4)"},
                                           Wire{"stereo_44_kHz_big_endian", "44100", "2", "big",
                                                "44100 Hz, 2 ch, Float32, wire=BE (bpf=8)"},
                                           Wire{"eight_channels_192_kHz", "192000", "8", "little",
                                                "192000 Hz, 8 ch, Float32, wire=LE (bpf=32)"}),
                         [](const auto& wire) { return wire.param.name; });

TEST_F(AudioLinkToFile, stays_true_to_the_clock_over_a_drop) {
    launch();
    send({"--signal", "tone", "--byte-order", "big", "--duration", "60", "--drop-at", "25:7"});
    const auto dropped = wait("Cadenzo dropped while recording", 40s);
    const auto line = program_->lineCount();
    wait("auto-resume firing (handshake just landed)", 20s, line);
    const auto resumed = wait(kStarted, 5s, line);
    const auto closed = wait(kStopped, 60s, program_->lineCount());
    const auto heard = listenTo(station_.dayFile("mp3"));
    expectTrueToTheClock(heard, closed);

    const auto silence = silentSpan(heard, 5);
    EXPECT_NEAR(silence.from, secondsBetween(frameZero(), dropped), 0.1);
    EXPECT_NEAR(silence.to, secondsBetween(frameZero(), resumed), 0.35)
        << "the silence is worked off over the buffers that follow the outage";
    EXPECT_NEAR(
        toneFrequency(heard.part(silence.to + 1, heard.durationSec() - 1), heard.sampleRate, 1000),
        1000, 0.1);
}

TEST_F(AudioLinkToFile, stays_true_to_the_clock_over_a_stall) {
    launch();
    send({"--signal", "tone", "--duration", "16", "--stall-at", "5:4"});
    const auto closed = wait(kStopped, 30s);
    const auto heard = listenTo(station_.dayFile("mp3"));
    expectTrueToTheClock(heard, closed);
    EXPECT_NEAR(silentSpan(heard, 3).length(), 4, 0.35);
}

TEST_F(AudioLinkToFile, goes_on_in_the_same_file_after_a_kill) {
    launch();
    send({"--signal", "tone", "--rate", "48000"});
    wait(kStarted, 10s);
    wait("Sonavault sync: wall_elapsed=8.", 20s);
    program_->signal(SIGKILL);
    ASSERT_TRUE(program_->waitForEnd(5s));
    const auto before = readFile(station_.dayFile("mp3"));
    const auto manifest = readFile(station_.dayFile("json"));
    EXPECT_GT(listenTo(station_.dayFile("mp3")).durationSec(), 7.7);

    launch();
    wait("Sonavault recorder: wall-clock anchor pinned to manifest start", 20s);
    wait("Sonavault sync: wall_elapsed=2", 30s);
    automation_->signal(SIGTERM);
    const auto closed = wait(kStopped, 10s);
    EXPECT_TRUE(readFile(station_.dayFile("mp3")).starts_with(before));
    EXPECT_EQ(readFile(station_.dayFile("json")), manifest);
    expectTrueToTheClock(listenTo(station_.dayFile("mp3")), closed);
}

TEST_F(AudioLinkToFile, leaves_nothing_of_a_tone_above_what_the_file_can_hold) {
    station_.chooseQuality(4);
    launch();
    send(
        {"--signal", "tone", "--frequency", "12000", "--level", "-6", "--duration", "8", "--once"});
    wait(kStopped, 20s);
    const auto heard = listenTo(station_.dayFile("mp3"));
    EXPECT_LT(levelDb(heard.part(0.5, 7.5)), -80);
}

class EachQualityLevel : public AudioLinkToFile, public ::testing::WithParamInterface<int> {};

TEST_P(EachQualityLevel, records_and_resumes) {
    const double kRates[] = {8000, 16000, 16000, 22050, 22050};
    station_.chooseQuality(GetParam());
    launch();
    send({"--signal", "tone", "--duration", "9", "--drop-at", "3:2"});
    wait(kStopped, 20s);
    const auto linesAtStop = program_->lineCount();
    wait("auto-resume firing (handshake just landed)", 20s, linesAtStop);
    wait("Sonavault recorder: quality from manifest", 10s, linesAtStop);
    const auto closed = wait(kStopped, 20s, linesAtStop);
    const auto heard = listenTo(station_.dayFile("mp3"));
    EXPECT_EQ(heard.sampleRate, kRates[GetParam()]);
    expectTrueToTheClock(heard, closed);
    EXPECT_NEAR(levelDb(heard.part(0.5, 2.5)), kSentDb, 1);
    EXPECT_NEAR(silentSpan(heard, 2).length(), 2, 0.4);
}

INSTANTIATE_TEST_SUITE_P(Level, EachQualityLevel, ::testing::Range(0, 5));

}  // namespace
}  // namespace sonavault::testing
