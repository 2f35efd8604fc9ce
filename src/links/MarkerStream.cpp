#include "links/MarkerStream.h"

#include <QtEndian>

namespace sonavault {

namespace {

constexpr std::size_t kPrefixBytes = 4;

bool isPossibleLength(std::uint32_t length) {
    return length > 0 && length <= kMaxPayloadBytes;
}

}  // namespace

void MarkerStream::reset() {
    *this = MarkerStream();
}

void MarkerStream::append(std::span<const std::uint8_t> bytes) {
    if (refused_) return;
    pendingBytes_.erase(pendingBytes_.begin(),
                        pendingBytes_.begin() + static_cast<std::ptrdiff_t>(taken_));
    taken_ = 0;
    pendingBytes_.insert(pendingBytes_.end(), bytes.begin(), bytes.end());
}

MarkerStream::Step MarkerStream::take() {
    const auto bytes = pending();
    if (bytes.size() < kPrefixBytes) return NeedsMore{};
    const auto little = qFromLittleEndian<quint32>(bytes.data());
    const auto big = qFromBigEndian<quint32>(bytes.data());
    if (lengthEndian_ == LengthEndian::unknown) return settle(little, big);

    const std::uint32_t length = lengthEndian_ == LengthEndian::little ? little : big;
    if (length > kMaxPayloadBytes) return refuse(TooLong{length});
    if (bytes.size() < kPrefixBytes + length) return NeedsMore{};
    taken_ += kPrefixBytes + length;
    return Payload{bytes.subspan(kPrefixBytes, length)};
}

std::span<const std::uint8_t> MarkerStream::pending() const {
    return std::span(pendingBytes_).subspan(taken_);
}

MarkerStream::Step MarkerStream::settle(std::uint32_t little, std::uint32_t big) {
    if (isPossibleLength(little))
        lengthEndian_ = LengthEndian::little;
    else if (isPossibleLength(big))
        lengthEndian_ = LengthEndian::big;
    else
        return refuse(Unparseable{little, big});
    return Settled{lengthEndian_};
}

MarkerStream::Step MarkerStream::refuse(Step why) {
    reset();
    refused_ = true;
    return why;
}

}  // namespace sonavault
