// What a station's machine does to a program that runs for a year: full disks, readers that stall,
// senders that make no sense, newer copies.

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <random>

#include "platform/AudioFileInfo.h"
#include "store/RecordingManifest.h"
#include "support/Eventually.h"
#include "system/Listening.h"
#include "system/SmallDisk.h"
#include "system/Station.h"

namespace sonavault::testing {
namespace {

using namespace std::chrono_literals;

constexpr auto kStarted = "Sonavault recorder: started (Cadenzo TCP) → ";
constexpr auto kStopped = "Sonavault recorder: stopped → ";

/// A sender that makes no sense.
class BadSender {
  public:
    BadSender() : socket_(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(9171);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
            ADD_FAILURE() << "the port does not answer: " << std::strerror(errno);
    }
    ~BadSender() { close(socket_); }
    BadSender(const BadSender&) = delete;
    BadSender& operator=(const BadSender&) = delete;

    /// False once the other side hung up.
    bool say(const std::string& bytes) const {
        return ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL) ==
               static_cast<ssize_t>(bytes.size());
    }

    /// The other side closed within a few seconds.
    bool seesTheEnd() const {
        timeval patience{5, 0};
        setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        char byte = 0;
        const auto got = recv(socket_, &byte, 1, 0);
        return got == 0 || (got < 0 && errno == ECONNRESET);
    }

  private:
    int socket_;
};

class Fault : public ::testing::Test {
  protected:
    Fault() {
        station_.useLink();
        station_.resumeOnLaunch();
    }

    void launch(ChildProcess::Output output = ChildProcess::Output::read) {
        program_ = station_.start(output);
    }

    /// `fromLine`: lines before this one don't count.
    void expectLine(const std::string& line, std::chrono::milliseconds patience = 20s,
                    std::size_t fromLine = 0) {
        EXPECT_TRUE(program_->waitForLine(line, patience, fromLine)) << "no \"" << line << "\" in\n"
                                                                     << program_->text();
    }

    /// Recording goes on: a line about the clock that was not there before, and soon.
    void expectStillRecording() {
        EXPECT_TRUE(program_->waitForLine("Sonavault sync:", 15s, program_->lineCount()))
            << program_->text();
    }

    void startRecording() {
        launch();
        automation_ = station_.startAutomation({"--signal", "tone"});
        expectLine(kStarted);
    }

    /// Waits until the day's file has grown beyond `bytes`.
    bool growsBeyond(std::uintmax_t bytes, std::chrono::seconds patience) const {
        return growsBeyond(bytes, patience, station_.dayFile("mp3"));
    }
    static bool growsBeyond(std::uintmax_t bytes, std::chrono::seconds patience,
                            const std::filesystem::path& file) {
        const auto hasGrown = [&] {
            std::error_code absent;
            const auto size = std::filesystem::file_size(file, absent);
            return !absent && size > bytes;
        };
        return eventually(hasGrown, patience);
    }

    /// Which one it was; 0 when the copy ended by itself or not in time.
    static int signalThatEnded(ChildProcess& copy) {
        const auto status = copy.waitForEnd(5s);
        return status && WIFSIGNALED(*status) ? WTERMSIG(*status) : 0;
    }

    Station station_;
    std::unique_ptr<ChildProcess> program_;
    std::unique_ptr<ChildProcess> automation_;
};

TEST_F(Fault, a_full_disk_costs_air_but_not_the_program_and_the_next_run_fills_the_gap) {
    const SmallDisk disk(station_.audioFolder(), "size=32k");
    ASSERT_TRUE(disk.isMounted()) << "the tests need the right to mount a disk of their own";
    startRecording();
    expectLine("Sonavault sync: wall_elapsed=13.", 30s);
    const auto full = std::filesystem::file_size(station_.dayFile("mp3"));
    EXPECT_LE(full, 32U * 1024);
    ASSERT_TRUE(disk.changeSize("size=10m"));
    EXPECT_TRUE(growsBeyond(full + 6000, 10s)) << "recording goes on when space returns";
    program_->signal(SIGKILL);
    ASSERT_TRUE(program_->waitForEnd(5s));

    launch();
    expectLine("Sonavault recorder: wall-clock anchor pinned to manifest start");
    expectLine("wall-clock pad");
    const auto deadline = std::chrono::steady_clock::now() + 30s;
    double drift = 1e9;
    while (std::abs(drift) > 60 && std::chrono::steady_clock::now() < deadline) {
        const auto line = program_->waitForLine("Sonavault sync:", 5s, program_->lineCount());
        ASSERT_TRUE(line) << program_->text();
        drift = number(line->text, "drift=");
    }
    EXPECT_LE(std::abs(drift), 60);
}

TEST_F(Fault,
       a_read_only_disk_keeps_the_program_running_and_recording_begins_when_it_can_be_written) {
    const SmallDisk disk(station_.audioFolder(), "size=10m");
    ASSERT_TRUE(disk.isMounted()) << "the tests need the right to mount a disk of their own";
    ASSERT_TRUE(disk.makeReadOnly("size=10m"));
    launch();
    automation_ = station_.startAutomation({"--signal", "tone"});
    expectLine("Sonavault recorder: could not open MP3 file for write: Read-only file system");
    EXPECT_TRUE(program_->isAlive());
    ASSERT_TRUE(disk.changeSize("size=10m"));
    expectLine(kStarted);
    EXPECT_TRUE(growsBeyond(3000, 10s));
}

TEST_F(Fault, a_disk_that_is_full_from_the_start_is_told_of_and_recorded_on_once_there_is_space) {
    const SmallDisk disk(station_.audioFolder(), "size=4k");
    ASSERT_TRUE(disk.isMounted()) << "the tests need the right to mount a disk of their own";
    writeFile(station_.audioFolder() / "somebody else's", std::string(4096, 'x'));
    startRecording();
    EXPECT_TRUE(program_->waitForLine("Sonavault recorder: manifest write failed: ", 5s))
        << program_->text();
    ASSERT_TRUE(disk.changeSize("size=10m"));
    EXPECT_TRUE(growsBeyond(6000, 10s));
}

TEST_F(Fault, a_folder_that_disappears_takes_nothing_else_with_it) {
    startRecording();
    expectLine("Sonavault sync: wall_elapsed=2.");
    std::filesystem::remove_all(station_.home() / "Calderwave");
    expectStillRecording();
    automation_->signal(SIGTERM);
    expectLine(kStopped);
    const auto linesAtStop = program_->lineCount();
    automation_ = station_.startAutomation({"--signal", "tone"});
    expectLine("auto-resume firing (handshake just landed)", 20s, linesAtStop);
    expectLine(kStarted, 20s, linesAtStop);
    const auto day =
        station_.home() / "Documents/Calderwave_Recordings" / station_.dayFile("mp3").filename();
    EXPECT_TRUE(growsBeyond(3000, 20s, day)) << "where a machine without a station records";
    expectStillRecording();
    EXPECT_TRUE(program_->isAlive());
}

TEST_F(Fault, a_reader_of_the_output_that_stalls_stalls_nothing) {
    launch(ChildProcess::Output::ignored);
    automation_ = station_.startAutomation({"--signal", "tone"});
    ASSERT_TRUE(growsBeyond(1000, 20s));
    // Each refused handshake costs a line, so that the pipe is full long before the end.
    for (int i = 0; i < 600; ++i) BadSender().say("GET / HTTP/1.1\r\n\r\n");
    const auto size = std::filesystem::file_size(station_.dayFile("mp3"));
    EXPECT_TRUE(growsBeyond(size + 15'000, 20s));
    EXPECT_TRUE(program_->isAlive());
}

TEST_F(Fault, a_reader_of_the_output_that_goes_away_ends_nothing) {
    launch(ChildProcess::Output::closed);
    automation_ = station_.startAutomation({"--signal", "tone"});
    EXPECT_TRUE(growsBeyond(15'000, 20s));
    EXPECT_TRUE(program_->isAlive());
}

TEST_F(Fault, an_older_copy_ends_for_a_newer_one_which_goes_on_in_the_same_file) {
    startRecording();
    expectLine("Sonavault sync: wall_elapsed=3.");
    const auto before = std::filesystem::file_size(station_.dayFile("mp3"));
    const auto older = std::move(program_);
    launch();
    EXPECT_EQ(signalThatEnded(*older), SIGTERM) << "it was asked, and not forced";
    expectLine(kStarted);
    EXPECT_TRUE(growsBeyond(before + 3000, 15s));
    EXPECT_TRUE(program_->isAlive());
}

TEST_F(Fault, an_older_copy_that_does_not_answer_is_forced) {
    startRecording();
    const auto older = std::move(program_);
    older->signal(SIGSTOP);
    launch();
    EXPECT_EQ(signalThatEnded(*older), SIGKILL);
    expectLine(kStarted);
}

std::string handshakeLE(std::uint32_t rate, std::uint32_t channels, std::uint32_t bits) {
    std::string bytes;
    for (const auto word : {rate, channels, bits})
        for (int shift = 0; shift < 32; shift += 8)
            bytes += static_cast<char>(word >> shift & 0xFF);
    return bytes;
}

TEST_F(Fault, bad_handshakes_are_named_and_dropped_and_the_station_is_recorded_again_at_once) {
    startRecording();
    const std::vector<std::pair<std::string, std::string>> kBad{
        {"GET / HTTP/1.1\r\n\r\n", "[47 45 54 20 2f 20 48 54 54 50 2f 31]"},
        {handshakeLE(44100, 0, 32), "[44 ac 00 00 00 00 00 00 20 00 00 00]"},
        {handshakeLE(44100, 9, 32), "[44 ac 00 00 09 00 00 00 20 00 00 00]"},
        {handshakeLE(7999, 2, 32), "[3f 1f 00 00 02 00 00 00 20 00 00 00]"},
        {handshakeLE(192001, 2, 32), "[01 ee 02 00 02 00 00 00 20 00 00 00]"},
        {handshakeLE(44100, 2, 16), "[44 ac 00 00 02 00 00 00 10 00 00 00]"},
    };
    for (const auto& [bytes, hex] : kBad) {
        // The newest sender wins, and the one that displaced another is closed first: it may have
        // to come twice.
        const std::string line =
            "Sonavault audio server: handshake unparseable; raw bytes " + hex + "; dropping client";
        for (int attempt = 0; attempt < 20 && !program_->waitForLine(line, 300ms); ++attempt) {
            const BadSender sender;
            EXPECT_TRUE(!sender.say(bytes) || sender.seesTheEnd());
        }
        EXPECT_TRUE(program_->waitForLine(line, 1s)) << line;
    }
    expectStillRecording();
}

TEST_F(Fault, a_sender_that_never_speaks_is_displaced_by_the_station) {
    launch();
    expectLine("Sonavault audio server: listening on 9171");
    const BadSender silent;
    expectLine("Sonavault audio server: client connected — awaiting handshake");
    automation_ = station_.startAutomation({"--signal", "tone"});
    expectLine(kStarted);
    expectStillRecording();
}

TEST_F(Fault, half_a_handshake_is_forgotten) {
    launch();
    expectLine("Sonavault audio server: listening on 9171");
    {
        const BadSender half;
        EXPECT_TRUE(half.say(handshakeLE(44100, 2, 32).substr(0, 7)));
    }
    automation_ = station_.startAutomation({"--signal", "tone"});
    expectLine(kStarted);
    expectStillRecording();
}

TEST_F(Fault, a_thousand_connects_leave_memory_and_descriptors_as_they_were) {
    // The address sanitizer keeps freed memory for a while; here that would look like a leak.
    station_.setEnvironment({{"ASAN_OPTIONS", "quarantine_size_mb=1"}});
    startRecording();
    // A sanitizer keeps notes of every connection at first.
    for (int i = 0; i < 500; ++i) EXPECT_TRUE(BadSender().say("x"));
    expectStillRecording();
    const long memory = program_->residentKilobytes();
    const int descriptors = program_->openDescriptors();
    for (int i = 0; i < 1000; ++i) BadSender().say("garbage that is no handshake");
    expectStillRecording();
    EXPECT_LT(program_->residentKilobytes(), memory + 4096);
    EXPECT_LE(program_->openDescriptors(), descriptors + 2);
}

TEST_F(Fault, samples_that_are_no_numbers_harm_nothing_that_follows) {
    launch();
    expectLine("Sonavault audio server: listening on 9171");
    {
        const BadSender poison;
        ASSERT_TRUE(poison.say(handshakeLE(44100, 1, 32)));
        expectLine(kStarted);
        std::mt19937 random(1);
        std::string bytes(44100 * 4, '\0');
        for (auto& byte : bytes) byte = static_cast<char>(random());
        for (std::size_t i = 0; i < 4000; i += 4)
            std::memcpy(bytes.data() + i, "\x00\x00\xc0\x7f", 4);
        ASSERT_TRUE(poison.say(bytes));
        expectLine("Sonavault sync:");
    }
    expectLine(kStopped);
    const auto linesAtStop = program_->lineCount();
    automation_ = station_.startAutomation({"--signal", "tone", "--duration", "6", "--once"});
    ASSERT_TRUE(program_->waitForLine(kStopped, 20s, linesAtStop)) << program_->text();
    const auto heard = listenTo(station_.dayFile("mp3"));
    const double end = heard.durationSec();
    EXPECT_NEAR(toneFrequency(heard.part(end - 4, end - 1), heard.sampleRate, 1000), 1000, 0.1);
    EXPECT_NEAR(levelDb(heard.part(end - 4, end - 1)), -20, 1);
}

}  // namespace
}  // namespace sonavault::testing
