#pragma once

#include <QElapsedTimer>
#include <QTcpSocket>
#include <QTimer>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "automation/MarkerOrder.h"
#include "automation/Rundown.h"
#include "platform/Clock.h"

namespace sonavault::automation {

/// Where markers come from by themselves.
enum class MarkerSource {
    off,   ///< nowhere: the link opens with the first order
    demo,  ///< the programme's rundown
    script
};

struct MarkerOptions {
    std::string host = "127.0.0.1";
    std::uint16_t port = 9172;
    bool bigEndian = false;
    MarkerSource source = MarkerSource::off;
    std::vector<TimedOrder> script;  ///< in order of time
    unsigned seed = 1;               ///< the programme's
};

/// Tells the recorder the station's markers over a link of their own, and connects again whenever
/// it has to. A marker that finds no connection waits for the next, with the 99 before it.
///
/// Thread: the one that made it, which runs an event loop.
class MarkerSender {
  public:
    /// `say` gets a line for each thing a person may want to know; for a message that was handed to
    /// the connection "marker sent: " and its text.
    MarkerSender(MarkerOptions options, const Clock& clock,
                 std::function<void(const std::string&)> say);
    ~MarkerSender();

    /// Begins; second 0 of a script is now.
    void start();

    void obey(const MarkerOrder& order);

    /// Closes the link once what was sent has left, and does nothing any more.
    void end();

  private:
    struct Waiting {
        MarkerOrder order;
        WallTime event;
    };

    void tick();
    void takeCues();
    void takeScript();
    void put(const MarkerOrder& order, WallTime event);
    void drop();
    void connectWhenDue();
    void connected();
    void lost(const std::string& why);
    void sendWaiting();
    void send(const Waiting& waiting);
    void write(std::span<const std::uint8_t> bytes);
    double elapsed() const { return static_cast<double>(running_.nsecsElapsed()) / 1e9; }

    const MarkerOptions options_;
    const Clock& clock_;
    const std::function<void(const std::string&)> say_;
    Rundown rundown_;
    WallTime cuedUpTo_;
    std::size_t nextOfScript_ = 0;
    std::deque<Waiting> waiting_;
    bool wantsLink_ = false;
    double nextAttempt_ = 0;
    std::string lastLoss_;
    QElapsedTimer running_;
    QTcpSocket socket_;
    QTimer timer_;
};

}  // namespace sonavault::automation
