// The program and the station's hub: what a day looks like from there, and what a hub that
// misbehaves can do to a recording.

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstring>
#include <functional>
#include <thread>

#include "platform/ThisThread.h"
#include "system/Station.h"

namespace sonavault::testing {
namespace {

using namespace std::chrono_literals;

constexpr auto kSync = "Sonavault sync:";
constexpr auto kConnected = "Sonavault Switchboard: state = connected(";
constexpr auto kReconnecting = "Sonavault Switchboard: state = reconnecting(";

class OnTheHub : public ::testing::Test {
  protected:
    OnTheHub() {
        station_.useLink();
        station_.resumeOnLaunch();
        station_.setEnvironment({{"SWITCHBOARD_SOCKET", socketPath()}});
    }

    std::string socketPath() const { return (station_.home() / "hub.sock").string(); }

    void startHub() {
        hub_ = station_.startHub();
        ASSERT_TRUE(hub_->waitForLine("listening on", 20s)) << hub_->text();
    }

    void startRecording() {
        program_ = station_.start();
        automation_ = station_.startAutomation({"--signal", "tone"});
        ASSERT_TRUE(program_->waitForLine(kSync, 20s)) << program_->text();
    }

    /// Lines about the clock go on coming, and none of the air since the start had to be made up.
    void expectUndisturbedRecording() {
        for (int i = 0; i < 2; ++i)
            EXPECT_TRUE(program_->waitForLine(kSync, 15s, program_->lineCount()))
                << program_->text();
        EXPECT_FALSE(program_->waitForLine("wall-clock pad", 0s)) << program_->text();
    }

    bool hubHears(const std::string& part, std::size_t fromLine = 0) const {
        return hub_->waitForLine(part, 10s, fromLine).has_value();
    }

    Station station_;
    std::unique_ptr<ChildProcess> hub_;
    std::unique_ptr<ChildProcess> program_;
    std::unique_ptr<ChildProcess> automation_;
};

TEST_F(OnTheHub, a_day_can_be_followed) {
    startHub();
    startRecording();
    EXPECT_TRUE(program_->waitForLine(kConnected, 10s));
    EXPECT_TRUE(hubHears(R"("from":"Sonavault")"));
    EXPECT_TRUE(hubHears("sonavault.heartbeat"));
    EXPECT_TRUE(hubHears("sonavault.current-recording"));
    hub_->type("show");
    EXPECT_TRUE(hubHears("program Sonavault"));
    EXPECT_TRUE(hubHears(R"("sourceMode":"cadenzo_tcp")"));
    auto from = hub_->lineCount();
    automation_->signal(SIGKILL);
    EXPECT_TRUE(hubHears(R"("state":"stopped")", from));
    from = hub_->lineCount();
    automation_ = station_.startAutomation({"--signal", "tone"});
    EXPECT_TRUE(hubHears(R"("state":"started")", from));
}

TEST_F(OnTheHub, a_playback_event_becomes_a_row_of_the_days_log) {
    startHub();
    startRecording();
    ASSERT_TRUE(hubHears("cadenzo.playback-state-changed")) << "the subscription";
    hub_->type(
        R"(publish Cadenzo cadenzo.playback-state-changed {"playbackState":"silence","cause":"silence detector","silenceDurationSec":12.4})");
    ASSERT_TRUE(program_->waitForLine("cadenzo.playback-state-changed state=silence", 10s));
    EXPECT_TRUE(program_->waitForLine(kSync, 10s, program_->lineCount()));
    EXPECT_NE(readFile(station_.dayFile("csv"))
                  .find(",silence_start,Cadenzo dead-air start — silence detector — 12.4s,0\n"),
              std::string::npos);
}

TEST_F(OnTheHub, the_end_of_the_hub_changes_nothing_else) {
    startHub();
    startRecording();
    ASSERT_TRUE(program_->waitForLine(kConnected, 10s));
    for (int i = 0; i < 3; ++i) {
        const auto lines = program_->lineCount();
        hub_->signal(SIGKILL);
        ASSERT_TRUE(hub_->waitForEnd(5s));
        EXPECT_TRUE(program_->waitForLine(kReconnecting, 5s, lines)) << program_->text();
        startHub();
        EXPECT_TRUE(program_->waitForLine(kConnected, 10s, lines)) << program_->text();
    }
    expectUndisturbedRecording();
}

TEST_F(OnTheHub, a_hub_that_starts_late_is_joined) {
    startRecording();
    ASSERT_TRUE(program_->waitForLine(kReconnecting, 10s));
    startHub();
    EXPECT_TRUE(program_->waitForLine(kConnected, 10s));
    expectUndisturbedRecording();
}

TEST_F(OnTheHub, one_that_stops_reading_stops_nothing) {
    startHub();
    startRecording();
    ASSERT_TRUE(program_->waitForLine(kConnected, 10s));
    hub_->type("stop-reading");
    expectUndisturbedRecording();
}

/// A hub that says whatever a test wants to every program that connects, and reads nothing.
class ShoutingHub {
  public:
    /// `say` puts bytes into a connection until told to stop.
    using Speech = std::function<void(int connection, const std::atomic<bool>& stop)>;

    ShoutingHub(const std::string& path, int backlog, Speech speech)
        : listener_(socket(AF_UNIX, SOCK_STREAM, 0)), speech_(std::move(speech)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
        if (bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
            ::listen(listener_, backlog) != 0)
            ADD_FAILURE() << "no socket at " << path << ": " << std::strerror(errno);
        if (speech_) thread_ = std::thread([this] { serve(); });
    }
    ~ShoutingHub() {
        stop_ = true;
        ::shutdown(listener_, SHUT_RDWR);
        if (thread_.joinable()) thread_.join();
        ::close(listener_);
    }
    ShoutingHub(const ShoutingHub&) = delete;
    ShoutingHub& operator=(const ShoutingHub&) = delete;

    int greeted() const { return greeted_; }

  private:
    void serve() {
        // What it does to the program is looked at, not what it takes from the machine.
        yieldToOthersOnThisThread();
        while (!stop_) {
            const int connection = accept(listener_, nullptr, nullptr);
            if (connection < 0) return;
            timeval patience{0, 100'000};
            setsockopt(connection, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
            ++greeted_;
            speech_(connection, stop_);
            ::close(connection);
        }
    }

    const int listener_;
    const Speech speech_;
    std::atomic<bool> stop_ = false;
    std::atomic<int> greeted_ = 0;
    std::thread thread_;
};

/// Says all of it; false when the other side is gone or the test is over.
bool sayAll(int connection, const std::string& bytes, const std::atomic<bool>& stop) {
    for (std::size_t said = 0; said < bytes.size();) {
        const auto sent =
            ::send(connection, bytes.data() + said, bytes.size() - said, MSG_NOSIGNAL);
        if (sent > 0) said += static_cast<std::size_t>(sent);
        if (stop || (sent < 0 && errno != EAGAIN && errno != EINTR)) return false;
    }
    return true;
}

struct Nonsense {
    const char* name;
    std::string bytes;
};

/// What the program may take while it records, window and all; what a sanitizer takes for itself
/// comes on top.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr long kMostKilobytes = 1200 * 1024;
#else
constexpr long kMostKilobytes = 120 * 1024;
#endif

class AgainstAHubThat : public OnTheHub, public ::testing::WithParamInterface<Nonsense> {};

TEST_P(AgainstAHubThat, recording_goes_on_without_a_gap_and_memory_stays_bounded) {
    const std::string& bytes = GetParam().bytes;
    const ShoutingHub hub(socketPath(), 5, [&](int connection, const std::atomic<bool>& stop) {
        const auto until = std::chrono::steady_clock::now() + 3s;
        while (std::chrono::steady_clock::now() < until && sayAll(connection, bytes, stop)) {
        }
    });
    startRecording();
    for (int i = 0; i < 3; ++i) expectUndisturbedRecording();
    EXPECT_GE(hub.greeted(), 1);
    EXPECT_LT(program_->residentKilobytes(), kMostKilobytes);
    EXPECT_TRUE(program_->isAlive());
}

std::string repeated(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) all += text;
    return all;
}

INSTANTIATE_TEST_SUITE_P(
    Nonsense, AgainstAHubThat,
    ::testing::Values(
        Nonsense{"sends_lines_of_five_megabytes", std::string(5 << 20, 'x') + "\n"},
        Nonsense{"sends_no_text", repeated("\xFF\xFE\xC0\x80\n", 20000)},
        Nonsense{"nests_deeply", repeated(std::string(2000, '[') + "\n", 50)},
        Nonsense{"sends_lines_without_end",
                 repeated(R"({"v":1,"type":"notify","from":"HUB","topic":"x","payload":{}})"
                          "\n",
                          10000)},
        Nonsense{"tells_of_playback_without_end",
                 repeated(R"({"v":1,"type":"notify","from":"Cadenzo",)"
                          R"("topic":"cadenzo.playback-state-changed","payload":{}})"
                          "\n",
                          1000)},
        Nonsense{"sends_empty_lines", std::string(100000, '\n')}),
    [](const auto& nonsense) { return nonsense.param.name; });

TEST_F(OnTheHub, a_backlog_that_is_full_stops_nothing) {
    const ShoutingHub hub(socketPath(), 0, {});
    // One that waits fills it.
    const int waiting = socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, socketPath().c_str(), sizeof address.sun_path - 1);
    EXPECT_EQ(connect(waiting, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    startRecording();
    expectUndisturbedRecording();
    ::close(waiting);
}

}  // namespace
}  // namespace sonavault::testing
