#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "platform/Log.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

constexpr std::size_t kPage = 4096;

/// A pipe whose reading end is the test's.
class Pipe {
  public:
    Pipe() { EXPECT_EQ(::pipe2(ends_.data(), O_CLOEXEC), 0); }
    ~Pipe() {
        closeReader();
        closeWriter();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int writer() const { return ends_[1]; }
    void closeReader() { close(ends_[0]); }
    void closeWriter() { close(ends_[1]); }
    std::size_t pages() const {
        return static_cast<std::size_t>(::fcntl(writer(), F_GETPIPE_SZ)) / kPage;
    }

    void fill(std::size_t pages) const {
        const std::string page(kPage, '.');
        for (std::size_t i = 0; i < pages; ++i)
            ASSERT_EQ(::write(writer(), page.data(), kPage), static_cast<ssize_t>(kPage));
    }

    /// What lies in the pipe at this moment.
    std::string readAvailable() const {
        std::string bytes;
        char buffer[kPage];
        pollfd asked{.fd = ends_[0], .events = POLLIN, .revents = 0};
        while (::poll(&asked, 1, 0) > 0 && (asked.revents & POLLIN)) {
            const auto count = ::read(ends_[0], buffer, sizeof buffer);
            if (count <= 0) break;
            bytes.append(buffer, static_cast<std::size_t>(count));
        }
        return bytes;
    }

    std::string readToEnd() const {
        std::string bytes;
        char buffer[kPage];
        for (ssize_t count; (count = ::read(ends_[0], buffer, sizeof buffer)) > 0;)
            bytes.append(buffer, static_cast<std::size_t>(count));
        return bytes;
    }

  private:
    static void close(int& end) {
        if (end >= 0) ::close(end);
        end = -1;
    }
    std::array<int, 2> ends_{-1, -1};
};

std::vector<std::string> linesOf(const std::string& bytes) {
    std::vector<std::string> lines;
    std::istringstream in(bytes);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

TEST(StandardOutputLog, writes_each_line_with_its_line_feed_at_once) {
    Pipe pipe;
    StandardOutputLog log(pipe.writer());
    log.line("Sonavault: one");
    EXPECT_EQ(pipe.readAvailable(), "Sonavault: one\n");
    log.line("");
    log.line("two");
    EXPECT_EQ(pipe.readAvailable(), "\ntwo\n");
}

TEST(StandardOutputLog, writes_into_a_file) {
    TempFolder folder;
    const int file = ::open((folder / "log").c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    StandardOutputLog log(file);
    log.line("one");
    log.line(std::string(3 * kPage, 'x'));
    ::close(file);
    EXPECT_EQ(readFile(folder / "log"), "one\n" + std::string(3 * kPage, 'x') + "\n");
}

TEST(StandardOutputLog, drops_whole_lines_while_the_reader_stalls_and_goes_on_when_it_reads) {
    Pipe pipe;
    StandardOutputLog log(pipe.writer());
    const std::string text(99, 'x');
    constexpr std::size_t kGiven = 20'000;
    for (std::size_t i = 0; i < kGiven; ++i) log.line(text);

    const auto kept = linesOf(pipe.readAvailable());
    EXPECT_GT(kept.size(), 0u);
    EXPECT_LT(kept.size(), kGiven);
    EXPECT_THAT(kept, ::testing::Each(text));
    log.line("again");
    EXPECT_EQ(pipe.readAvailable(), "again\n");
}

TEST(StandardOutputLog, does_not_make_the_shared_descriptor_non_blocking) {
    Pipe pipe;
    StandardOutputLog log(pipe.writer());
    log.line("one");
    EXPECT_EQ(::fcntl(pipe.writer(), F_GETFL) & O_NONBLOCK, 0);
}

TEST(StandardOutputLog, begins_afresh_after_a_line_that_was_torn) {
    Pipe pipe;
    StandardOutputLog log(pipe.writer());
    pipe.fill(pipe.pages() - 2);
    log.line(std::string(5 * kPage, 'x'));
    log.line("dropped");
    const std::string before = pipe.readAvailable();
    EXPECT_EQ(before.substr(before.find('x')), std::string(2 * kPage, 'x'));

    log.line("next");
    log.line("one more");
    EXPECT_EQ(pipe.readAvailable(), "\nnext\none more\n");
}

TEST(StandardOutputLog, writes_a_long_line_whole_when_there_is_room) {
    Pipe pipe;
    StandardOutputLog log(pipe.writer());
    for (const std::size_t length : {kPage - 2, kPage - 1, kPage, kPage + 1, 3 * kPage}) {
        log.line(std::string(length, 'x'));
        EXPECT_EQ(pipe.readAvailable(), std::string(length, 'x') + "\n");
    }
}

TEST(StandardOutputLog, outlives_a_reader_that_goes_away_though_sigpipe_is_not_ignored) {
    const auto before = signal(SIGPIPE, SIG_DFL);
    Pipe pipe;
    StandardOutputLog log(pipe.writer());
    log.line("heard");
    pipe.closeReader();
    for (int i = 0; i < 100; ++i) log.line("unheard");

    sigset_t pending;
    sigset_t blocked;
    sigpending(&pending);
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
    EXPECT_EQ(sigismember(&blocked, SIGPIPE), 0);
    signal(SIGPIPE, before);
}

TEST(StandardOutputLog, outlives_a_reader_that_goes_away_just_when_there_seemed_to_be_room) {
    const auto before = signal(SIGPIPE, SIG_DFL);
    // A stream shut for writing still reports room, and raises the signal only at the write.
    std::array<int, 2> ends{};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    StandardOutputLog log(ends[0]);
    log.line("heard");
    ASSERT_EQ(::shutdown(ends[0], SHUT_WR), 0);
    log.line("unheard");
    log.line("unheard");

    sigset_t pending;
    sigpending(&pending);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
    char heard[100];
    EXPECT_EQ(::read(ends[1], heard, sizeof heard), 6);
    EXPECT_EQ(std::string(heard, 6), "heard\n");
    for (const int end : ends) ::close(end);
    signal(SIGPIPE, before);
}

TEST(StandardOutputLog, leaves_the_descriptor_open_and_bears_a_closed_one) {
    Pipe pipe;
    { StandardOutputLog(pipe.writer()).line("one"); }
    EXPECT_EQ(::write(pipe.writer(), "two", 3), 3);
    EXPECT_EQ(pipe.readAvailable(), "one\ntwo");

    StandardOutputLog nowhere(-1);
    nowhere.line("nothing");
}

TEST(StandardOutputLog, keeps_lines_of_several_threads_apart) {
    Pipe pipe;
    StandardOutputLog log(pipe.writer());
    std::string heard;
    std::thread reading([&] { heard = pipe.readToEnd(); });
    std::vector<std::thread> writers;
    for (const char letter : {'a', 'b', 'c'})
        writers.emplace_back([&log, letter] {
            for (int i = 0; i < 300; ++i) log.line(std::string(80, letter));
        });
    for (auto& each : writers) each.join();
    pipe.closeWriter();
    reading.join();

    EXPECT_GT(linesOf(heard).size(), 0u);
    for (const auto& line : linesOf(heard)) EXPECT_EQ(line, std::string(80, line.front()));
}

TEST(StandardOutputLog, never_waits_for_a_terminal_that_takes_nothing) {
    const int screen = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(screen, 0);
    ASSERT_EQ(::grantpt(screen), 0);
    ASSERT_EQ(::unlockpt(screen), 0);
    const int terminal = ::open(::ptsname(screen), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(terminal, 0);
    {
        StandardOutputLog log(terminal);
        // More than the system keeps for a terminal, in lines that leave less room than the next
        // needs.
        for (int i = 0; i < 1000; ++i) log.line(std::string(997, 'x'));
        EXPECT_EQ(::fcntl(terminal, F_GETFL) & O_NONBLOCK, 0);
    }
    char heard[100];
    EXPECT_EQ(::read(screen, heard, sizeof heard), static_cast<ssize_t>(sizeof heard));
    EXPECT_EQ(std::string(heard, sizeof heard), std::string(sizeof heard, 'x'));
    ::close(terminal);
    ::close(screen);
}

}  // namespace
}  // namespace sonavault::testing
