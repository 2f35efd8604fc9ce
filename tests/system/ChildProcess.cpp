#include "system/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace sonavault::testing {

namespace {

std::vector<std::string> environmentLines(const std::map<std::string, std::string>& extra) {
    std::map<std::string, std::string> all;
    for (char** each = environ; *each; ++each) {
        const std::string line = *each;
        const auto equals = line.find('=');
        all[line.substr(0, equals)] = line.substr(equals + 1);
    }
    for (const auto& [name, value] : extra) all[name] = value;
    std::vector<std::string> lines;
    for (const auto& [name, value] : all) lines.push_back(name + "=" + value);
    return lines;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (auto& text : texts) result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command,
                           const std::map<std::string, std::string>& environment, Output output) {
    int pipeEnds[2];
    // A socket, so that typing to a program that has ended raises no signal.
    int inputEnds[2];
    if (pipe2(pipeEnds, O_CLOEXEC) != 0 ||
        socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, inputEnds) != 0)
        throw std::runtime_error("no pipe");
    auto arguments = command;
    auto variables = environmentLines(environment);
    auto argv = pointers(arguments);
    auto envp = pointers(variables);
    pid_ = fork();
    if (pid_ < 0) throw std::runtime_error("no process");
    if (pid_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        std::signal(SIGPIPE, SIG_DFL);
        dup2(inputEnds[1], STDIN_FILENO);
        dup2(pipeEnds[1], STDOUT_FILENO);
        execvpe(argv[0], argv.data(), envp.data());
        _exit(127);
    }
    close(pipeEnds[1]);
    close(inputEnds[1]);
    input_ = inputEnds[0];
    output_ = pipeEnds[0];
    if (output == Output::read) reader_ = std::thread([this] { readLines(); });
    if (output == Output::closed) {
        close(output_);
        output_ = -1;
    }
}

ChildProcess::~ChildProcess() {
    if (isAlive()) {
        signal(SIGKILL);
        signal(SIGCONT);
        waitForEnd(std::chrono::seconds(5));
    }
    if (reader_.joinable()) reader_.join();
    if (output_ >= 0) close(output_);
    close(input_);
}

void ChildProcess::readLines() {
    std::string pending;
    char bytes[4096];
    for (;;) {
        const auto count = read(output_, bytes, sizeof bytes);
        if (count <= 0) return;
        pending.append(bytes, static_cast<std::size_t>(count));
        const auto now = std::chrono::system_clock::now();
        std::scoped_lock lock(mutex_);
        for (std::size_t end = pending.find('\n'); end != std::string::npos;
             end = pending.find('\n')) {
            lines_.push_back({pending.substr(0, end), now});
            pending.erase(0, end + 1);
        }
        heard_.notify_all();
    }
}

bool ChildProcess::isAlive() {
    return !waitForEnd(std::chrono::milliseconds(0));
}

void ChildProcess::signal(int number) const {
    if (pid_ > 0 && !ended_) kill(pid_, number);
}

void ChildProcess::type(const std::string& line) const {
    const std::string bytes = line + '\n';
    for (std::size_t sent = 0; sent < bytes.size();) {
        const auto count = send(input_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count <= 0) throw std::runtime_error("nobody reads what is typed");
        sent += static_cast<std::size_t>(count);
    }
}

std::optional<int> ChildProcess::waitForEnd(std::chrono::milliseconds patience) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (!ended_) {
        if (waitpid(pid_, &status_, WNOHANG) == pid_) ended_ = true;
        if (!ended_) {
            if (std::chrono::steady_clock::now() >= deadline) return std::nullopt;
            poll(nullptr, 0, 5);
        }
    }
    return status_;
}

std::optional<HeardLine> ChildProcess::waitForLine(const std::string& part,
                                                   std::chrono::milliseconds patience,
                                                   std::size_t fromLine) {
    std::unique_lock lock(mutex_);
    std::size_t next = fromLine;
    std::optional<HeardLine> found;
    heard_.wait_for(lock, patience, [&] {
        for (; next < lines_.size() && !found; ++next)
            if (lines_[next].text.find(part) != std::string::npos) found = lines_[next];
        return found.has_value();
    });
    return found;
}

std::vector<HeardLine> ChildProcess::lines() const {
    std::scoped_lock lock(mutex_);
    return lines_;
}

std::string ChildProcess::text() const {
    std::string all;
    for (const auto& line : lines()) all += line.text + "\n";
    return all;
}

long ChildProcess::residentKilobytes() const {
    std::ifstream status("/proc/" + std::to_string(pid_) + "/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmRSS:")) return std::stol(line.substr(6));
    return 0;
}

int ChildProcess::openDescriptors() const {
    int count = 0;
    for ([[maybe_unused]] const auto& each :
         std::filesystem::directory_iterator("/proc/" + std::to_string(pid_) + "/fd"))
        ++count;
    return count;
}

std::map<std::string, double> ChildProcess::waitsForProcessor() const {
    std::error_code gone;
    std::map<std::string, double> waits;
    const std::filesystem::directory_iterator tasks("/proc/" + std::to_string(pid_) + "/task",
                                                    gone);
    for (const auto& task : tasks) {
        std::ifstream statistics(task.path() / "schedstat");
        double ran = 0;
        double waited = 0;
        if (statistics >> ran >> waited) waits[task.path().filename().string()] = waited / 1e9;
    }
    return waits;
}

}  // namespace sonavault::testing
