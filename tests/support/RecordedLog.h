#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "platform/Log.h"

namespace sonavault::testing {

/// A log that the test reads.
///
/// Thread: any; `onLine` is set before anybody logs.
class RecordedLog final : public Log {
  public:
    void line(std::string_view text) override {
        {
            std::scoped_lock lock(mutex_);
            lines_.emplace_back(text);
        }
        if (onLine) onLine(std::string(text));
    }

    /// Called with each line, by whoever wrote it, for tests that act in the midst of something.
    std::function<void(const std::string&)> onLine;

    std::vector<std::string> lines() const {
        std::scoped_lock lock(mutex_);
        return lines_;
    }

    bool has(const std::string& line) const { return count(line) > 0; }

    int count(const std::string& line) const {
        int found = 0;
        for (const auto& each : lines()) found += each == line;
        return found;
    }

    /// The lines that contain `part`, in order.
    std::vector<std::string> containing(const std::string& part) const {
        std::vector<std::string> found;
        for (const auto& each : lines())
            if (each.find(part) != std::string::npos) found.push_back(each);
        return found;
    }

    void clear() {
        std::scoped_lock lock(mutex_);
        lines_.clear();
    }

  private:
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
};

}  // namespace sonavault::testing
