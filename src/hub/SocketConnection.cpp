#include "hub/SocketConnection.h"

#include <utility>

namespace sonavault {
SocketConnection::SocketConnection(Executor& queue, std::string path, Handlers handlers)
    : queue_(queue), path_(std::move(path)), handlers_(std::move(handlers)) {}

// The last owner may be any thread, and may be within a call of the socket's own.
SocketConnection::~SocketConnection() {
    if (socket_) queue_.post([closed = std::shared_ptr<LocalSocket>(std::move(socket_))] {});
}

void SocketConnection::start() {
    queue_.post([self = shared_from_this()] { self->connectNow(); });
}

void SocketConnection::connectNow() {
    if (cancelled_) return;
    tell(ConnectionEvent::Kind::preparing);
    auto connected = LocalSocket::connectTo(path_);
    if (!connected) {
        close();
        return tell(ConnectionEvent::Kind::waiting, connected.error());
    }
    socket_ = std::move(connected.value());
    chunk_.resize(kReceiveChunkBytes);
    const auto whenAlive = [this](void (SocketConnection::*member)()) {
        return [weak = weak_from_this(), member] {
            if (const auto self = weak.lock()) (self.get()->*member)();
        };
    };
    socket_->whenReadable(whenAlive(&SocketConnection::receive));
    socket_->whenWritable(whenAlive(&SocketConnection::flush));
    socket_->watchReadable(!paused_);
    tell(ConnectionEvent::Kind::ready);
    flush();
}

void SocketConnection::cancel() {
    if (std::exchange(cancelled_, true)) return;
    close();
    queue_.post([self = shared_from_this()] {
        self->handlers_.event({ConnectionEvent::Kind::cancelled, {}});
    });
}

void SocketConnection::send(std::string line) {
    {
        std::scoped_lock lock(outboxMutex_);
        if (closed_ || unsent_ + line.size() > kMostUnsentBytes) return;
        unsent_ += line.size();
        outbox_.push_back(std::move(line));
        if (std::exchange(flushIsPosted_, true)) return;
    }
    queue_.post([self = shared_from_this()] {
        {
            std::scoped_lock lock(self->outboxMutex_);
            self->flushIsPosted_ = false;
        }
        self->flush();
    });
}

void SocketConnection::pauseReceiving(bool paused) {
    paused_ = paused;
    if (socket_) socket_->watchReadable(!paused);
}

// One piece for each time around the event loop, so that timers and requests have their turn.
void SocketConnection::receive() {
    if (!socket_) return;
    const auto read = socket_->read(chunk_);
    if (!read) return fail(sendingFault_.value_or(read.error()));
    if (read.value().ended) return fail(sendingFault_.value_or("the hub closed the connection"));
    if (read.value().count > 0) handlers_.received({chunk_.data(), read.value().count});
}

// One piece for each time around the event loop, so that a busy sender can't keep the others
// waiting.
void SocketConnection::flush() {
    if (!socket_ || !takeNextPiece()) return;
    const auto taken = socket_->write(std::string_view(piece_).substr(written_));
    if (!taken) return stopSending(taken.error());
    written_ += taken.value();
    if (written_ == piece_.size()) letPieceGo();
    bool isMoreToSend = false;
    {
        std::scoped_lock lock(outboxMutex_);
        unsent_ -= taken.value();
        isMoreToSend = unsent_ > 0;
    }
    if (isMoreToSend) socket_->watchWritable();
}

/// True when piece_ holds bytes that are still to be written.
bool SocketConnection::takeNextPiece() {
    if (!piece_.empty()) return true;
    std::vector<std::string> lines;
    {
        std::scoped_lock lock(outboxMutex_);
        lines.swap(outbox_);
    }
    for (const auto& line : lines) piece_ += line;
    return !piece_.empty();
}

void SocketConnection::letPieceGo() {
    std::string().swap(piece_);
    written_ = 0;
}

// The hub no longer hears us, but what it said before is still there to be read, now or when
// receiving is taken up again. Its end comes behind that, whatever the hub itself does.
void SocketConnection::stopSending(const std::string& error) {
    sendingFault_ = error;
    letPieceGo();
    refuseLines();
    socket_->shutDown();
}

void SocketConnection::refuseLines() {
    std::vector<std::string> dropped;
    std::scoped_lock lock(outboxMutex_);
    closed_ = true;
    outbox_.swap(dropped);
}

void SocketConnection::fail(const std::string& error) {
    if (!socket_) return;
    close();
    tell(ConnectionEvent::Kind::failed, error);
}

void SocketConnection::close() {
    if (socket_) queue_.post([closed = std::shared_ptr<LocalSocket>(std::move(socket_))] {});
    socket_.reset();
    letPieceGo();
    refuseLines();
}

void SocketConnection::tell(ConnectionEvent::Kind kind, const std::string& error) {
    if (!cancelled_) handlers_.event({kind, error});
}

}  // namespace sonavault
