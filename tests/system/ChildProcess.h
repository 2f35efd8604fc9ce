#pragma once

#include <sys/types.h>

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace sonavault::testing {

/// A line that a child wrote, and when it was read.
struct HeardLine {
    std::string text;
    std::chrono::system_clock::time_point at;
};

/// A program started by the test, whose standard output is read line by line, and which may be
/// typed to. Killed when it goes.
class ChildProcess {
  public:
    enum class Output {
        read,     ///< collected as it comes
        ignored,  ///< the pipe stays open and nobody reads it, as with a stalled reader
        closed,   ///< the reader is gone from the start
    };

    ChildProcess(const std::vector<std::string>& command,
                 const std::map<std::string, std::string>& environment,
                 Output output = Output::read);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t pid() const { return pid_; }
    bool isAlive();
    void signal(int number) const;

    /// Sends `line` to its standard input.
    void type(const std::string& line) const;

    /// Waits for the end; gives the wait status, or nothing when it did not come in time.
    std::optional<int> waitForEnd(std::chrono::milliseconds patience);

    /// The moment at which a line containing `part` was read, waiting for it; nothing when none
    /// came in time. `fromLine`: lines before this one don't count.
    std::optional<HeardLine> waitForLine(const std::string& part,
                                         std::chrono::milliseconds patience,
                                         std::size_t fromLine = 0);

    std::vector<HeardLine> lines() const;
    std::size_t lineCount() const { return lines().size(); }
    std::string text() const;

    /// Resident memory. Units: kilobytes
    long residentKilobytes() const;
    int openDescriptors() const;

    /// How long each of its threads was ready to run and was not let, since it began, by the
    /// thread's number. Units: seconds
    std::map<std::string, double> waitsForProcessor() const;

  private:
    void readLines();

    pid_t pid_ = -1;
    int input_ = -1;
    int output_ = -1;
    bool ended_ = false;
    int status_ = 0;
    mutable std::mutex mutex_;
    std::condition_variable heard_;
    std::vector<HeardLine> lines_;
    std::thread reader_;
};

}  // namespace sonavault::testing
