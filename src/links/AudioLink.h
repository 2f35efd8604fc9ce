#pragma once

#include <functional>

#include "platform/AudioFormat.h"

namespace sonavault {

/// The link over which the automation delivers the station's air, as the recorder sees it.
///
/// The callbacks are set before start() and arrive on the link's own thread; a receiver that needs
/// another thread hops there itself.
class AudioLink {
  public:
    virtual ~AudioLink() = default;

    std::function<void(const AudioFormat&)> onHandshake;   ///< a format was agreed
    std::function<void(const AudioBufferView&)> onBuffer;  ///< samples arrived
    std::function<void()> onDisconnect;                    ///< the client is gone

    /// Begins to listen; does nothing while it already does. Thread: main.
    virtual void start() = 0;

    /// Drops the client without a callback and stops listening; no callback runs once it returned.
    /// Thread: main.
    virtual void stop() = 0;
};

}  // namespace sonavault
