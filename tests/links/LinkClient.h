#pragma once

#include <QTcpSocket>
#include <cstdint>

#include "links/WireBytes.h"

namespace sonavault::testing {

/// The other side of a link, as a test drives it: every call returns when the network has done it.
class LinkClient {
  public:
    LinkClient() = default;
    explicit LinkClient(std::uint16_t port) { connectTo(port); }

    bool connectTo(std::uint16_t port, const QString& host = "127.0.0.1");
    /// False when the other side closed before it took all of it.
    bool send(const Bytes& bytes);
    /// Gives the bytes to the system without waiting for them to leave; false once `patienceMs`
    /// brought no progress.
    bool push(const Bytes& bytes, int patienceMs);
    bool waitForClose();
    bool isConnected() const { return socket_.state() == QAbstractSocket::ConnectedState; }
    /// A close that the other side sees as an orderly end.
    void close();
    /// A close without ceremony, as of a process that was killed with data unread.
    void abort() { socket_.abort(); }
    QTcpSocket& socket() { return socket_; }

  private:
    QTcpSocket socket_;
};

/// A port on which nobody listens at the moment.
std::uint16_t freePort();

}  // namespace sonavault::testing
