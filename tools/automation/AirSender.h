#pragma once

#include <QElapsedTimer>
#include <QTcpSocket>
#include <QTimer>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "automation/AirPacer.h"
#include "automation/Options.h"
#include "platform/Clock.h"

namespace sonavault::automation {

/// Sends the air over the link in real time, and connects again whenever it has to.
///
/// Thread: the one that made it, which runs an event loop.
class AirSender {
  public:
    /// `say` gets a line for each thing a person may want to know.
    AirSender(Options options, const Clock& clock, std::function<void(const std::string&)> say);
    ~AirSender();

    /// Begins; second 0 of the plan is now. `ended` is called once, with what the program exits
    /// with: 0, or 1 when it was to connect only once and could not.
    void start(std::function<void(int)> ended);

    void obey(const Command& command);

    std::int64_t framesSent() const { return framesSent_; }

  private:
    void tick();
    void connectWhenDue(double now);
    void connected();
    void lost(const std::string& why);
    void sendDue(double now);
    WallTime wallTimeOf(std::int64_t frame, double now);
    double elapsed() const { return static_cast<double>(running_.nsecsElapsed()) / 1e9; }
    void end(int exitCode);

    Options options_;
    const Clock& clock_;
    const std::function<void(const std::string&)> say_;
    std::function<void(int)> ended_;
    AirPacer pacer_;
    std::unique_ptr<Signal> signal_;
    std::vector<float> chunk_;
    WallTime secondZero_;
    double nextAttempt_ = 0;
    std::int64_t framesSent_ = 0;
    bool everConnected_ = false;
    std::string lastLoss_;
    QElapsedTimer running_;
    QTcpSocket socket_;
    QTimer timer_;
};

}  // namespace sonavault::automation
