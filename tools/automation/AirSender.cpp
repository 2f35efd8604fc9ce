#include "automation/AirSender.h"

#include <cmath>
#include <utility>

namespace sonavault::automation {

namespace {

constexpr int kTickMs = 5;
constexpr double kReconnectPauseSec = 0.5;

// Beyond this the other side has stopped reading, and what it will not take is lost like any air.
constexpr double kMostUnsentSec = 1.0;

// The wall clock may be corrected while the program runs; smaller differences are the jitter of
// reading it.
constexpr double kClockToleranceSec = 0.005;

}  // namespace

AirSender::AirSender(Options options, const Clock& clock,
                     std::function<void(const std::string&)> say)
    : options_(std::move(options)),
      clock_(clock),
      say_(std::move(say)),
      pacer_(options_.format.sampleRate, options_.chunkSec),
      signal_(makeSignal(options_.signal)) {
    QObject::connect(&socket_, &QTcpSocket::connected, [this] { connected(); });
    QObject::connect(&socket_, &QTcpSocket::errorOccurred, [this] {
        if (socket_.state() != QAbstractSocket::ConnectedState)
            lost(socket_.errorString().toStdString());
    });
    QObject::connect(&socket_, &QTcpSocket::disconnected, [this] { lost("closed"); });
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, [this] { tick(); });
}

// Members die one by one, and the socket's last words must not reach what is gone already.
AirSender::~AirSender() {
    socket_.disconnect();
}

void AirSender::start(std::function<void(int)> ended) {
    ended_ = std::move(ended);
    running_.start();
    secondZero_ = clock_.now();
    timer_.start(kTickMs);
}

void AirSender::obey(const Command& command) {
    switch (command.kind) {
        case Command::Kind::drop:
            options_.plan.add({AirState::dropped, elapsed(), kReconnectPauseSec});
            break;
        case Command::Kind::stall:
            options_.plan.add({AirState::stalled, elapsed(), command.seconds});
            break;
        case Command::Kind::resume:
            options_.plan.resumeAt(elapsed());
            break;
        case Command::Kind::quit:
            end(0);
            break;
    }
}

void AirSender::tick() {
    const double now = elapsed();
    if (options_.durationSec && now >= *options_.durationSec) return end(0);
    const AirState state = options_.plan.at(now);
    const bool isConnected = socket_.state() == QAbstractSocket::ConnectedState;
    if (state == AirState::dropped) {
        if (isConnected) socket_.disconnectFromHost();
        nextAttempt_ = now;
    } else if (!isConnected) {
        connectWhenDue(now);
    } else if (state == AirState::stalled) {
        pacer_.beginAt(now);
    } else {
        sendDue(now);
    }
}

void AirSender::connectWhenDue(double now) {
    if (socket_.state() != QAbstractSocket::UnconnectedState || now < nextAttempt_) return;
    socket_.connectToHost(QString::fromStdString(options_.host), options_.port);
}

void AirSender::connected() {
    everConnected_ = true;
    lastLoss_.clear();
    socket_.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    const auto handshake = encodeHandshake(options_.format);
    socket_.write(reinterpret_cast<const char*>(handshake.data()),
                  static_cast<qint64>(handshake.size()));
    pacer_.beginAt(elapsed());
    say_("connected to " + options_.host + ":" + std::to_string(options_.port));
}

void AirSender::lost(const std::string& why) {
    nextAttempt_ = elapsed() + kReconnectPauseSec;
    if (why != lastLoss_) say_("not connected: " + why);
    lastLoss_ = why;
    if (options_.once && options_.plan.at(elapsed()) != AirState::dropped)
        end(everConnected_ ? 0 : 1);
}

void AirSender::sendDue(double now) {
    const double bytesPerSecond =
        static_cast<double>(options_.format.bytesPerFrame()) * options_.format.sampleRate;
    if (static_cast<double>(socket_.bytesToWrite()) > kMostUnsentSec * bytesPerSecond)
        return pacer_.beginAt(now);
    const AirPacer::Due due = pacer_.take(now);
    if (due.lost > 0) say_("lost " + std::to_string(due.lost) + " frames, having been too late");
    if (due.frames == 0) return;
    chunk_.resize(static_cast<std::size_t>(due.frames));
    signal_->fill(chunk_, wallTimeOf(due.first, now));
    const auto bytes = encodeFrames(chunk_, options_.format);
    socket_.write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size()));
    framesSent_ += due.frames;
}

WallTime AirSender::wallTimeOf(std::int64_t frame, double now) {
    const WallTime expected = after(secondZero_, now);
    const WallTime actual = clock_.now();
    if (std::abs(secondsBetween(expected, actual)) > kClockToleranceSec)
        secondZero_ = after(actual, -now);
    return after(secondZero_, static_cast<double>(frame) / options_.format.sampleRate);
}

void AirSender::end(int exitCode) {
    if (!ended_) return;
    timer_.stop();
    socket_.disconnect();
    socket_.disconnectFromHost();
    // What was sent leaves before the program does.
    if (socket_.state() != QAbstractSocket::UnconnectedState) socket_.waitForDisconnected(1000);
    std::exchange(ended_, nullptr)(exitCode);
}

}  // namespace sonavault::automation
