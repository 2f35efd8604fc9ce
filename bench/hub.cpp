#include <benchmark/benchmark.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <chrono>
#include <string>

#include "hub/ManualHubNetwork.h"
#include "hub/SwitchboardClientImpl.h"

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

}  // namespace

BENCHMARK(dispatchesPublicationsInTheTimeOfParsingThem)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(30);

BENCHMARK_MAIN();
