#include "platform/SerialQueue.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QSocketNotifier>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "platform/TaskInbox.h"
#include "platform/ThisThread.h"

namespace sonavault {
namespace {

constexpr std::size_t kLongestThreadName = 15;

std::string threadName(const std::string& name) {
    if (name.size() <= kLongestThreadName) return name;
    const auto lastDot = name.rfind('.');
    return name.substr(lastDot == std::string::npos ? 0 : lastDot + 1, kLongestThreadName);
}

}  // namespace

struct SerialQueue::Thread {
    void run(const std::string& name, bool withEventLoop);
    void serveEventLoop();

    TaskInbox inbox;
    bool ended = false;  // only on the thread itself
    std::thread thread;
};

void SerialQueue::Thread::run(const std::string& name, bool withEventLoop) {
    nameThisThread(threadName(name));
    if (withEventLoop) serveEventLoop();
    while (!ended) {
        inbox.wait();
        inbox.runWaiting();
    }
    // What the last work still posted is let go here and not by the owner: it belongs to this
    // thread to its end.
    inbox.clear();
}

void SerialQueue::Thread::serveEventLoop() {
    QEventLoop loop;
    QSocketNotifier bell(inbox.descriptor(), QSocketNotifier::Read);
    QObject::connect(&bell, &QSocketNotifier::activated, &bell, [this, &loop] {
        inbox.runWaiting();
        if (ended) loop.quit();
    });
    loop.exec();
}

// Without an application object Qt has no event loops. Looked up here, where the program's order is
// known, and not on the new thread, beside which the application object may be coming into being.
SerialQueue::SerialQueue(const std::string& name) : thread_(std::make_unique<Thread>()) {
    const bool withEventLoop = QCoreApplication::instance() != nullptr;
    thread_->thread = std::thread(
        [thread = thread_.get(), name, withEventLoop] { thread->run(name, withEventLoop); });
}

SerialQueue::~SerialQueue() {
    post([thread = thread_.get()] { thread->ended = true; });
    thread_->thread.join();
}

void SerialQueue::post(std::function<void()> task) {
    thread_->inbox.put(std::move(task));
}

void SerialQueue::runAndWait(const std::function<void()>& task) {
    if (isCurrent()) return task();
    std::mutex mutex;
    std::condition_variable changed;
    bool done = false;
    post([&] {
        task();
        // Told under the lock, for the waiting thread destroys both as soon as it can go on.
        std::scoped_lock lock(mutex);
        done = true;
        changed.notify_one();
    });
    std::unique_lock lock(mutex);
    changed.wait(lock, [&] { return done; });
}

bool SerialQueue::isCurrent() const {
    return thread_->thread.get_id() == std::this_thread::get_id();
}

}  // namespace sonavault
