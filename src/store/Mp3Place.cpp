#include "store/Mp3Place.h"

#include <algorithm>
#include <numeric>

#include "platform/AudioFileInfo.h"

namespace sonavault {

namespace {

// A false header within sound is one of its kind in four million; so many in a row there are not.
constexpr std::int64_t kLeastFrames = 8;
constexpr std::int64_t kLeastBytes = 4096;
constexpr std::int64_t kPage = 4096;

std::span<const std::uint8_t> from(std::span<const std::uint8_t> block, std::int64_t at) {
    return block.subspan(static_cast<std::size_t>(at));
}

/// The longest stretch of equal frames; of equally long ones the first.
std::optional<Mp3Run> longestRun(std::span<const std::uint8_t> block) {
    std::optional<Mp3Run> longest;
    Mp3Walk walk(block);
    while (const auto run = walk.next())
        if (!longest || run->count > longest->count) longest = run;
    return longest;
}

/// Whether each of the run's first frames, as many as a turn has, is padded.
std::vector<bool> paddingOf(std::span<const std::uint8_t> block, const Mp3Run& run,
                            const Mp3Cadence& cadence) {
    std::vector<bool> padding;
    std::int64_t at = run.begin;
    for (int i = 0; i < cadence.frames(); ++i) {
        const auto header = parseMp3Header(from(block, at));
        if (!header) break;
        padding.push_back(header->frameBytes != cadence.plainBytes);
        at += header->frameBytes;
    }
    return padding;
}

/// Which frame of the cadence a turn that is padded so begins with; nothing for any other order.
std::optional<int> turnOf(const std::vector<bool>& padding, const Mp3Cadence& cadence) {
    const int frames = cadence.frames();
    if (static_cast<int>(padding.size()) < frames) return std::nullopt;
    for (int turn = 0; turn < frames; ++turn) {
        int same = 0;
        while (same < frames &&
               padding[static_cast<std::size_t>(same)] == cadence.isPadded((turn + same) % frames))
            ++same;
        if (same == frames) return turn;
    }
    return std::nullopt;
}

Mp3Header withoutPadding(Mp3Header header, const Mp3Cadence& cadence) {
    header.frameBytes = static_cast<int>(cadence.plainBytes);
    return header;
}

}  // namespace

Mp3Cadence::Mp3Cadence(const Mp3Header& kind) {
    // The sum of all fractions of a turn is whole.
    const std::int64_t bytesTimesRate =
        std::int64_t{kind.samplesPerFrame} * kind.bitrateKbps * 1000 / 8;
    const std::int64_t rate = kind.sampleRate;
    const std::int64_t fraction = bytesTimesRate % rate;
    const std::int64_t count = rate / std::gcd(fraction, rate);
    plainBytes = bytesTimesRate / rate;
    for (std::int64_t i = 0; i < count; ++i) {
        before.push_back(bytes);
        // As encoders count it: a frame whose fraction is not covered by what was padded before
        // gets a byte more. The first one is let off.
        const std::int64_t owed = i * fraction;
        const std::int64_t padded = bytes - i * plainBytes;
        bytes += plainBytes + (owed > padded * rate ? 1 : 0);
    }
}

bool Mp3Cadence::isPadded(int frame) const {
    const auto i = static_cast<std::size_t>(frame);
    const std::int64_t end = i + 1 < before.size() ? before[i + 1] : bytes;
    return end - before[i] > plainBytes;
}

std::int64_t bytesToFindPlace(const Mp3Header& kind) {
    const Mp3Cadence cadence(kind);
    const std::int64_t frames = std::max<std::int64_t>(cadence.frames(), kLeastFrames);
    // The block begins within a frame and ends within one.
    const std::int64_t bytes = (frames + 2) * (cadence.plainBytes + 1) + kMp3MaxFrameBytes;
    return std::max(kLeastBytes, (bytes + kPage - 1) / kPage * kPage);
}

std::optional<Mp3Place> findMp3Place(std::span<const std::uint8_t> block, std::int64_t begin) {
    const auto run = longestRun(block);
    if (!run || run->count < kLeastFrames) return std::nullopt;
    const Mp3Cadence cadence(run->header);
    if (run->count < cadence.frames()) return std::nullopt;
    const auto turn = turnOf(paddingOf(block, *run, cadence), cadence);
    if (!turn) return std::nullopt;
    return Mp3Place{begin + run->begin, withoutPadding(run->header, cadence), *turn};
}

std::optional<std::int64_t> framesBetween(const Mp3Place& from, const Mp3Place& to) {
    if (from.kind != to.kind) return std::nullopt;
    const Mp3Cadence cadence(from.kind);
    const auto turnBegin = [&cadence](const Mp3Place& place) {
        return place.at - cadence.before[static_cast<std::size_t>(place.turn)];
    };
    const std::int64_t distance = turnBegin(to) - turnBegin(from);
    if (distance % cadence.bytes != 0) return std::nullopt;
    return distance / cadence.bytes * cadence.frames() + to.turn - from.turn;
}

}  // namespace sonavault
