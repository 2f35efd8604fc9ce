#pragma once

#include <cstdint>
#include <functional>

#include "links/AudioLink.h"
#include "links/AudioStream.h"
#include "links/SingleClientServer.h"
#include "links/StationPorts.h"

namespace sonavault {

/// The port on which the automation delivers the station's air: takes one sender at a time, learns
/// its format and byte order from its handshake, and hands on whatever whole frames have arrived.
///
/// A sender that was displaced by a newer one, or that began with something else than a handshake,
/// is dropped; each connection begins with a handshake of its own.
///
/// Thread: as AudioLink; callbacks come on the queue "com.calderwave.sonavault.audiosrv".
class SVAudioServer final : public AudioLink, private ClientProtocol {
  public:
    /// `port` 0 lets the system choose one.
    explicit SVAudioServer(Log& log, std::uint16_t port = kAudioPort);
    ~SVAudioServer() override;

    /// Every change of the listening port. Of all callbacks the only one that stop() calls, before
    /// it returns.
    std::function<void(ListenerState)> onListenerStateChange;

    void start() override;
    void stop() override;

    /// The port that senders reach, 0 while not listening. Thread: any.
    std::uint16_t listeningPort() const { return server_.listeningPort(); }

  private:
    void clientReady() override;
    void bytesReceived(std::span<const std::uint8_t> bytes) override;
    void forgetClient() override;
    void clientGone() override;
    void listenerStateChanged(ListenerState state) override;

    void drainPendingBytes();
    void handshakeAgreed(const HandshakeResult& handshake);
    void handshakeRefused(std::span<const std::uint8_t> bytes);

    AudioStream stream_;

    // Destroyed first: until then its queue calls the rest.
    SingleClientServer server_;
};

}  // namespace sonavault
