#pragma once

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/AppendFile.h"

namespace sonavault {

/// Carries what has been written to the disk itself, so that a power cut costs seconds and not what the system held in
/// its cache. Works on a thread of its own; nobody waits for it.
///
/// Thread: any. Destruction flushes once more, waiting a second at most.
class DiskFlusher {
  public:
    /// How long a written byte may stay in memory only. Range: the default keeps well within five seconds, also on a
    /// slow disk.
    explicit DiskFlusher(std::chrono::milliseconds interval = std::chrono::milliseconds(1500));
    ~DiskFlusher();

    /// Flushes the file of this name, and the folder entry that leads to it, as soon as the thread gets to it.
    void flushSoon(const std::filesystem::path& file);

  private:
    friend class AppendFile;
    void watch(std::shared_ptr<AppendFile::Descriptor> descriptor);
    struct Worker;
    std::shared_ptr<Worker> worker_;
    std::thread thread_;
};

}  // namespace sonavault
