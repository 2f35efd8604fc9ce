#pragma once

#include "hub/HubNetwork.h"
#include "platform/SerialQueue.h"

namespace sonavault {

/// The machine's own sockets and timers, on a thread called "com.calderwave.switchboard.network".
/// The application object must exist before it is made.
///
/// The thread has the priority of all others: it shares short locks with the main thread, which
/// would wait for as long as a thread that yields is kept from its turn while it holds one.
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
