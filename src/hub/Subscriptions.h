#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "hub/SwitchboardMessage.h"

namespace sonavault {

/// Who wants to hear of which topic.
///
/// Thread: any. Its lock is held for the map alone, never over a callback.
class Subscriptions {
  public:
    /// Shared, so that a callback that is under way outlives the end of its subscription.
    using Handler = std::shared_ptr<const std::function<void(const SwitchboardMessage&)>>;

    void add(const std::string& topic, Handler handler);
    void remove(const std::string& topic);
    void removeAll();

    std::vector<std::string> topics() const;

    /// In the order of subscription; empty when nobody listens.
    std::vector<Handler> handlers(const std::string& topic) const;

  private:
    mutable std::mutex subsLock_;
    std::map<std::string, std::vector<Handler>> subscriptions_;  // guarded by subsLock_
};

}  // namespace sonavault
