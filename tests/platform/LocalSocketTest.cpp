#include "platform/LocalSocket.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QCoreApplication>
#include <array>
#include <cstring>

#include "support/Eventually.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

/// A socket and the bare other end of it.
class LocalSocketTest : public ::testing::Test {
  protected:
    LocalSocketTest() {
        int ends[2];
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends), 0);
        other_ = ends[1];
        socket_ = std::make_unique<LocalSocket>(ends[0]);
    }
    ~LocalSocketTest() override { closeOther(); }

    void otherSays(const std::string& bytes) const {
        ASSERT_EQ(::write(other_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }
    void closeOther() {
        if (other_ >= 0) ::close(other_);
        other_ = -1;
    }
    /// Writes until the other end takes no more; gives how much it took.
    std::size_t fill() {
        const std::string block(100'000, 'x');
        std::size_t written = 0;
        for (;;) {
            const auto taken = socket_->write(block);
            if (!taken || taken.value() == 0) return written;
            written += taken.value();
        }
    }
    std::size_t drainOther() const {
        std::array<char, 65'536> bytes;
        std::size_t drained = 0;
        for (ssize_t count = 0; (count = ::read(other_, bytes.data(), bytes.size())) > 0;)
            drained += static_cast<std::size_t>(count);
        return drained;
    }

    int other_ = -1;
    std::unique_ptr<LocalSocket> socket_;
    std::array<char, 8> into_{};
};

TEST_F(LocalSocketTest, reads_what_is_there_and_never_waits_for_more) {
    EXPECT_EQ(socket_->read(into_).value().count, 0U);
    EXPECT_FALSE(socket_->read(into_).value().ended);
    otherSays("hello, world");
    EXPECT_EQ(socket_->read(into_).value().count, 8U);
    EXPECT_EQ(std::string(into_.data(), 8), "hello, w");
    EXPECT_EQ(socket_->read(into_).value().count, 4U);
}

TEST_F(LocalSocketTest, tells_the_end_of_the_stream_after_its_last_bytes) {
    otherSays("bye");
    closeOther();
    EXPECT_EQ(socket_->read(into_).value().count, 3U);
    EXPECT_TRUE(socket_->read(into_).value().ended);
}

TEST_F(LocalSocketTest, fails_to_write_to_an_end_that_is_gone) {
    closeOther();
    const auto taken = socket_->write("x");
    ASSERT_FALSE(taken);
    EXPECT_EQ(taken.error(), "Broken pipe");
}

TEST_F(LocalSocketTest, takes_no_more_than_there_is_room_for_and_tells_when_there_is_room_again) {
    int told = 0;
    socket_->whenWritable([&] { ++told; });
    const std::size_t written = fill();
    EXPECT_GT(written, 0U);
    socket_->watchWritable();
    QCoreApplication::processEvents();
    EXPECT_EQ(told, 0);
    EXPECT_EQ(drainOther(), written);
    ASSERT_TRUE(eventuallyServingEvents([&] { return told > 0; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(told, 1);
}

TEST_F(LocalSocketTest, tells_that_there_is_something_to_read_while_it_is_watched) {
    int told = 0;
    socket_->whenReadable([&] { ++told; });
    otherSays("x");
    QCoreApplication::processEvents();
    EXPECT_EQ(told, 0);
    socket_->watchReadable(true);
    ASSERT_TRUE(eventuallyServingEvents([&] { return told > 0; }));
    socket_->watchReadable(false);
    const int before = told;
    QCoreApplication::processEvents();
    EXPECT_EQ(told, before);
}

TEST(LocalSocket, connects_to_who_listens_and_tells_why_it_cannot) {
    const TempFolder folder;
    const std::string path = folder / "s.sock";
    EXPECT_EQ(LocalSocket::connectTo(path).error(), "No such file or directory");
    EXPECT_EQ(LocalSocket::connectTo(std::string(108, 'x')).error(), "File name too long");
    const int listener = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.data(), path.size());
    ASSERT_EQ(::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(LocalSocket::connectTo(path).error(), "Connection refused");
    ASSERT_EQ(::listen(listener, 0), 0);
    const auto first = LocalSocket::connectTo(path);
    EXPECT_TRUE(first);
    EXPECT_EQ(LocalSocket::connectTo(path).error(), "Resource temporarily unavailable");
    ::close(listener);
}

}  // namespace
}  // namespace sonavault::testing
