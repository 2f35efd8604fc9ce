#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "hub/DemoHub.h"
#include "platform/SerialQueue.h"
#include "support/TempFolder.h"

namespace sonavault::testing {

/// A demonstration hub on a thread of its own, listening from the start.
class HubThread {
  public:
    HubThread() {
        queue_.runAndWait([this] {
            hub_ = std::make_unique<demohub::DemoHub>(
                path(), [this](const std::string& line) { note(line); });
            listens_ = static_cast<bool>(hub_->listen());
        });
    }
    ~HubThread() {
        queue_.runAndWait([this] { hub_.reset(); });
    }
    HubThread(const HubThread&) = delete;
    HubThread& operator=(const HubThread&) = delete;

    std::string path() const { return folder_ / "hub.sock"; }
    bool listens() const { return listens_; }

    void obey(const std::string& command) {
        const auto parsed = demohub::parseHubCommand(command);
        if (!parsed) std::abort();
        queue_.runAndWait([&] { hub_->obey(*parsed); });
    }

    /// Without waiting for it.
    void obeyLater(const std::string& command) {
        queue_.post([this, parsed = demohub::parseHubCommand(command)] { hub_->obey(*parsed); });
    }

    /// The lines that clients sent, with "#1 > " and the like before them.
    std::vector<std::string> received() const { return containing(" > "); }

    std::vector<std::string> containing(const std::string& part) const {
        std::vector<std::string> found;
        std::scoped_lock lock(mutex_);
        for (const auto& line : lines_)
            if (line.find(part) != std::string::npos) found.push_back(line);
        return found;
    }

    bool heard(const std::string& part) const { return !containing(part).empty(); }

  private:
    void note(const std::string& line) {
        std::scoped_lock lock(mutex_);
        lines_.push_back(line);
    }

    TempFolder folder_;
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;  // guarded by mutex_
    std::atomic<bool> listens_{false};
    SerialQueue queue_{"test.hub"};
    std::unique_ptr<demohub::DemoHub> hub_;  // only on queue_
};

}  // namespace sonavault::testing
