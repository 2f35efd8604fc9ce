#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "hub/HubNetwork.h"
#include "hub/SwitchboardMessage.h"

namespace sonavault {

/// The requests that wait for their replies.
///
/// Thread: any. Its lock is held for the map alone, never over a callback.
class PendingRequests {
  public:
    struct Request {
        std::function<void(const SwitchboardMessage&)> replied;
        std::shared_ptr<HubTimer> timer;  ///< absent when it waits for as long as it takes
    };

    void add(const std::string& id, Request request);

    /// Takes the request out, so that whoever comes second finds nothing: with no `replied` then.
    Request take(const std::string& id);

    /// Takes all of them out.
    std::vector<Request> takeAll();

  private:
    std::mutex pendingLock_;
    std::map<std::string, Request> pendingReplies_;  // guarded by pendingLock_
};

}  // namespace sonavault
