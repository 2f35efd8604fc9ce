#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>

#include "platform/LeavableThread.h"

namespace sonavault {

struct SharedDescriptor;

/// How an open file gets to the disk; each gives 0 when it did, and may take its time.
struct DiskSync {
    std::function<int(int descriptor)> data;  ///< its bytes and its length
    std::function<int(int descriptor)>
        whole;  ///< these and all else that is known of it; also for folders

    static DiskSync ofTheSystem();
};

/// Carries what has been written to the disk itself, so that a power cut costs seconds and not what
/// the system held in its cache. Works on a thread of its own; nobody waits for it.
///
/// Thread: any. Destruction flushes once more, waiting a second at most.
class DiskFlusher {
  public:
    /// How long a written byte may stay in memory only. Range: the default keeps well within five
    /// seconds, also on a slow disk.
    explicit DiskFlusher(std::chrono::milliseconds interval = std::chrono::milliseconds(1500),
                         DiskSync sync = DiskSync::ofTheSystem());
    ~DiskFlusher();
    DiskFlusher(const DiskFlusher&) = delete;
    DiskFlusher& operator=(const DiskFlusher&) = delete;

    /// Flushes the file of this name, and the folder entry that leads to it, as soon as the thread
    /// gets to it.
    void flushSoon(const std::filesystem::path& file);

  private:
    friend class AppendFile;
    struct Worker;
    void watch(std::shared_ptr<SharedDescriptor> descriptor);
    void close(std::shared_ptr<SharedDescriptor> descriptor);

    const std::shared_ptr<Worker> worker_;
    LeavableThread thread_;
};

}  // namespace sonavault
