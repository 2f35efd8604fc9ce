#include "platform/DiskFlusher.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/SharedDescriptor.h"

namespace sonavault {
namespace {

constexpr std::chrono::seconds kFarewell{1};

void flushName(const std::filesystem::path& file, int kind, const DiskSync& sync) {
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | kind);
    if (descriptor < 0) return;
    sync.whole(descriptor);
    ::close(descriptor);
}

}  // namespace

SharedDescriptor::~SharedDescriptor() {
    ::close(fd);
}

DiskSync DiskSync::ofTheSystem() {
    return {.data = ::fdatasync, .whole = ::fsync};
}

/// What the thread works on. Shared with the thread, so that one that hangs in a frozen disk can be
/// left behind.
struct DiskFlusher::Worker {
    using Descriptors = std::vector<std::shared_ptr<SharedDescriptor>>;

    Worker(std::chrono::milliseconds every, DiskSync with)
        : interval(every), sync(std::move(with)) {}

    void run();
    void flush(Descriptors& descriptors) const;
    void flush(const std::vector<std::filesystem::path>& names) const;

    const std::chrono::milliseconds interval;
    const DiskSync sync;

    std::mutex mutex;
    std::condition_variable changed;

    // Guarded by `mutex`, which is never held over a sync or a close.
    Descriptors open;
    Descriptors closing;
    std::vector<std::filesystem::path> named;
    bool stopping = false;
};

void DiskFlusher::Worker::run() {
    std::unique_lock lock(mutex);
    auto due = std::chrono::steady_clock::now() + interval;
    for (bool last = false; !last;) {
        changed.wait_until(lock, due,
                           [this] { return stopping || !closing.empty() || !named.empty(); });
        last = stopping;
        const bool round = last || std::chrono::steady_clock::now() >= due;
        Descriptors opened = round ? open : Descriptors();
        Descriptors closed = std::exchange(closing, {});
        const auto names = std::exchange(named, {});
        lock.unlock();
        flush(opened);
        flush(closed);
        flush(names);
        if (round) due = std::chrono::steady_clock::now() + interval;
        lock.lock();
    }
}

/// Also lets go of them, which closes those that only the flusher still knows.
void DiskFlusher::Worker::flush(Descriptors& descriptors) const {
    for (auto& each : descriptors) {
        // Cleared first: what is written during the sync is the next round's.
        if (each->dirty.exchange(false) && sync.data(each->fd) != 0) each->dirty = true;
        each.reset();
    }
}

void DiskFlusher::Worker::flush(const std::vector<std::filesystem::path>& names) const {
    for (const auto& file : names) {
        flushName(file, 0, sync);
        const auto folder = file.parent_path();
        flushName(folder.empty() ? "." : folder, O_DIRECTORY, sync);
    }
}

DiskFlusher::DiskFlusher(std::chrono::milliseconds interval, DiskSync sync)
    : worker_(std::make_shared<Worker>(interval, std::move(sync))),
      thread_("disk-flusher", [worker = worker_] { worker->run(); }) {}

DiskFlusher::~DiskFlusher() {
    {
        const std::scoped_lock lock(worker_->mutex);
        worker_->stopping = true;
        worker_->changed.notify_all();
    }
    thread_.endWithin(kFarewell);
}

void DiskFlusher::flushSoon(const std::filesystem::path& file) {
    std::scoped_lock lock(worker_->mutex);
    auto& named = worker_->named;
    if (std::find(named.begin(), named.end(), file) != named.end()) return;
    named.push_back(file);
    worker_->changed.notify_all();
}

void DiskFlusher::watch(std::shared_ptr<SharedDescriptor> descriptor) {
    std::scoped_lock lock(worker_->mutex);
    worker_->open.push_back(std::move(descriptor));
}

void DiskFlusher::close(std::shared_ptr<SharedDescriptor> descriptor) {
    std::scoped_lock lock(worker_->mutex);
    // Handed on before it is crossed out, so that no reference but the worker's is ever the last.
    worker_->closing.push_back(descriptor);
    std::erase(worker_->open, descriptor);
    descriptor.reset();
    worker_->changed.notify_all();
}

}  // namespace sonavault
