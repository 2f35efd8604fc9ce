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
#include <future>
#include <sstream>
#include <thread>

#include "platform/ThisThread.h"
#include "support/Eventually.h"
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

    /// What of the air had to be made up since the start. Units: seconds
    double paddedSec() const {
        double sum = 0;
        for (const auto& line : program_->lines())
            if (line.text.find("wall-clock pad") != std::string::npos)
                sum += number(line.text, " frames (");
        return sum;
    }

    /// Lines about the clock go on coming, and no air was lost but what a stall of the whole
    /// machine costs.
    void expectUndisturbedRecording() {
        for (int i = 0; i < 2; ++i)
            EXPECT_TRUE(program_->waitForLine(kSync, 15s, program_->lineCount()))
                << program_->text();
        EXPECT_LT(paddedSec(), 0.5) << program_->text();
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
    EXPECT_TRUE(hubHears(R"("recording":true)"));  // or its end is none that anybody was told of
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

/// What the program may take while it records, window and all; what a sanitizer takes for itself
/// comes on top.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr long kMostKilobytes = 1200 * 1024;
#else
constexpr long kMostKilobytes = 120 * 1024;
#endif

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

/// What is still there to be read, until `enough` of it was or nothing more comes.
std::string readAll(int connection, const std::function<bool(const std::string&)>& enough) {
    timeval patience{5, 0};
    setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    std::string heard;
    char piece[65536];
    while (!enough(heard)) {
        const auto count = ::recv(connection, piece, sizeof piece, 0);
        if (count <= 0) break;
        heard.append(piece, static_cast<std::size_t>(count));
    }
    return heard;
}

std::string pings(int count) {
    std::string lines;
    for (int n = 0; n < count; ++n)
        lines += R"({"type":"ping","from":"HUB","id":")" + std::to_string(n) + "\"}\n";
    return lines;
}

TEST_F(OnTheHub, one_that_stops_reading_stops_nothing) {
    // The answers to them are more than the program and the socket keep.
    constexpr int kPings = 100'000;
    std::atomic<bool> said = false;
    std::atomic<bool> mayRead = false;
    std::promise<std::string> heard;
    const ShoutingHub hub(socketPath(), 5, [&](int connection, const std::atomic<bool>& stop) {
        if (!sayAll(connection, pings(kPings), stop)) return;
        said = true;
        while (!mayRead && !stop) std::this_thread::sleep_for(10ms);
        // Of its own accord the program speaks on once there is room: behind all that was kept.
        const std::string kept = readAll(connection, [&](const std::string& all) {
            const auto own = all.rfind("sonavault.current-recording");
            return stop || (own != std::string::npos && own > 3 << 20 && all.back() == '\n');
        });
        sayAll(connection, "{\"type\":\"ping\",\"from\":\"HUB\",\"id\":\"last\"}\n", stop);
        heard.set_value(kept + readAll(connection, [&](const std::string& all) {
                            return stop || (all.find(R"("ref":"last")") != std::string::npos &&
                                            all.back() == '\n');
                        }));
        while (!stop) std::this_thread::sleep_for(10ms);
    });
    startRecording();
    for (int i = 0; i < 3; ++i) expectUndisturbedRecording();
    EXPECT_TRUE(eventually([&] { return said.load(); }));
    EXPECT_LT(program_->residentKilobytes(), kMostKilobytes);
    mayRead = true;
    auto answers = heard.get_future();
    ASSERT_EQ(answers.wait_for(30s), std::future_status::ready);
    std::istringstream lines(answers.get());
    int whole = 0;
    for (std::string line; std::getline(lines, line); ++whole)
        ASSERT_TRUE(line.starts_with('{') && line.ends_with('}')) << line;
    EXPECT_GT(whole, 10'000) << "what was kept";
    EXPECT_NE(lines.str().find(R"("ref":"last")"), std::string::npos);
    EXPECT_LT(whole, kPings) << "nothing was dropped: the program never met a full socket";
    expectUndisturbedRecording();
}

TEST_F(OnTheHub, one_that_only_ends_its_own_words_is_left_and_looked_for_again) {
    const ShoutingHub hub(socketPath(), 5, [&](int connection, const std::atomic<bool>& stop) {
        ::shutdown(connection, SHUT_WR);
        readAll(connection, [&](const std::string&) { return stop.load(); });
    });
    startRecording();
    EXPECT_TRUE(program_->waitForLine(kReconnecting, 10s)) << program_->text();
    expectUndisturbedRecording();
    EXPECT_GE(hub.greeted(), 2);
}

struct Nonsense {
    const char* name;
    std::string bytes;
};

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

std::string playbackEvent(const std::string& state, const std::string& cause) {
    return R"({"v":1,"type":"notify","from":"Cadenzo","topic":"cadenzo.playback-state-changed",)"
           R"("payload":{"playbackState":")" +
           state + R"(","cause":")" + cause + "\"}}\n";
}

/// The lines of the day's log that have been ended.
std::vector<std::string> rowsOf(const std::string& log) {
    std::vector<std::string> rows;
    for (std::size_t at = 0, end; (end = log.find('\n', at)) != std::string::npos; at = end + 1)
        rows.push_back(log.substr(at, end - at));
    return rows;
}

TEST_F(OnTheHub, playback_events_without_end_become_whole_rows_and_cost_no_air) {
    int next = 0;  // only on the hub's thread
    const ShoutingHub hub(socketPath(), 5, [&](int connection, const std::atomic<bool>& stop) {
        const auto until = std::chrono::steady_clock::now() + 10s;
        while (std::chrono::steady_clock::now() < until) {
            std::string events;
            for (const int end = next + 100; next < end; ++next)
                events += playbackEvent(next % 2 ? "playing" : "paused", std::to_string(next));
            if (!sayAll(connection, events, stop)) return;
        }
        while (!stop) std::this_thread::sleep_for(10ms);
    });
    startRecording();
    for (int i = 0; i < 3; ++i) expectUndisturbedRecording();
    EXPECT_LT(program_->residentKilobytes(), kMostKilobytes);
    const auto rows = rowsOf(readFile(station_.dayFile("csv")));
    ASSERT_GT(rows.size(), 1000U);
    int last = -1;
    for (const auto& row : rows) {
        const auto at = row.find(" — ");
        if (at == std::string::npos) continue;  // the header, and the automation's own
        const int number = std::stoi(row.substr(at + std::strlen(" — ")));
        const std::string label =
            number % 2 ? "cadenzo_resume,Cadenzo resumed — " : "cadenzo_pause,Cadenzo paused — ";
        ASSERT_EQ(row.substr(8), "," + label + std::to_string(number) + ",0");
        if (last >= 0) {
            ASSERT_EQ(number, last + 1) << "one was lost";
        }
        last = number;
    }
    EXPECT_GT(last, 1000);
}

std::string repeated(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) all += text;
    return all;
}

INSTANTIATE_TEST_SUITE_P(
    Nonsense, AgainstAHubThat,
    ::testing::Values(
        Nonsense{"sends_lines_of_five_megabytes",
                 playbackEvent("paused", std::string(5 << 20, 'x'))},
        Nonsense{"sends_five_megabytes_that_mean_nothing", std::string(5 << 20, 'x') + "\n"},
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
    EXPECT_TRUE(program_->waitForLine(kReconnecting, 10s)) << program_->text();
    expectUndisturbedRecording();
    ::close(waiting);
}

}  // namespace
}  // namespace sonavault::testing
