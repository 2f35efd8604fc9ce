#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "hub/HubNetwork.h"
#include "platform/Executor.h"
#include "platform/LocalSocket.h"

namespace sonavault {

/// The largest read from the socket. Units: bytes
constexpr std::size_t kReceiveChunkBytes = 65'536;

/// What may wait to be sent. A hub that has stopped reading costs envelopes beyond this, not
/// memory. Units: bytes
constexpr std::size_t kMostUnsentBytes = 4'194'304;

/// A HubConnection over a Unix-domain stream socket.
///
/// Held by shared pointer, because work that it has posted to its queue holds it too.
class SocketConnection final : public HubConnection,
                               public std::enable_shared_from_this<SocketConnection> {
  public:
    /// `queue` has an event loop and outlives every owner of the connection.
    SocketConnection(Executor& queue, std::string path, Handlers handlers);
    ~SocketConnection() override;

    void start() override;
    void cancel() override;
    void send(std::string line) override;
    void pauseReceiving(bool paused) override;

  private:
    void connectNow();
    void receive();
    void flush();
    bool takeNextPiece();
    void letPieceGo();
    void stopSending(const std::string& error);
    void refuseLines();
    void fail(const std::string& error);
    void close();
    void tell(ConnectionEvent::Kind kind, const std::string& error = {});

    Executor& queue_;
    const std::string path_;
    const Handlers handlers_;

    // Only on the queue.
    std::unique_ptr<LocalSocket> socket_;
    bool cancelled_ = false;
    bool paused_ = false;
    std::string piece_;  // being written; empty when there is nothing to write
    std::size_t written_ = 0;
    std::optional<std::string> sendingFault_;
    std::vector<char> chunk_;

    std::mutex outboxMutex_;
    std::vector<std::string> outbox_;  // guarded by outboxMutex_: whole lines behind piece_
    std::size_t unsent_ = 0;           // guarded by outboxMutex_: bytes of outbox_ and piece_
    bool flushIsPosted_ = false;       // guarded by outboxMutex_
    bool closed_ = false;              // guarded by outboxMutex_
};

}  // namespace sonavault
