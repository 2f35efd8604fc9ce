#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace sonavault {

/// What a connection has to tell of itself.
struct ConnectionEvent {
    enum class Kind {
        setup,
        preparing,
        ready,      ///< bytes can pass
        waiting,    ///< there is nobody to connect to now
        failed,     ///< was up and broke, or was ended by the other side
        cancelled,  ///< ended by cancel()
    };

    Kind kind;
    std::string error{};  ///< the system's words for `waiting` and `failed`
};

/// One attempt at a stream to the hub and, where it succeeds, the stream itself. Letting go of it
/// closes it without a word.
class HubConnection {
  public:
    /// Both run on the network queue. After cancel() nothing comes but `cancelled`, and after
    /// `failed` nothing but that.
    struct Handlers {
        std::function<void(const ConnectionEvent&)> event;
        std::function<void(std::string_view bytes)> received;
    };

    virtual ~HubConnection() = default;

    /// Begins; what it comes to is told later. Thread: the network queue
    virtual void start() = 0;

    /// Thread: the network queue
    virtual void cancel() = 0;

    /// Sends `line` whole, after `ready` when that is still to come, or drops it whole: when the
    /// connection is gone, or when the other side has stopped reading. Thread: any
    virtual void send(std::string line) = 0;

    /// Leaves what comes in to wait where it is, the end of the stream included, or takes it up
    /// again. Thread: the network queue
    virtual void pauseReceiving(bool paused) = 0;
};

/// A handler that runs once after a delay, on the network queue.
class HubTimer {
  public:
    virtual ~HubTimer() = default;

    /// Lets the time run. Thread: any
    virtual void resume() = 0;

    /// The handler will not run any more. Thread: the network queue
    virtual void cancel() = 0;
};

/// What the client needs of the system: one serial queue, and sockets and timers that live on it.
///
/// Destruction ends the queue: afterwards no handler runs.
class HubNetwork {
  public:
    virtual ~HubNetwork() = default;

    /// Runs `task` on the queue and waits for its end; at once when already there. Thread: any
    virtual void runAndWait(const std::function<void()>& task) = 0;

    /// Not running until resumed. A delay below zero is none. Thread: any
    virtual std::shared_ptr<HubTimer> makeTimer(std::chrono::milliseconds delay,
                                                std::function<void()> handler) = 0;

    /// Thread: any
    virtual std::shared_ptr<HubConnection> makeConnection(const std::string& path,
                                                          HubConnection::Handlers handlers) = 0;
};

}  // namespace sonavault
