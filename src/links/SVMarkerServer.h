#pragma once

#include <cstdint>
#include <span>

#include "links/MarkerLink.h"
#include "links/MarkerStream.h"
#include "links/SingleClientServer.h"
#include "links/StationPorts.h"

namespace sonavault {

/// The port on which the automation tells the events of its day: takes one sender at a time, learns
/// the byte order of its length prefixes from the first one, and hands on each message that makes
/// sense. What a marker means to the day is not its business.
///
/// A message that makes no sense costs only itself; a length that makes none costs the connection.
///
/// Thread: as MarkerLink; callbacks come on the queue "com.calderwave.sonavault.markersrv".
class SVMarkerServer final : public MarkerLink, private ClientProtocol {
  public:
    /// `port` 0 lets the system choose one.
    explicit SVMarkerServer(Log& log, std::uint16_t port = kMarkerPort);
    ~SVMarkerServer() override;

    void start() override;
    void stop() override;

    /// The port that senders reach, 0 while not listening. Thread: any.
    std::uint16_t listeningPort() const { return server_.listeningPort(); }

  private:
    void clientReady() override;
    bool hasRoomForBytes() override { return !hasRoom || hasRoom(); }
    void bytesReceived(std::span<const std::uint8_t> bytes) override;
    void forgetClient() override;
    void clientGone() override;

    void drainPendingBytes();
    void orderSettled(LengthEndian order);
    void dropUnparseable(const MarkerStream::Unparseable& prefix);
    void dropTooLong(std::uint32_t length);
    void decodeMarker(std::span<const std::uint8_t> payload);

    MarkerStream stream_;

    // Destroyed first: until then its queue calls the rest.
    SingleClientServer server_;
};

}  // namespace sonavault
