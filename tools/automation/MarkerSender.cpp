#include "automation/MarkerSender.h"

#include <utility>

namespace sonavault::automation {

namespace {

constexpr int kTickMs = 10;
constexpr double kReconnectPauseSec = 0.5;
constexpr std::size_t kMostWaiting = 100;

// Beyond this the other side has stopped reading.
constexpr qint64 kMostUnsentBytes = 8 << 20;

// A clock that went further between two ticks was set, or the machine slept: the markers in between
// were never on the air.
constexpr double kClockStepSec = 5;

std::string hexWords(std::span<const std::uint8_t> bytes) {
    constexpr auto kDigits = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        if (!text.empty()) text += ' ';
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

}  // namespace

MarkerSender::MarkerSender(MarkerOptions options, const Clock& clock,
                           std::function<void(const std::string&)> say)
    : options_(std::move(options)),
      clock_(clock),
      say_(std::move(say)),
      rundown_(options_.seed),
      wantsLink_(options_.source != MarkerSource::off) {
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
MarkerSender::~MarkerSender() {
    socket_.disconnect();
}

void MarkerSender::start() {
    running_.start();
    cuedUpTo_ = clock_.now();
    timer_.start(kTickMs);
}

void MarkerSender::obey(const MarkerOrder& order) {
    wantsLink_ = true;
    if (std::holds_alternative<MarkerLinkDrop>(order)) return drop();
    put(order, clock_.now());
    sendWaiting();
}

void MarkerSender::end() {
    timer_.stop();
    socket_.disconnect();
    socket_.disconnectFromHost();
    if (socket_.state() != QAbstractSocket::UnconnectedState) socket_.waitForDisconnected(1000);
}

void MarkerSender::tick() {
    if (options_.source == MarkerSource::demo) takeCues();
    if (options_.source == MarkerSource::script) takeScript();
    connectWhenDue();
    sendWaiting();
}

void MarkerSender::takeCues() {
    const WallTime now = clock_.now();
    const double passed = secondsBetween(cuedUpTo_, now);
    if (passed >= 0 && passed <= kClockStepSec)
        for (const Cue& cue : rundown_.cues(cuedUpTo_, now)) put(cue.marker, cue.at);
    cuedUpTo_ = now;
}

void MarkerSender::takeScript() {
    while (nextOfScript_ < options_.script.size() &&
           options_.script[nextOfScript_].second <= elapsed())
        obey(options_.script[nextOfScript_++].order);
}

void MarkerSender::put(const MarkerOrder& order, WallTime event) {
    if (waiting_.size() == kMostWaiting) {
        say_("marker lost, having waited for a link too long");
        waiting_.pop_front();
    }
    waiting_.push_back({order, event});
}

void MarkerSender::drop() {
    nextAttempt_ = elapsed() + kReconnectPauseSec;
    if (socket_.state() == QAbstractSocket::ConnectedState) socket_.disconnectFromHost();
}

void MarkerSender::connectWhenDue() {
    if (!wantsLink_ || socket_.state() != QAbstractSocket::UnconnectedState) return;
    if (elapsed() < nextAttempt_) return;
    socket_.connectToHost(QString::fromStdString(options_.host), options_.port);
}

void MarkerSender::connected() {
    lastLoss_.clear();
    socket_.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    say_("marker link: connected to " + options_.host + ":" + std::to_string(options_.port));
    sendWaiting();
}

void MarkerSender::lost(const std::string& why) {
    nextAttempt_ = elapsed() + kReconnectPauseSec;
    if (why != lastLoss_) say_("marker link: not connected: " + why);
    lastLoss_ = why;
}

void MarkerSender::sendWaiting() {
    while (!waiting_.empty() && socket_.state() == QAbstractSocket::ConnectedState &&
           socket_.bytesToWrite() < kMostUnsentBytes) {
        const Waiting next = std::move(waiting_.front());
        waiting_.pop_front();
        send(next);
    }
}

void MarkerSender::send(const Waiting& waiting) {
    if (const auto* raw = std::get_if<MarkerBytes>(&waiting.order)) {
        write(raw->bytes);
        return say_("marker bytes sent: " + hexWords(raw->bytes));
    }
    const auto* marker = std::get_if<StationMarker>(&waiting.order);
    const std::string payload = marker ? markerPayload(*marker, waiting.event, clock_.now())
                                       : std::get<MarkerText>(waiting.order).payload;
    write(markerFrame(payload, options_.bigEndian));
    say_("marker sent: " + payload);
}

void MarkerSender::write(std::span<const std::uint8_t> bytes) {
    socket_.write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size()));
}

}  // namespace sonavault::automation
