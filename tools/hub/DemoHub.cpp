#include "hub/DemoHub.h"

#include <QJsonDocument>
#include <filesystem>
#include <utility>

namespace sonavault::demohub {
namespace {

// Qt stops reading when its buffer is full: one byte, so that the rest stays in the system's.
constexpr qint64 kNoReading = 1;
constexpr qint64 kAllReading = 0;

std::string numbered(int number) {
    return "#" + std::to_string(number) + " ";
}

/// A person's file must not make room for a hub.
bool isSomethingElse(const std::string& path) {
    std::error_code ignored;
    const auto type = std::filesystem::symlink_status(path, ignored).type();
    return type != std::filesystem::file_type::not_found &&
           type != std::filesystem::file_type::socket;
}

/// Nobody answers where a hub has died and left its socket.
bool somebodyListens(const QString& path) {
    QLocalSocket probe;
    probe.connectToServer(path);
    return probe.waitForConnected(500);
}

}  // namespace

DemoHub::DemoHub(std::string socketPath, std::function<void(const std::string&)> say)
    : path_(std::move(socketPath)), say_(std::move(say)) {}

DemoHub::~DemoHub() {
    for (auto& [number, connection] : connections_) connection.socket->disconnect();
}

Outcome DemoHub::listen() {
    if (server_) return Done{};
    const QString path = QString::fromStdString(path_);
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(path_).parent_path(), ignored);
    if (isSomethingElse(path_)) return Outcome::failure(path_ + ": is no socket");
    if (somebodyListens(path)) return Outcome::failure(path_ + ": somebody listens there already");
    QLocalServer::removeServer(path);
    auto server = std::make_unique<QLocalServer>();
    if (!server->listen(path))
        return Outcome::failure(path_ + ": " + server->errorString().toStdString());
    QObject::connect(server.get(), &QLocalServer::newConnection, &alive_,
                     [this] { takeNewcomers(); });
    server_ = std::move(server);
    say_("listening on " + path_);
    return Done{};
}

void DemoHub::obey(const HubCommand& command) {
    switch (command.kind) {
        case HubCommand::Kind::refuse:
            server_.reset();
            return;
        case HubCommand::Kind::accept:
            if (const auto outcome = listen(); !outcome) say_(outcome.error());
            return;
        case HubCommand::Kind::drop:
            return closeAll();
        case HubCommand::Kind::delay:
            delayMs_ = command.milliseconds;
            return;
        case HubCommand::Kind::stopReading:
        case HubCommand::Kind::read:
            return setReading(command.kind == HubCommand::Kind::read);
        case HubCommand::Kind::silent:
        case HubCommand::Kind::speak:
            silent_ = command.kind == HubCommand::Kind::silent;
            return;
        case HubCommand::Kind::closeAfter:
        case HubCommand::Kind::keepOpen:
            closesAfterLine_ = command.kind == HubCommand::Kind::closeAfter;
            return;
        case HubCommand::Kind::raw:
            for (const auto& [number, connection] : connections_) sendBytes(number, command.text);
            return;
        case HubCommand::Kind::publish:
            return send(router_.publish(command.from, command.topic, command.payload));
        case HubCommand::Kind::ping:
            return pingAll();
        case HubCommand::Kind::show:
            return show();
        case HubCommand::Kind::quit:
            server_.reset();
            return closeAll();
    }
}

void DemoHub::takeNewcomers() {
    while (server_ && server_->hasPendingConnections()) {
        const int number = ++newest_;
        std::unique_ptr<QLocalSocket> socket(server_->nextPendingConnection());
        socket->setParent(nullptr);
        socket->setReadBufferSize(reading_ ? kAllReading : kNoReading);
        QObject::connect(socket.get(), &QLocalSocket::readyRead, &alive_,
                         [this, number] { receive(number); });
        QObject::connect(
            socket.get(), &QLocalSocket::disconnected, &alive_, [this, number] { ended(number); },
            Qt::QueuedConnection);
        connections_[number].socket = std::move(socket);
        say_(numbered(number) + "connected");
        receive(number);
    }
}

void DemoHub::receive(int number) {
    const auto found = connections_.find(number);
    if (!reading_ || found == connections_.end()) return;
    Connection& connection = found->second;
    connection.lines.append(connection.socket->readAll().toStdString());
    while (const auto line = connection.lines.next()) {
        handleLine(number, std::string(*line));
        if (closesAfterLine_) return closeOne(number);
    }
}

void DemoHub::handleLine(int number, const std::string& line) {
    say_(numbered(number) + "> " + line);
    const auto envelope = Envelope::decode(line);
    if (!envelope) return say_(numbered(number) + envelope.error().description());
    const Envelope& read = envelope.value();
    send(router_.received(number, read));
    if (read.type == "query" && read.id)
        later_.after(queryLimitMs(read),
                     [this, id = *read.id] { send(router_.queryTimedOut(id)); });
}

void DemoHub::ended(int number) {
    if (connections_.erase(number) == 0) return;
    router_.left(number);
    say_(numbered(number) + "disconnected");
}

void DemoHub::send(const std::vector<Outgoing>& all) {
    for (const auto& each : all)
        if (const auto line = each.envelope.encode())
            if (!silent_) sendBytes(each.connection, line.value() + "\n");
}

void DemoHub::sendBytes(int number, const std::string& bytes) {
    if (delayMs_ == 0) return write(number, bytes);
    later_.after(delayMs_, [this, number, bytes] { write(number, bytes); });
}

void DemoHub::write(int number, const std::string& bytes) {
    const auto found = connections_.find(number);
    if (found == connections_.end()) return;
    std::string shown = bytes;
    if (shown.ends_with('\n')) shown.pop_back();
    say_(numbered(number) + "< " + shown);
    found->second.socket->write(bytes.data(), static_cast<qint64>(bytes.size()));
    found->second.socket->flush();
}

// The socket sends what it still has and then tells its own end.
void DemoHub::closeOne(int number) {
    if (const auto found = connections_.find(number); found != connections_.end())
        found->second.socket->disconnectFromServer();
}

void DemoHub::closeAll() {
    for (auto& [number, connection] : connections_) connection.socket->disconnectFromServer();
}

void DemoHub::setReading(bool reading) {
    reading_ = reading;
    for (auto& [number, connection] : connections_) {
        connection.socket->setReadBufferSize(reading ? kAllReading : kNoReading);
        receive(number);
    }
}

void DemoHub::pingAll() {
    Envelope ping;
    ping.type = "ping";
    ping.from = kHubName;
    ping.id = newEnvelopeId();
    std::vector<Outgoing> all;
    for (const auto& [number, connection] : connections_) all.push_back({number, ping});
    send(all);
}

void DemoHub::show() const {
    for (const auto& name : router_.applications()) say_("program " + name);
    say_("state " + QJsonDocument(router_.state()).toJson(QJsonDocument::Compact).toStdString());
}

}  // namespace sonavault::demohub
