#include "recorder/MarkerInbox.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace sonavault {

namespace {

std::size_t bytesOf(const MarkerWire& marker) {
    return sizeof marker + marker.type.size() + marker.clockTime.size() +
           marker.wallClockIso8601.size() + marker.label.value_or("").size() +
           marker.file.value_or("").size();
}

}  // namespace

void MarkerInbox::put(const MarkerWire& marker) {
    {
        const std::scoped_lock lock(mutex_);
        waiting_.push_back(marker);
        waitingBytes_ += bytesOf(marker);
        if (std::exchange(isPosted_, true)) return;
    }
    postTurn();
}

bool MarkerInbox::hasRoom() const {
    const std::scoped_lock lock(mutex_);
    return waiting_.size() < kMostWaitingMarkers && waitingBytes_ < kMostWaitingMarkerBytes;
}

void MarkerInbox::postTurn() {
    mainQueue_.post(lifetime_.guard([this] { takeTurn(); }));
}

void MarkerInbox::takeTurn() {
    std::vector<MarkerWire> turn;
    {
        const std::scoped_lock lock(mutex_);
        const auto count = std::min(waiting_.size(), kMarkersATurn);
        const auto end = waiting_.begin() + static_cast<std::ptrdiff_t>(count);
        std::move(waiting_.begin(), end, std::back_inserter(turn));
        waiting_.erase(waiting_.begin(), end);
        for (const auto& marker : turn) waitingBytes_ -= bytesOf(marker);
    }
    for (const auto& marker : turn) handle_(marker);
    // The others have their turn behind whatever else waits.
    if (isMoreWaiting()) postTurn();
}

bool MarkerInbox::isMoreWaiting() {
    const std::scoped_lock lock(mutex_);
    isPosted_ = !waiting_.empty();
    return isPosted_;
}

}  // namespace sonavault
