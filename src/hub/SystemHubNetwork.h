#pragma once

#include "hub/HubNetwork.h"
#include "platform/SerialQueue.h"

namespace sonavault {

/// The machine's own sockets and timers, on a thread called "com.calderwave.switchboard.network".
/// The application object must exist before it is made.
class SystemHubNetwork final : public HubNetwork {
  public:
    void runAndWait(const std::function<void()>& task) override { queue_.runAndWait(task); }
    std::shared_ptr<HubTimer> makeTimer(std::chrono::milliseconds delay,
                                        std::function<void()> handler) override;
    std::shared_ptr<HubConnection> makeConnection(const std::string& path,
                                                  HubConnection::Handlers handlers) override;

  private:
    SerialQueue queue_{"com.calderwave.switchboard.network"};
};

}  // namespace sonavault
