#include "hub/PendingRequests.h"

#include <utility>

namespace sonavault {

void PendingRequests::add(const std::string& id, Request request) {
    std::scoped_lock lock(pendingLock_);
    pendingReplies_.insert_or_assign(id, std::move(request));
}

PendingRequests::Request PendingRequests::take(const std::string& id) {
    std::scoped_lock lock(pendingLock_);
    const auto node = pendingReplies_.extract(id);
    return node ? std::move(node.mapped()) : Request{};
}

std::vector<PendingRequests::Request> PendingRequests::takeAll() {
    std::map<std::string, Request> taken;
    {
        std::scoped_lock lock(pendingLock_);
        taken.swap(pendingReplies_);
    }
    std::vector<Request> requests;
    requests.reserve(taken.size());
    for (auto& [id, request] : taken) requests.push_back(std::move(request));
    return requests;
}

}  // namespace sonavault
