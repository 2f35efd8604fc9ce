#pragma once

#include "hub/HubNetwork.h"
#include "platform/SerialQueue.h"
#include "platform/ThisThread.h"

namespace sonavault {

/// The machine's own sockets and timers, on a thread called "com.calderwave.switchboard.network".
/// It yields to all others: what the hub has to say must never cost a recording its turn. The
/// application object must exist before it is made.
class SystemHubNetwork final : public HubNetwork {
  public:
    SystemHubNetwork() { queue_.post(yieldToOthersOnThisThread); }

    void runAndWait(const std::function<void()>& task) override { queue_.runAndWait(task); }
    std::shared_ptr<HubTimer> makeTimer(std::chrono::milliseconds delay,
                                        std::function<void()> handler) override;
    std::shared_ptr<HubConnection> makeConnection(const std::string& path,
                                                  HubConnection::Handlers handlers) override;

  private:
    SerialQueue queue_{"com.calderwave.switchboard.network"};
};

}  // namespace sonavault
