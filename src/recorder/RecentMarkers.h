#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <unordered_set>

namespace sonavault {

/// How many markers back a repeat is recognised. The window is counted in markers, not in time.
inline constexpr std::size_t kMarkerDedupeWindow = 400;

/// The keys of the latest markers, by which a repeat is recognised.
class RecentMarkers {
  public:
    /// Remembers `key`, and forgets the oldest of more than the window holds. False when it is
    /// among the latest already; nothing changes then.
    bool remember(const std::string& key) {
        if (!recentMarkerKeySet_.insert(key).second) return false;
        recentMarkerKeys_.push_back(key);
        if (recentMarkerKeys_.size() > kMarkerDedupeWindow) {
            recentMarkerKeySet_.erase(recentMarkerKeys_.front());
            recentMarkerKeys_.pop_front();
        }
        return true;
    }

    void clear() {
        recentMarkerKeys_.clear();
        recentMarkerKeySet_.clear();
    }

  private:
    std::deque<std::string> recentMarkerKeys_;  // oldest first
    std::unordered_set<std::string> recentMarkerKeySet_;
};

}  // namespace sonavault
