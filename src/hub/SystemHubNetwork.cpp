#include "hub/SystemHubNetwork.h"

#include <QTimer>
#include <algorithm>
#include <limits>

#include "hub/SocketConnection.h"

namespace sonavault {
namespace {

using SteadyClock = std::chrono::steady_clock;

// As good as never, and still a number of nanoseconds.
constexpr std::chrono::hours kLongestDelay{24 * 36'500};

/// A Qt timer that is made and destroyed on the queue, whoever asks for it.
class QueueTimer final : public HubTimer, public std::enable_shared_from_this<QueueTimer> {
  public:
    QueueTimer(Executor& queue, std::chrono::milliseconds delay, std::function<void()> handler)
        : queue_(queue), deadline_(deadlineIn(delay)), handler_(std::move(handler)) {}

    void resume() override {
        queue_.post([self = shared_from_this()] { self->startOnQueue(); });
    }

    void cancel() override {
        cancelled_ = true;
        timer_.reset();
    }

  private:
    static SteadyClock::time_point deadlineIn(std::chrono::milliseconds delay) {
        using std::chrono::milliseconds;
        return SteadyClock::now() + std::clamp(delay, milliseconds(0), milliseconds(kLongestDelay));
    }

    void startOnQueue() {
        if (cancelled_) return;
        timer_ = std::make_unique<QTimer>();
        timer_->setSingleShot(true);
        timer_->setTimerType(Qt::PreciseTimer);
        // The timer's own hold on this ends with it, in ring() or cancel().
        QObject::connect(timer_.get(), &QTimer::timeout,
                         [self = shared_from_this()] { self->ring(); });
        waitOn();
    }

    // Qt's timers reach 24 days; longer delays are waited for in pieces.
    void waitOn() {
        using std::chrono::ceil;
        using std::chrono::milliseconds;
        const milliseconds left = ceil<milliseconds>(deadline_ - SteadyClock::now());
        timer_->start(
            std::clamp(left, milliseconds(0), milliseconds(std::numeric_limits<int>::max())));
    }

    void ring() {
        if (cancelled_) return;
        if (SteadyClock::now() < deadline_) return waitOn();
        const auto self = shared_from_this();
        cancelled_ = true;
        // Not at once: it is in the midst of its own signal.
        queue_.post([ended = std::shared_ptr<QTimer>(std::move(timer_))] {});
        handler_();
    }

    Executor& queue_;
    const SteadyClock::time_point deadline_;
    const std::function<void()> handler_;

    // Only on the queue.
    std::unique_ptr<QTimer> timer_;
    bool cancelled_ = false;
};

}  // namespace

std::shared_ptr<HubTimer> SystemHubNetwork::makeTimer(std::chrono::milliseconds delay,
                                                      std::function<void()> handler) {
    return std::make_shared<QueueTimer>(queue_, delay, std::move(handler));
}

std::shared_ptr<HubConnection> SystemHubNetwork::makeConnection(const std::string& path,
                                                                HubConnection::Handlers handlers) {
    return std::make_shared<SocketConnection>(queue_, path, std::move(handlers));
}

}  // namespace sonavault
