#include "hub/Subscriptions.h"

#include <utility>

namespace sonavault {

void Subscriptions::add(const std::string& topic, Handler handler) {
    std::scoped_lock lock(subsLock_);
    subscriptions_[topic].push_back(std::move(handler));
}

// What a caller's callback holds is let go outside the lock, for its end may call in here again.
void Subscriptions::remove(const std::string& topic) {
    std::map<std::string, std::vector<Handler>>::node_type removed;
    std::scoped_lock lock(subsLock_);
    removed = subscriptions_.extract(topic);
}

void Subscriptions::removeAll() {
    std::map<std::string, std::vector<Handler>> removed;
    std::scoped_lock lock(subsLock_);
    removed.swap(subscriptions_);
}

std::vector<std::string> Subscriptions::topics() const {
    std::vector<std::string> topics;
    std::scoped_lock lock(subsLock_);
    for (const auto& [topic, handlers] : subscriptions_) topics.push_back(topic);
    return topics;
}

std::vector<Subscriptions::Handler> Subscriptions::handlers(const std::string& topic) const {
    std::scoped_lock lock(subsLock_);
    const auto found = subscriptions_.find(topic);
    return found == subscriptions_.end() ? std::vector<Handler>() : found->second;
}

}  // namespace sonavault
