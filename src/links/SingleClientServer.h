#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Executor.h"
#include "platform/Log.h"
#include "platform/SerialQueue.h"

class QTcpServer;
class QTcpSocket;
class QTimer;

namespace sonavault {

/// What became of a listening port.
enum class ListenerState {
    ready,     ///< clients can connect
    failed,    ///< no new clients any more
    cancelled  ///< stopped on purpose
};

/// What a link makes of its one client. Thread: all calls on the server's queue.
class ClientProtocol {
  public:
    virtual ~ClientProtocol() = default;

    /// A client's connection stands, and nothing of it has been read yet.
    virtual void clientReady() = 0;
    /// Asked before more is read. While it says no the system holds the sender back, a newcomer
    /// waits at the door, and it is asked again a few hundredths of a second later.
    virtual bool hasRoomForBytes() { return true; }
    /// Bytes in the order in which they were sent, in pieces of the network's choosing, at most
    /// 65536 at a time.
    virtual void bytesReceived(std::span<const std::uint8_t> bytes) = 0;
    /// Another client, or none, is next: whatever is known of the last one no longer holds.
    virtual void forgetClient() = 0;
    /// The client is gone; forgetClient() was called just before.
    virtual void clientGone() = 0;
    virtual void listenerStateChanged(ListenerState) {}
};

/// The life that the inbound links share: a TCP listener on all interfaces and at most one client,
/// the newest.
///
/// A newcomer ends the connection of the client before it. The end of that connection is an event
/// of its own, handled after the newcomer has taken the place, and it clears whatever is in the
/// place: so the newcomer is dropped as well, sees a close at once and gets in when it connects
/// again. What the older client sent before the newcomer came, its close included, is handled
/// first; a sender that closes and connects again is never taken for a second one.
///
/// Thread: construction, start(), stop() and destruction on the main thread; everything else
/// happens on a queue of the server's own, on which also the protocol is called. Destruction does
/// what stop() does, but tells the protocol nothing; an object that is its own server's protocol
/// declares the server as its last member. Owns: the queue, the listener and the connection.
class SingleClientServer {
  public:
    /// `logPrefix` begins each line, as "Sonavault audio server:". `port` 0 lets the system choose
    /// one.
    SingleClientServer(const std::string& queueLabel, std::string logPrefix, std::uint16_t port,
                       Log& log, ClientProtocol& protocol);
    ~SingleClientServer();
    SingleClientServer(const SingleClientServer&) = delete;
    SingleClientServer& operator=(const SingleClientServer&) = delete;

    /// Begins to listen; does nothing while it already does. Errors: a log line, and no retry.
    void start();

    /// Ends the client's connection and stops listening. The protocol is told of a cancelled
    /// listener before it returns, and of nothing afterwards.
    void stop();

    /// The port that clients reach, 0 while not listening. Thread: any.
    std::uint16_t listeningPort() const { return listeningPort_; }

    /// Ends the client's connection from within bytesReceived(); clientGone() follows as an event
    /// of its own.
    void dropClient();

    /// Logs `text` behind the prefix. Thread: any.
    void log(std::string_view text);

  private:
    struct Connection;

    void openListener();
    bool closeListener();
    void connectionsWaiting();
    void acceptNext();
    void acceptFailed();
    void acceptConnection(std::unique_ptr<QTcpSocket> socket);
    void displace();
    void cancelConnection();
    void handleReady(const Connection& connection);
    void handleDisconnect();
    void scheduleReceive();
    void receive(Connection& connection);
    void receiveIfThereIsRoom(Connection& connection);
    void lookForRoom();
    void receiveToTheEnd();
    void postEvent(std::function<void()> event);
    void disposeLater(std::unique_ptr<QTcpSocket> socket);

    const std::string logPrefix_;
    const std::uint16_t port_;
    Log& log_;
    ClientProtocol& protocol_;
    std::atomic<std::uint16_t> listeningPort_ = 0;

    // On the queue
    Lifetime life_;
    std::unique_ptr<QTcpServer> listener_;
    std::unique_ptr<QTimer> retryAccepting_;
    std::unique_ptr<QTimer> lookForRoom_;
    std::shared_ptr<Connection> connection_;
    std::vector<std::uint8_t> received_;
    bool acceptIsPosted_ = false;
    bool newcomerWaitsForRoom_ = false;

    // Joined first, so that the rest outlives whatever still runs on it
    SerialQueue queue_;
};

}  // namespace sonavault
