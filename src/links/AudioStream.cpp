#include "links/AudioStream.h"

#include <QtEndian>
#include <algorithm>

namespace sonavault {

void AudioStream::reset() {
    state_ = State::awaitingHandshake;
    handshake_ = {};
    pendingBytes_.clear();
}

void AudioStream::append(std::span<const std::uint8_t> bytes) {
    if (state_ == State::refused) return;
    pendingBytes_.insert(pendingBytes_.end(), bytes.begin(), bytes.end());
}

AudioStream::Step AudioStream::take() {
    switch (state_) {
        case State::awaitingHandshake:
            return takeHandshake();
        case State::streaming:
            return takeFrames();
        case State::refused:
            break;
    }
    return NeedsMore{};
}

AudioStream::Step AudioStream::takeHandshake() {
    if (pendingBytes_.size() < kHandshakeBytes) return NeedsMore{};
    Refused first{};
    std::copy_n(pendingBytes_.begin(), kHandshakeBytes, first.bytes.begin());
    const auto handshake = parseHandshake(first.bytes);
    if (!handshake) {
        state_ = State::refused;
        pendingBytes_.clear();
        return first;
    }
    dropPending(kHandshakeBytes);
    state_ = State::streaming;
    handshake_ = *handshake;
    return Agreed{handshake_};
}

AudioStream::Step AudioStream::takeFrames() {
    const auto bytesPerFrame = static_cast<std::size_t>(handshake_.format.bytesPerFrame());
    const std::size_t frames = pendingBytes_.size() / bytesPerFrame;
    if (frames == 0) return NeedsMore{};
    const std::size_t words = frames * bytesPerFrame / sizeof(float);
    samples_.resize(words);
    if (handshake_.wireIsBigEndian)
        qFromBigEndian<quint32>(pendingBytes_.data(), static_cast<qsizetype>(words),
                                samples_.data());
    else
        qFromLittleEndian<quint32>(pendingBytes_.data(), static_cast<qsizetype>(words),
                                   samples_.data());
    dropPending(frames * bytesPerFrame);
    plane_ = samples_.data();
    return AudioBufferView{handshake_.format, static_cast<FrameCount>(frames), &plane_};
}

void AudioStream::dropPending(std::size_t bytes) {
    pendingBytes_.erase(pendingBytes_.begin(),
                        pendingBytes_.begin() + static_cast<std::ptrdiff_t>(bytes));
}

}  // namespace sonavault
