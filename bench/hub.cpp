#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <string>

#include "hub/ManualHubNetwork.h"
#include "hub/SwitchboardClientImpl.h"
#include "hub/SystemHubNetwork.h"

namespace {

using namespace sonavault;
using sonavault::testing::ManualHubNetwork;
using sonavault::testing::ManualHubWorld;
using SteadyClock = std::chrono::steady_clock;

constexpr int kLines = 20'000;
constexpr std::size_t kReadBytes = 65'536;

/// Runs callbacks at once, so that what is measured is the client alone.
class AtOnce final : public Executor {
  public:
    void post(std::function<void()> task) override { task(); }
};

/// Publications as the automation sends them.
std::string publications() {
    std::string bytes;
    for (int i = 0; i < kLines; ++i)
        bytes += R"({"v":1,"type":"notify","from":"Cadenzo","topic":"cadenzo.playback-state-)"
                 R"(changed","payload":{"playbackState":"silence","cause":"silence detector",)"
                 R"("at":"2026-05-08T14:03:07.250Z","silenceDurationSec":)" +
                 std::to_string(i) + ".5}}\n";
    return bytes;
}

double secondsSince(SteadyClock::time_point begun) {
    return std::chrono::duration<double>(SteadyClock::now() - begun).count();
}

double secondsOfParsing(const std::string& bytes) {
    const auto begun = SteadyClock::now();
    for (std::size_t at = 0; at < bytes.size();) {
        const auto end = bytes.find('\n', at);
        const auto line = QByteArray::fromRawData(bytes.data() + at, static_cast<int>(end - at));
        benchmark::DoNotOptimize(QJsonDocument::fromJson(line).isObject());
        at = end + 1;
    }
    return secondsSince(begun);
}

double secondsOfHearing(testing::ManualConnection& hub, const std::string& bytes) {
    const auto begun = SteadyClock::now();
    for (std::size_t at = 0; at < bytes.size(); at += kReadBytes)
        hub.deliver(std::string_view(bytes).substr(at, kReadBytes));
    return secondsSince(begun);
}

/// The client and the yardstick take turns, so that both meet the machine in the same mood.
void dispatchesPublicationsInTheTimeOfParsingThem(benchmark::State& state) {
    const SystemClock clock;
    AtOnce queue;
    const auto world = std::make_shared<ManualHubWorld>();
    SwitchboardClientImpl client({.clock = clock,
                                  .mainQueue = queue,
                                  .network = std::make_unique<ManualHubNetwork>(world),
                                  .socketPath = "/none"});
    int heard = 0;
    client.subscribe("cadenzo.playback-state-changed", [&](const SwitchboardMessage&) { ++heard; });
    client.connect("Sonavault", &queue);
    const std::string bytes = publications();
    double hearing = 0;
    double parsing = 0;
    while (state.KeepRunning()) {
        heard = 0;
        const double took = secondsOfHearing(world->newest(), bytes);
        if (heard != kLines) return state.SkipWithError("publications were lost");
        state.SetIterationTime(took);
        hearing += took;
        parsing += secondsOfParsing(bytes);
    }
    state.counters["envelopes_per_second"] =
        static_cast<double>(kLines) * static_cast<double>(state.iterations()) / hearing;
    state.counters["to_parsing_alone"] = hearing / parsing;
}

/// A hub on a socket, on a thread of its own, that says one thing for as long as it lives.
class ShoutingHub {
  public:
    ShoutingHub(const std::string& path, QByteArray words) : words_(std::move(words)) {
        queue_.runAndWait([&] {
            server_ = std::make_unique<QLocalServer>();
            server_->listen(QString::fromStdString(path));
        });
        queue_.post([this] { shout(); });
    }
    ~ShoutingHub() { ended_ = true; }
    ShoutingHub(const ShoutingHub&) = delete;
    ShoutingHub& operator=(const ShoutingHub&) = delete;

  private:
    void shout() {
        while (!ended_ && !server_->waitForNewConnection(50)) continue;
        QLocalSocket* const program = server_->nextPendingConnection();  // the server's own
        while (!ended_ && program && program->state() == QLocalSocket::ConnectedState) {
            if (program->bytesToWrite() < words_.size()) program->write(words_);
            program->waitForBytesWritten(20);
        }
        server_.reset();
    }

    const QByteArray words_;
    std::atomic<bool> ended_ = false;
    std::unique_ptr<QLocalServer> server_;  // only on queue_
    SerialQueue queue_{"bench.hub"};
};

void workFor(std::chrono::microseconds span) {
    const auto until = SteadyClock::now() + span;
    while (SteadyClock::now() < until) continue;
}

/// The display's timer, and by how much it came late at worst.
class WatchedTick {
  public:
    WatchedTick() {
        tick_.setTimerType(Qt::PreciseTimer);
        QObject::connect(&tick_, &QTimer::timeout, [this] {
            longest_ = std::max(longest_, secondsSince(last_));
            last_ = SteadyClock::now();
        });
        tick_.start(50);
    }

    /// Runs the event loop for so long.
    double lateMillisecondsWithin(double seconds) {
        last_ = SteadyClock::now();
        longest_ = 0;
        const auto begun = last_;
        while (secondsSince(begun) < seconds) QCoreApplication::processEvents();
        return std::max(0.0, longest_ * 1000 - 50);
    }

  private:
    QTimer tick_;
    SteadyClock::time_point last_;
    double longest_ = 0;
};

/// The yardstick is the same thread before the hub is joined: how late the tick comes by itself.
/// What an event costs is the row that it adds to a day's log, about 0.1 ms.
void keepsTheTickWhileTheHubShouts(benchmark::State& state) {
    int argc = 0;
    const QCoreApplication application(argc, nullptr);
    const QTemporaryDir folder;
    const std::string path = folder.filePath("hub.sock").toStdString();
    const SystemClock clock;
    MainQueue queue;
    const ShoutingHub hub(path, QByteArray::fromStdString(publications()));
    SwitchboardClientImpl client({.clock = clock,
                                  .mainQueue = queue,
                                  .network = std::make_unique<SystemHubNetwork>(),
                                  .socketPath = path});
    int heard = 0;
    client.subscribe("cadenzo.playback-state-changed", [&](const SwitchboardMessage&) {
        ++heard;
        workFor(std::chrono::microseconds(100));
    });
    WatchedTick tick;
    const double inQuiet = tick.lateMillisecondsWithin(3);
    client.connect("Sonavault", &queue);
    double shoutedAt = 0;
    while (state.KeepRunning()) {
        shoutedAt = std::max(shoutedAt, tick.lateMillisecondsWithin(1));
        state.SetIterationTime(1);
    }
    if (heard == 0) state.SkipWithError("nothing was heard");
    state.counters["events_per_second"] = heard / static_cast<double>(state.iterations());
    state.counters["tick_late_ms"] = shoutedAt;
    state.counters["tick_late_ms_in_quiet"] = inQuiet;
    client.disconnect();
}

/// What it costs the caller to publish while there is no hub.
void publishesWithoutAHub(benchmark::State& state) {
    const SystemClock clock;
    AtOnce queue;
    const auto world = std::make_shared<ManualHubWorld>();
    SwitchboardClientImpl client({.clock = clock,
                                  .mainQueue = queue,
                                  .network = std::make_unique<ManualHubNetwork>(world),
                                  .socketPath = "/none"});
    client.connect("Sonavault", &queue);
    world->newest().tell(ConnectionEvent::Kind::waiting, "No such file or directory");
    const QJsonObject value{{"date", "2026-05-08"}, {"recording", true}, {"durationSec", 1.5}};
    while (state.KeepRunning()) client.stateSet("sonavault.current-recording", value);
}

}  // namespace

BENCHMARK(publishesWithoutAHub);
BENCHMARK(keepsTheTickWhileTheHubShouts)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);
BENCHMARK(dispatchesPublicationsInTheTimeOfParsingThem)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(30);

BENCHMARK_MAIN();
