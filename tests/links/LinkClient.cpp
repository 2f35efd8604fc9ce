#include "links/LinkClient.h"

#include <QTcpServer>

#include "support/Eventually.h"

namespace sonavault::testing {

namespace {
constexpr int kPatienceMs = static_cast<int>(std::chrono::milliseconds(kEventually).count());
}

bool LinkClient::connectTo(std::uint16_t port, const QString& host) {
    socket_.connectToHost(host, port);
    return socket_.waitForConnected(kPatienceMs);
}

bool LinkClient::push(const Bytes& bytes, int patienceMs) {
    socket_.write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size()));
    while (socket_.bytesToWrite() > 0)
        if (!socket_.waitForBytesWritten(patienceMs)) return false;
    return true;
}

bool LinkClient::send(const Bytes& bytes) {
    return push(bytes, kPatienceMs);
}

bool LinkClient::waitForClose() {
    return eventually([&] {
        if (isConnected()) socket_.waitForReadyRead(20);
        return !isConnected();
    });
}

void LinkClient::close() {
    socket_.disconnectFromHost();
    if (socket_.state() != QAbstractSocket::UnconnectedState)
        socket_.waitForDisconnected(kPatienceMs);
}

std::uint16_t freePort() {
    QTcpServer server;
    server.listen(QHostAddress::Any);
    return server.serverPort();
}

}  // namespace sonavault::testing
