#include "links/SVMarkerServer.h"

#include <QUtf8StringView>
#include <algorithm>
#include <string>
#include <variant>

namespace sonavault {

namespace {

constexpr std::size_t kPreviewBytes = 120;

/// The beginning of a payload for the log. A cut within a character makes it no text either.
std::string preview(std::span<const std::uint8_t> payload) {
    const auto bytes = payload.first(std::min(payload.size(), kPreviewBytes));
    const std::string text(bytes.begin(), bytes.end());
    return QUtf8StringView(text.data(), static_cast<qsizetype>(text.size())).isValidUtf8()
               ? text
               : "<non-utf8>";
}

}  // namespace

SVMarkerServer::SVMarkerServer(Log& log, std::uint16_t port)
    : server_("com.calderwave.sonavault.markersrv", "Sonavault marker server:", port, log, *this) {}

SVMarkerServer::~SVMarkerServer() = default;

void SVMarkerServer::start() {
    server_.start();
}

void SVMarkerServer::stop() {
    server_.stop();
}

void SVMarkerServer::clientReady() {
    server_.log("client connected");
    if (onConnect) onConnect();
}

void SVMarkerServer::bytesReceived(std::span<const std::uint8_t> bytes) {
    stream_.append(bytes);
    drainPendingBytes();
}

void SVMarkerServer::forgetClient() {
    stream_.reset();
}

void SVMarkerServer::clientGone() {
    if (onDisconnect) onDisconnect();
}

void SVMarkerServer::drainPendingBytes() {
    for (;;) {
        const MarkerStream::Step step = stream_.take();
        if (const auto* payload = std::get_if<MarkerStream::Payload>(&step))
            decodeMarker(payload->bytes);
        else if (const auto* settled = std::get_if<MarkerStream::Settled>(&step))
            orderSettled(settled->order);
        else if (const auto* prefix = std::get_if<MarkerStream::Unparseable>(&step))
            dropUnparseable(*prefix);
        else if (const auto* tooLong = std::get_if<MarkerStream::TooLong>(&step))
            dropTooLong(tooLong->length);
        else
            return;
    }
}

void SVMarkerServer::orderSettled(LengthEndian order) {
    server_.log(std::string("length prefix endianness = ") +
                (order == LengthEndian::big ? "BE" : "LE"));
}

void SVMarkerServer::dropUnparseable(const MarkerStream::Unparseable& prefix) {
    server_.log("unparseable length prefix LE=" + std::to_string(prefix.little) +
                " BE=" + std::to_string(prefix.big) + "; dropping client");
    server_.dropClient();
}

void SVMarkerServer::dropTooLong(std::uint32_t length) {
    server_.log("payload length " + std::to_string(length) + " exceeds cap; dropping client");
    server_.dropClient();
}

void SVMarkerServer::decodeMarker(std::span<const std::uint8_t> payload) {
    const auto marker = decodeMarkerWire(payload);
    if (!marker)
        server_.log("marker decode failed (" + marker.error() +
                    "); payload preview: " + preview(payload));
    else if (onMarker)
        onMarker(marker.value());
}

}  // namespace sonavault
