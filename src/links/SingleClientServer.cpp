#include "links/SingleClientServer.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <utility>

namespace sonavault {

namespace {

constexpr std::size_t kMostBytesPerRead = 65536;

// What a client sent before it was displaced fits the system's own buffers; one that keeps sending
// must not hold the newcomer up.
constexpr int kMostReadsBeforeDisplacing = 128;

// More newcomers at once than this wait a second before the system tries them again.
constexpr int kBacklog = 256;

constexpr int kAcceptRetryMs = 1000;
constexpr int kLookForRoomMs = 20;

std::string utf8(const QString& text) {
    return text.toStdString();
}

bool isClosed(const QTcpSocket& socket) {
    return socket.state() != QAbstractSocket::ConnectedState;
}

// A close by the other side is the usual end of a connection and no error.
bool hasFailed(const QTcpSocket& socket) {
    return isClosed(socket) && socket.error() != QAbstractSocket::RemoteHostClosedError;
}

}  // namespace

struct SingleClientServer::Connection {
    std::unique_ptr<QTcpSocket> socket;  ///< gone once the connection was cancelled or cleared
    bool cancelled = false;
    bool reading = false;
};

SingleClientServer::SingleClientServer(const std::string& queueLabel, std::string logPrefix,
                                       std::uint16_t port, Log& log, ClientProtocol& protocol)
    : logPrefix_(std::move(logPrefix)),
      port_(port),
      log_(log),
      protocol_(protocol),
      received_(kMostBytesPerRead),
      queue_(queueLabel) {}

SingleClientServer::~SingleClientServer() {
    queue_.runAndWait([this] { closeListener(); });
}

void SingleClientServer::start() {
    queue_.runAndWait([this] { openListener(); });
}

void SingleClientServer::stop() {
    queue_.runAndWait([this] {
        if (closeListener()) protocol_.listenerStateChanged(ListenerState::cancelled);
    });
}

void SingleClientServer::log(std::string_view text) {
    log_.line(logPrefix_ + ' ' + std::string(text));
}

void SingleClientServer::openListener() {
    if (listener_) return;
    auto listener = std::make_unique<QTcpServer>();
    listener->setListenBacklogSize(kBacklog);
    if (!listener->listen(QHostAddress::Any, port_)) {
        log("NWListener(create) failed: " + utf8(listener->errorString()));
        return;
    }
    listener_ = std::move(listener);
    QObject::connect(listener_.get(), &QTcpServer::newConnection, [this] { connectionsWaiting(); });
    QObject::connect(listener_.get(), &QTcpServer::acceptError, [this] { acceptFailed(); });
    retryAccepting_ = std::make_unique<QTimer>();
    retryAccepting_->setSingleShot(true);
    QObject::connect(retryAccepting_.get(), &QTimer::timeout,
                     [this] { listener_->resumeAccepting(); });
    lookForRoom_ = std::make_unique<QTimer>();
    lookForRoom_->setSingleShot(true);
    QObject::connect(lookForRoom_.get(), &QTimer::timeout, [this] { lookForRoom(); });
    listeningPort_ = listener_->serverPort();
    log("listening on " + std::to_string(listeningPort_));
    postEvent([this] { protocol_.listenerStateChanged(ListenerState::ready); });
}

bool SingleClientServer::closeListener() {
    life_ = Lifetime();  // what is still queued concerns nobody
    acceptIsPosted_ = false;
    newcomerWaitsForRoom_ = false;
    if (connection_ && connection_->socket) {
        connection_->socket->disconnect();
        connection_->socket->abort();
        disposeLater(std::move(connection_->socket));
    }
    connection_.reset();
    protocol_.forgetClient();
    if (!listener_) return false;
    retryAccepting_.reset();
    lookForRoom_.reset();
    listener_->disconnect();
    listener_->close();
    queue_.post([closed = std::shared_ptr<QTcpServer>(std::move(listener_))] {});
    listeningPort_ = 0;
    return true;
}

void SingleClientServer::connectionsWaiting() {
    if (acceptIsPosted_) return;
    acceptIsPosted_ = true;
    postEvent([this] { acceptNext(); });
}

// One at a time, so that the events of one newcomer are through before the next takes the place.
void SingleClientServer::acceptNext() {
    // Senders in quick succession must not bring in what one alone could not.
    if (!protocol_.hasRoomForBytes()) {
        newcomerWaitsForRoom_ = true;
        lookForRoom_->start(kLookForRoomMs);
        return;
    }
    acceptIsPosted_ = false;
    std::unique_ptr<QTcpSocket> socket(listener_->nextPendingConnection());
    if (socket) acceptConnection(std::move(socket));
    if (listener_->hasPendingConnections()) connectionsWaiting();
}

// A listener may outlive trouble with one newcomer, and a shortage of descriptors or memory.
void SingleClientServer::acceptFailed() {
    switch (listener_->serverError()) {
        case QAbstractSocket::NetworkError:
        case QAbstractSocket::SocketResourceError:
        case QAbstractSocket::UnknownSocketError:
            retryAccepting_->start(kAcceptRetryMs);
            return;
        default:
            break;
    }
    log("listener failed: " + utf8(listener_->errorString()));
    postEvent([this] { protocol_.listenerStateChanged(ListenerState::failed); });
}

void SingleClientServer::acceptConnection(std::unique_ptr<QTcpSocket> socket) {
    socket->setParent(nullptr);
    socket->setReadBufferSize(static_cast<qint64>(kMostBytesPerRead));
    socket->setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    if (connection_) displace();
    connection_ = std::make_shared<Connection>();
    connection_->socket = std::move(socket);
    protocol_.forgetClient();
    postEvent([this, connection = connection_] { handleReady(*connection); });
}

// The older client's last bytes and its close came before the newcomer did, so they come first here
// too.
void SingleClientServer::displace() {
    const auto connection = connection_;
    if (connection->reading && connection->socket) {
        connection->socket->disconnect();
        for (int reads = 0; reads < kMostReadsBeforeDisplacing; ++reads) {
            receive(*connection);
            if (!connection->socket || isClosed(*connection->socket)) break;
            if (!connection->socket->waitForReadyRead(0) && !isClosed(*connection->socket)) break;
        }
        if (connection->socket && isClosed(*connection->socket)) {
            receiveToTheEnd();
            return;
        }
    }
    cancelConnection();
}

void SingleClientServer::cancelConnection() {
    if (connection_->cancelled) return;
    connection_->cancelled = true;
    disposeLater(std::move(connection_->socket));
    postEvent([this] { handleDisconnect(); });
}

void SingleClientServer::dropClient() {
    if (connection_) cancelConnection();
}

void SingleClientServer::handleReady(const Connection& connection) {
    if (connection.cancelled) return;
    if (connection.socket && hasFailed(*connection.socket)) {
        log("connection failed: " + utf8(connection.socket->errorString()));
        handleDisconnect();
        return;
    }
    protocol_.clientReady();
    scheduleReceive();
}

// Asks no question whose end this is: the end of a displaced client clears the place of the
// newcomer too.
void SingleClientServer::handleDisconnect() {
    if (connection_) disposeLater(std::move(connection_->socket));
    connection_.reset();
    protocol_.forgetClient();
    protocol_.clientGone();
}

void SingleClientServer::scheduleReceive() {
    if (!connection_ || connection_->reading) return;
    connection_->reading = true;
    QTcpSocket* socket = connection_->socket.get();
    QObject::connect(socket, &QTcpSocket::readyRead,
                     [this, connection = connection_.get()] { receiveIfThereIsRoom(*connection); });
    QObject::connect(socket, &QTcpSocket::disconnected, [this] { receiveToTheEnd(); });
    if (isClosed(*socket))
        receiveToTheEnd();
    else
        receiveIfThereIsRoom(*connection_);
}

// What is not read fills the socket's buffer and then the system's, and the sender has to wait.
void SingleClientServer::receiveIfThereIsRoom(Connection& connection) {
    if (protocol_.hasRoomForBytes())
        receive(connection);
    else if (!lookForRoom_->isActive())
        lookForRoom_->start(kLookForRoomMs);
}

void SingleClientServer::lookForRoom() {
    if (connection_ && connection_->reading && connection_->socket)
        receiveIfThereIsRoom(*connection_);
    if (std::exchange(newcomerWaitsForRoom_, false)) acceptNext();
}

void SingleClientServer::receive(Connection& connection) {
    const qint64 count = connection.socket->read(reinterpret_cast<char*>(received_.data()),
                                                 static_cast<qint64>(received_.size()));
    if (count > 0) protocol_.bytesReceived({received_.data(), static_cast<std::size_t>(count)});
}

void SingleClientServer::receiveToTheEnd() {
    const auto connection = connection_;
    while (connection->socket && connection->socket->bytesAvailable() > 0) receive(*connection);
    if (!connection->socket) return;
    if (hasFailed(*connection->socket))
        log("receive error: " + utf8(connection->socket->errorString()));
    handleDisconnect();
}

void SingleClientServer::postEvent(std::function<void()> event) {
    queue_.post(life_.guard(std::move(event)));
}

// As an event of its own, because a socket must not die in the midst of its own signal.
void SingleClientServer::disposeLater(std::unique_ptr<QTcpSocket> socket) {
    if (!socket) return;
    socket->disconnect();
    queue_.post([closed = std::shared_ptr<QTcpSocket>(std::move(socket))] {});
}

}  // namespace sonavault
