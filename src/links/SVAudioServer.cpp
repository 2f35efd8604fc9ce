#include "links/SVAudioServer.h"

#include <variant>

namespace sonavault {

SVAudioServer::SVAudioServer(Log& log, std::uint16_t port)
    : server_("com.calderwave.sonavault.audiosrv", "Sonavault audio server:", port, log, *this) {}

SVAudioServer::~SVAudioServer() = default;

void SVAudioServer::start() {
    server_.start();
}

void SVAudioServer::stop() {
    server_.stop();
}

void SVAudioServer::clientReady() {
    server_.log("client connected — awaiting handshake");
}

void SVAudioServer::bytesReceived(std::span<const std::uint8_t> bytes) {
    stream_.append(bytes);
    drainPendingBytes();
}

void SVAudioServer::forgetClient() {
    stream_.reset();
}

void SVAudioServer::clientGone() {
    if (onDisconnect) onDisconnect();
}

void SVAudioServer::listenerStateChanged(ListenerState state) {
    if (onListenerStateChange) onListenerStateChange(state);
}

void SVAudioServer::drainPendingBytes() {
    for (;;) {
        const AudioStream::Step step = stream_.take();
        if (const auto* agreed = std::get_if<AudioStream::Agreed>(&step))
            handshakeAgreed(agreed->handshake);
        else if (const auto* refused = std::get_if<AudioStream::Refused>(&step))
            handshakeRefused(refused->bytes);
        else if (const auto* buffer = std::get_if<AudioBufferView>(&step)) {
            if (onBuffer) onBuffer(*buffer);
        } else
            return;
    }
}

void SVAudioServer::handshakeAgreed(const HandshakeResult& handshake) {
    const AudioFormat& format = handshake.format;
    if (onHandshake) onHandshake(format);
    server_.log("handshake OK — " + std::to_string(static_cast<int>(format.sampleRate)) + " Hz, " +
                std::to_string(format.channels) +
                " ch, Float32, wire=" + (handshake.wireIsBigEndian ? "BE" : "LE") +
                " (bpf=" + std::to_string(format.bytesPerFrame()) + ")");
}

void SVAudioServer::handshakeRefused(std::span<const std::uint8_t> bytes) {
    server_.log("handshake unparseable; raw bytes [" + hexText(bytes) + "]; dropping client");
    server_.dropClient();
}

}  // namespace sonavault
