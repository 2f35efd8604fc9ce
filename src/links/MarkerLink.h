#pragma once

#include <functional>

#include "links/MarkerWire.h"

namespace sonavault {

/// The link over which the automation tells the events of its day, as the recorder sees it.
///
/// The callbacks are set before start() and arrive on the link's own thread; a receiver that needs
/// another thread hops there itself.
class MarkerLink {
  public:
    virtual ~MarkerLink() = default;

    std::function<void(const MarkerWire&)> onMarker;  ///< one message arrived whole and made sense
    /// Whether more is to be read. While it says no the sender is held back, and nothing is lost.
    std::function<bool()> hasRoom;
    std::function<void()> onConnect;     ///< a client is there
    std::function<void()> onDisconnect;  ///< the client is gone

    /// Begins to listen; does nothing while it already does. Thread: main.
    virtual void start() = 0;

    /// Drops the client without a callback and stops listening; no callback runs once it returned.
    /// Thread: main.
    virtual void stop() = 0;
};

}  // namespace sonavault
