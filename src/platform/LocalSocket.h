#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "platform/Result.h"

class QSocketNotifier;

namespace sonavault {

/// Our end of a stream to another program on this machine, at a path in the file system. No call
/// ever waits.
///
/// Qt's own local socket is not used: it asks a listener whose queue is full again and again
/// without a pause, and keeps without bound what the other side does not read.
///
/// Thread: the one that made it, which runs an event loop.
class LocalSocket {
  public:
    /// Errors: the system's words; also when the listener's queue is full.
    static Result<std::unique_ptr<LocalSocket>> connectTo(const std::string& path);

    /// `descriptor` is a connected stream socket. Owns: the descriptor.
    explicit LocalSocket(int descriptor);
    ~LocalSocket();
    LocalSocket(const LocalSocket&) = delete;
    LocalSocket& operator=(const LocalSocket&) = delete;

    /// Called whenever there may be something to read, the end of the stream included. Must not
    /// destroy the socket.
    void whenReadable(std::function<void()> handler);
    void watchReadable(bool watched);

    /// Called once after each watchWritable(), when there is room to write. Must not destroy the
    /// socket.
    void whenWritable(std::function<void()> handler);
    void watchWritable();

    struct Read {
        std::size_t count = 0;
        bool ended = false;  ///< the other side has closed; with count 0 and not ended: nothing yet
    };
    Result<Read> read(std::span<char> into);

    /// Gives how many bytes were taken, 0 when there is no room now.
    Result<std::size_t> write(std::string_view bytes);

    /// Ends the stream in both directions. What came in before can still be read, and then the end.
    void shutDown();

  private:
    const int descriptor_;
    std::function<void()> readable_;
    std::function<void()> writable_;
    std::unique_ptr<QSocketNotifier> readNotifier_;
    std::unique_ptr<QSocketNotifier> writeNotifier_;
};

}  // namespace sonavault
