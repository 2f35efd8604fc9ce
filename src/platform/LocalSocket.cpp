#include "platform/LocalSocket.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <cerrno>
#include <cstring>

#include "platform/SystemError.h"

namespace sonavault {
namespace {

bool isOnlyForNow(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

// A local connect without waiting is made or refused at once: a full queue is refused with EAGAIN.
int connectNow(int descriptor, const std::string& path) {
    sockaddr_un address{};
    if (path.size() >= sizeof address.sun_path) return ENAMETOOLONG;
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.data(), path.size());
    while (::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) < 0)
        if (errno != EINTR) return errno;
    return 0;
}

}  // namespace

Result<std::unique_ptr<LocalSocket>> LocalSocket::connectTo(const std::string& path) {
    using Connected = Result<std::unique_ptr<LocalSocket>>;
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (descriptor < 0) return Connected::failure(systemWords(errno));
    if (const int error = connectNow(descriptor, path); error != 0) {
        ::close(descriptor);
        return Connected::failure(systemWords(error));
    }
    return std::make_unique<LocalSocket>(descriptor);
}

LocalSocket::LocalSocket(int descriptor)
    : descriptor_(descriptor),
      readNotifier_(std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read)),
      writeNotifier_(std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Write)) {
    readNotifier_->setEnabled(false);
    writeNotifier_->setEnabled(false);
    QObject::connect(readNotifier_.get(), &QSocketNotifier::activated, [this] {
        if (readable_) readable_();
    });
    QObject::connect(writeNotifier_.get(), &QSocketNotifier::activated, [this] {
        writeNotifier_->setEnabled(false);
        if (writable_) writable_();
    });
}

LocalSocket::~LocalSocket() {
    readNotifier_.reset();
    writeNotifier_.reset();
    ::close(descriptor_);
}

void LocalSocket::whenReadable(std::function<void()> handler) {
    readable_ = std::move(handler);
}

void LocalSocket::watchReadable(bool watched) {
    readNotifier_->setEnabled(watched);
}

void LocalSocket::whenWritable(std::function<void()> handler) {
    writable_ = std::move(handler);
}

void LocalSocket::watchWritable() {
    writeNotifier_->setEnabled(true);
}

Result<LocalSocket::Read> LocalSocket::read(std::span<char> into) {
    const auto count = ::recv(descriptor_, into.data(), into.size(), 0);
    if (count > 0) return Read{static_cast<std::size_t>(count), false};
    if (count == 0) return Read{0, true};
    if (isOnlyForNow(errno)) return Read{};
    return Result<Read>::failure(systemWords(errno));
}

Result<std::size_t> LocalSocket::write(std::string_view bytes) {
    const auto count = ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count >= 0) return static_cast<std::size_t>(count);
    if (isOnlyForNow(errno)) return std::size_t{0};
    return Result<std::size_t>::failure(systemWords(errno));
}

void LocalSocket::shutDown() {
    // Refused only when the stream has ended already.
    ::shutdown(descriptor_, SHUT_RDWR);
}

}  // namespace sonavault
