#include "platform/TaskInbox.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>
#include <utility>

namespace sonavault {
namespace {

int makeBell() {
    const int bell = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (bell < 0) throw std::system_error(errno, std::generic_category(), "no event descriptor");
    return bell;
}

// Neither can fail: the counter goes from 0 to 1 and back, always under the inbox's lock.
void ring(int bell) {
    const std::uint64_t once = 1;
    [[maybe_unused]] const auto written = ::write(bell, &once, sizeof once);
}

void silence(int bell) {
    std::uint64_t rung = 0;
    [[maybe_unused]] const auto read = ::read(bell, &rung, sizeof rung);
}

}  // namespace

TaskInbox::TaskInbox() : bell_(makeBell()) {}

TaskInbox::~TaskInbox() {
    ::close(bell_);
}

void TaskInbox::put(std::function<void()> task) {
    std::scoped_lock lock(mutex_);
    tasks_.push_back(std::move(task));
    if (tasks_.size() == 1) ring(bell_);
}

void TaskInbox::wait() const {
    pollfd asked{.fd = bell_, .events = POLLIN, .revents = 0};
    while (::poll(&asked, 1, -1) < 0 && errno == EINTR) continue;
}

void TaskInbox::runWaiting() {
    std::size_t waiting = 0;
    {
        std::scoped_lock lock(mutex_);
        waiting = tasks_.size();
    }
    // A piece of work may run some of the others in a loop of its own, or clear them.
    for (; waiting > 0; --waiting) {
        const auto task = takeFirst();
        if (!task) return;
        task();
    }
}

void TaskInbox::clear() {
    std::deque<std::function<void()>> dropped;
    std::scoped_lock lock(mutex_);
    dropped.swap(tasks_);
    if (!dropped.empty()) silence(bell_);
}

std::function<void()> TaskInbox::takeFirst() {
    std::scoped_lock lock(mutex_);
    if (tasks_.empty()) return {};
    auto task = std::move(tasks_.front());
    tasks_.pop_front();
    if (tasks_.empty()) silence(bell_);
    return task;
}

}  // namespace sonavault
