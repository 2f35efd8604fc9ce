#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <utility>

#include "links/MarkerWire.h"
#include "platform/Executor.h"

namespace sonavault {

/// What may wait before the link is to read no more.
inline constexpr std::size_t kMostWaitingMarkers = 1000;
inline constexpr std::size_t kMostWaitingMarkerBytes = 1'048'576;

/// How many markers one turn of the main queue takes: the display's tick must not wait for a sender
/// that shouts.
inline constexpr std::size_t kMarkersATurn = 40;

/// Markers on their way from the link's thread to the main queue: all of them, in their order, and
/// a few a turn.
///
/// Thread: put() and hasRoom() on any; made and destroyed on the main thread, when nothing calls
/// put() any more. What waits then is dropped.
class MarkerInbox {
  public:
    using Handle = std::function<void(const MarkerWire&)>;

    /// `mainQueue` outlives this; `handle` is called on it.
    MarkerInbox(Executor& mainQueue, Handle handle)
        : mainQueue_(mainQueue), handle_(std::move(handle)) {}

    void put(const MarkerWire& marker);

    /// Whether the link may read on. What it has read already is taken all the same: nothing that
    /// was sent is lost.
    bool hasRoom() const;

  private:
    void postTurn();
    void takeTurn();
    bool isMoreWaiting();

    Executor& mainQueue_;
    const Handle handle_;

    // Under the lock
    mutable std::mutex mutex_;
    std::deque<MarkerWire> waiting_;
    std::size_t waitingBytes_ = 0;
    bool isPosted_ = false;  // until the turn that was posted has ended

    const Lifetime lifetime_;
};

}  // namespace sonavault
