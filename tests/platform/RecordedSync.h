#pragma once

#include <sys/stat.h>

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>

#include "platform/DiskFlusher.h"

namespace sonavault::testing {

/// A disk that counts what is flushed to it, and that hangs when the test says so.
class RecordedSync {
  public:
    /// What a flusher is given. It shares the record, so a thread that a flusher left behind finds
    /// it still there.
    DiskSync hooks() const {
        return {.data = [all = all_](int fd) { return all->sync(fd, all->data); },
                .whole = [all = all_](int fd) { return all->sync(fd, all->whole); }};
    }

    /// How often the bytes of this file were flushed.
    int dataCount(const std::filesystem::path& file) const { return all_->count(all_->data, file); }

    /// How often this file or folder was flushed with all that is known of it.
    int wholeCount(const std::filesystem::path& file) const {
        return all_->count(all_->whole, file);
    }

    /// True once the count came; false when it didn't within a generous time.
    bool waitForData(const std::filesystem::path& file, int count) const {
        return all_->wait([&] { return all_->countLocked(all_->data, file) >= count; });
    }
    bool waitForWhole(const std::filesystem::path& file, int count) const {
        return all_->wait([&] { return all_->countLocked(all_->whole, file) >= count; });
    }

    void freeze() { all_->setFrozen(true); }
    void thaw() { all_->setFrozen(false); }
    bool waitUntilSomeoneHangs() const {
        return all_->wait([this] { return all_->hanging > 0; });
    }
    bool waitUntilNobodyHangs() const {
        return all_->wait([this] { return all_->hanging == 0; });
    }
    bool someoneHangs() const {
        std::scoped_lock lock(all_->mutex);
        return all_->hanging > 0;
    }

    /// The next `count` flushes report a failure.
    void failNext(int count) {
        std::scoped_lock lock(all_->mutex);
        all_->failures = count;
    }

  private:
    using Counts = std::map<ino_t, int>;

    struct All {
        int sync(int fd, Counts& counts) {
            struct stat found {};
            if (fstat(fd, &found) != 0) return -1;
            std::unique_lock lock(mutex);
            ++hanging;
            changed.notify_all();
            changed.wait(lock, [this] { return !frozen; });
            --hanging;
            const bool works = failures == 0;
            if (works)
                ++counts[found.st_ino];
            else
                --failures;
            changed.notify_all();
            return works ? 0 : -1;
        }

        static int countLocked(const Counts& counts, const std::filesystem::path& file) {
            struct stat found {};
            if (stat(file.c_str(), &found) != 0) return 0;
            const auto each = counts.find(found.st_ino);
            return each == counts.end() ? 0 : each->second;
        }

        int count(const Counts& counts, const std::filesystem::path& file) {
            std::scoped_lock lock(mutex);
            return countLocked(counts, file);
        }

        void setFrozen(bool now) {
            std::scoped_lock lock(mutex);
            frozen = now;
            changed.notify_all();
        }

        template <class Condition>
        bool wait(Condition condition) {
            std::unique_lock lock(mutex);
            return changed.wait_for(lock, std::chrono::seconds(30), condition);
        }

        std::mutex mutex;
        std::condition_variable changed;
        Counts data;
        Counts whole;
        int hanging = 0;
        int failures = 0;
        bool frozen = false;
    };

    std::shared_ptr<All> all_ = std::make_shared<All>();
};

}  // namespace sonavault::testing
