#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "hub/HubThread.h"
#include "hub/SwitchboardClientImpl.h"
#include "hub/SystemHubNetwork.h"
#include "support/Eventually.h"

namespace sonavault::testing {
namespace {

using State = SwitchboardState;

/// How often each of many requests was answered.
class Answers {
  public:
    explicit Answers(std::size_t requests) : counts_(requests) {}

    void note(std::size_t request) {
        ++counts_[request];
        ++total_;
    }
    bool all() const { return total_ >= counts_.size(); }
    bool eachOnce() const {
        for (const auto& count : counts_)
            if (count != 1) return false;
        return true;
    }

  private:
    std::vector<std::atomic<int>> counts_;
    std::atomic<std::size_t> total_{0};
};

class HubRaceTest : public ::testing::Test {
  protected:
    void join() {
        client_.connect("Sonavault", &callbacks_);
        ASSERT_TRUE(eventually([&] { return client_.currentState().is<State::Connected>(); }));
    }

    /// At its end no callback runs any more: made after what the callbacks of a test use.
    class Quiet {
      public:
        explicit Quiet(HubRaceTest& test) : test_(test) {}
        ~Quiet() {
            test_.client_.disconnect();
            test_.callbacks_.runAndWait([] {});
        }
        Quiet(const Quiet&) = delete;
        Quiet& operator=(const Quiet&) = delete;

      private:
        HubRaceTest& test_;
    };

    SystemClock clock_;
    HubThread hub_;
    SerialQueue callbacks_{"test.callbacks"};
    SwitchboardClientImpl client_{{.clock = clock_,
                                   .mainQueue = callbacks_,
                                   .network = std::make_unique<SystemHubNetwork>(),
                                   .socketPath = hub_.path()}};
};

/// Pings in batches, with a limit that follows the machine: longer when none of a batch was
/// answered in time, shorter when all were. So replies and timers go on meeting.
class PingSeries {
  public:
    PingSeries(SwitchboardClientImpl& client, Answers& answers)
        : client_(client), answers_(answers) {}

    void run(std::size_t first, std::size_t count) {
        for (std::size_t batch = 0; batch < count; batch += kBatch) runBatch(first + batch);
    }
    int succeeded() const { return succeeded_; }

  private:
    static constexpr std::size_t kBatch = 50;

    void runBatch(std::size_t first) {
        const int succeededBefore = succeeded_;
        const std::size_t doneBefore = done_;
        for (std::size_t i = first; i < first + kBatch; ++i)
            client_.ping(limitMs_, [this, i](const PingResult& result) {
                if (result) ++succeeded_;
                answers_.note(i);
                ++done_;
            });
        EXPECT_TRUE(eventually([&] { return done_ == doneBefore + kBatch; }));
        const int succeeded = succeeded_ - succeededBefore;
        if (succeeded == 0) limitMs_ = 2 * limitMs_ + 1;
        if (succeeded == kBatch) limitMs_ /= 2;
    }

    SwitchboardClientImpl& client_;
    Answers& answers_;
    std::int64_t limitMs_ = 1;
    std::atomic<int> succeeded_{0};
    std::atomic<std::size_t> done_{0};
};

TEST_F(HubRaceTest, answers_each_ping_once_when_reply_and_timer_meet) {
    constexpr std::size_t kPings = 2000;
    join();
    Answers answers(kPings);
    PingSeries here(client_, answers);
    PingSeries there(client_, answers);
    const Quiet quiet(*this);
    std::thread other([&] { there.run(kPings / 2, kPings / 2); });
    here.run(0, kPings / 2);
    other.join();
    client_.disconnect();
    callbacks_.runAndWait([] {});
    EXPECT_TRUE(answers.all());
    EXPECT_TRUE(answers.eachOnce());
    const int succeeded = here.succeeded() + there.succeeded();
    RecordProperty("succeeded", succeeded);
    // A limit that has grown enough lets a whole batch through, on any machine.
    EXPECT_GE(succeeded, 100);
    EXPECT_LT(succeeded, static_cast<int>(kPings)) << "no timer ever met a reply";
}

TEST_F(HubRaceTest, answers_each_request_once_when_reply_and_break_meet) {
    constexpr std::size_t kRounds = 60;
    constexpr std::size_t kPerRound = 15;
    Answers answers(kRounds * kPerRound);
    const Quiet quiet(*this);
    const auto ask = [&](std::size_t first) {
        for (std::size_t i = first; i < first + kPerRound; i += 3) {
            client_.ping(60'000, [&, i](const PingResult&) { answers.note(i); });
            client_.stateGet("k", [&, i](const StateGetResult&) { answers.note(i + 1); });
            client_.query("Nobody", "t", {}, 60'000,
                          [&, i](const QueryResult&) { answers.note(i + 2); });
        }
    };
    for (std::size_t round = 0; round < kRounds; ++round) {
        join();
        std::thread asker([&] { ask(round * kPerRound); });
        if (round % 2 == 0)
            hub_.obeyLater("drop");
        else
            client_.disconnect();
        asker.join();
        // Whatever was asked after the break waits for the next one.
        client_.disconnect();
    }
    EXPECT_TRUE(eventually([&] { return answers.all(); }));
    callbacks_.runAndWait([] {});
    EXPECT_TRUE(answers.eachOnce());
}

TEST_F(HubRaceTest, brings_each_subscription_to_the_hub_when_subscribe_and_reconnect_meet) {
    constexpr std::size_t kRounds = 50;
    constexpr std::size_t kPerRound = 5;
    std::vector<std::atomic<bool>> heard(kRounds * kPerRound);
    const Quiet quiet(*this);
    const auto topic = [](std::size_t i) { return "t" + std::to_string(i); };
    for (std::size_t round = 0; round < kRounds; ++round) {
        std::thread subscriber([&, round] {
            for (std::size_t i = round * kPerRound; i < (round + 1) * kPerRound; ++i)
                client_.subscribe(topic(i),
                                  [&heard, i](const SwitchboardMessage&) { heard[i] = true; });
        });
        client_.connect("Sonavault", &callbacks_);
        if (round % 3 == 0) {
            EXPECT_TRUE(eventually([&] { return client_.currentState().is<State::Connected>(); }));
        }
        subscriber.join();
    }
    for (std::size_t i = 0; i < heard.size(); ++i) {
        ASSERT_TRUE(eventually([&] {
            hub_.obey("publish A " + topic(i));
            return heard[i].load();
        })) << topic(i);
    }
}

TEST_F(HubRaceTest, stands_calls_from_everywhere_while_the_hub_comes_and_goes) {
    std::atomic<bool> done{false};
    std::atomic<int> states{0};
    const Quiet quiet(*this);
    client_.addStateObserver([&](const State&) { ++states; });
    join();
    std::vector<std::thread> callers;
    for (int caller = 0; caller < 3; ++caller)
        callers.emplace_back([&, caller] {
            const std::string topic = "t" + std::to_string(caller);
            while (!done) {
                client_.subscribe(topic, [&](const SwitchboardMessage& message) {
                    client_.stateSet("seen", message.payload);
                });
                client_.notifyTopic(topic, {{"n", caller}});
                client_.notifyRecipients({"Sonavault"}, {});
                client_.ping(5, [](const PingResult&) {});
                client_.addStateObserver([&](const State&) { client_.currentState(); });
                client_.unsubscribe(topic);
                std::this_thread::yield();
            }
        });
    for (int round = 0; round < 40; ++round) {
        hub_.obey("drop");
        client_.connect("Sonavault", &callbacks_);
        EXPECT_TRUE(eventually([&] { return client_.currentState().is<State::Connected>(); }));
    }
    done = true;
    for (auto& caller : callers) caller.join();
    client_.disconnect();
    callbacks_.runAndWait([] {});
    EXPECT_GT(states, 80);
    EXPECT_EQ(client_.currentState(), State{});
}

}  // namespace
}  // namespace sonavault::testing
