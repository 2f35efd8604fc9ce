#pragma once

#include <algorithm>
#include <chrono>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "hub/HubNetwork.h"

namespace sonavault::testing {

/// A connection whose other side is the test.
class ManualConnection final : public HubConnection {
  public:
    ManualConnection(Handlers handlers, std::deque<std::function<void()>>& queue)
        : handlers_(std::move(handlers)), queue_(queue) {}

    void start() override { started = true; }
    void cancel() override {
        if (std::exchange(cancelled, true)) return;
        queue_.push_back([event = handlers_.event] {
            event({ConnectionEvent::Kind::cancelled, {}});
        });
    }
    void send(std::string line) override { sent.push_back(std::move(line)); }
    void pauseReceiving(bool isPaused) override { paused = isPaused; }

    void tell(ConnectionEvent::Kind kind, const std::string& error = {}) {
        handlers_.event({kind, error});
    }
    void deliver(std::string_view bytes) { handlers_.received(bytes); }

    bool started = false;
    bool cancelled = false;
    bool paused = false;
    std::vector<std::string> sent;  ///< whole lines, each with its line feed

  private:
    const Handlers handlers_;
    std::deque<std::function<void()>>& queue_;
};

/// A timer that rings when the test's time has come.
class ManualTimer final : public HubTimer {
  public:
    ManualTimer(std::chrono::milliseconds delay, std::chrono::milliseconds due,
                std::function<void()> handler)
        : delay_(delay), due_(due), handler_(std::move(handler)) {}

    void resume() override { running_ = true; }
    void cancel() override { cancelled_ = true; }

    bool waits() const { return running_ && !cancelled_; }
    std::chrono::milliseconds delay() const { return delay_; }
    std::chrono::milliseconds due() const { return due_; }
    void ring() {
        cancelled_ = true;
        handler_();
    }

  private:
    const std::chrono::milliseconds delay_;
    const std::chrono::milliseconds due_;
    const std::function<void()> handler_;
    bool running_ = false;
    bool cancelled_ = false;
};

/// What a test sees of the network that it gave to a client: it stands still until moved.
struct ManualHubWorld {
    std::chrono::milliseconds now{0};
    std::vector<std::string> paths;
    std::vector<std::shared_ptr<ManualConnection>> connections;
    std::vector<std::shared_ptr<ManualTimer>> timers;
    std::deque<std::function<void()>> queue;

    ManualConnection& newest() { return *connections.back(); }

    void runQueue() {
        while (!queue.empty()) {
            const auto task = std::move(queue.front());
            queue.pop_front();
            task();
        }
    }

    /// The delays of all timers that run. Units: milliseconds
    std::vector<std::int64_t> waitingDelays() const {
        std::vector<std::int64_t> delays;
        for (const auto& timer : timers)
            if (timer->waits()) delays.push_back(timer->delay().count());
        return delays;
    }

    /// Lets time pass and rings what falls due, in order of time.
    void advance(std::chrono::milliseconds span) {
        const auto end = now + span;
        for (;;) {
            std::shared_ptr<ManualTimer> first;
            for (const auto& timer : timers)
                if (timer->waits() && timer->due() <= end &&
                    (!first || timer->due() < first->due()))
                    first = timer;
            if (!first) break;
            now = std::max(now, first->due());
            first->ring();
        }
        now = end;
    }
};

/// A network without a thread: all of it runs on the test's own.
class ManualHubNetwork final : public HubNetwork {
  public:
    explicit ManualHubNetwork(std::shared_ptr<ManualHubWorld> world) : world_(std::move(world)) {}

    void runAndWait(const std::function<void()>& task) override { task(); }

    std::shared_ptr<HubTimer> makeTimer(std::chrono::milliseconds delay,
                                        std::function<void()> handler) override {
        world_->timers.push_back(
            std::make_shared<ManualTimer>(delay, world_->now + delay, std::move(handler)));
        return world_->timers.back();
    }

    std::shared_ptr<HubConnection> makeConnection(const std::string& path,
                                                  HubConnection::Handlers handlers) override {
        world_->paths.push_back(path);
        world_->connections.push_back(
            std::make_shared<ManualConnection>(std::move(handlers), world_->queue));
        return world_->connections.back();
    }

  private:
    const std::shared_ptr<ManualHubWorld> world_;
};

}  // namespace sonavault::testing
