#include "platform/AudioFileInfo.h"

#include <algorithm>
#include <bitset>

#include "platform/M4aDecoder.h"
#include "platform/MappedFile.h"
#include "platform/Mp3Length.h"

namespace sonavault {
namespace {

constexpr auto kHeaderBytes = static_cast<std::int64_t>(kMp3HeaderBytes);

// A header's bits that are the same in all frames of one recording: all but padding, the private
// bit and the mode extension, which joint stereo changes from frame to frame.
constexpr std::uint32_t kKindMask = 0xFFFFFCCFU;
// The same, but for the bitrate: what an encoder with a variable bitrate keeps.
constexpr std::uint32_t kStreamMask = 0xFFFF0CCFU;
constexpr std::uint32_t kPaddingBit = 0x00000200U;

std::uint32_t wordAt(const std::uint8_t* bytes) {
    return std::uint32_t{bytes[0]} << 24U | std::uint32_t{bytes[1]} << 16U |
           std::uint32_t{bytes[2]} << 8U | std::uint32_t{bytes[3]};
}

}  // namespace

Mp3Walk::Mp3Walk(std::span<const std::uint8_t> file)
    : data_(file.data()),
      end_(mp3DataEnd(file)),
      at_(std::min(mp3DataStart(file), end_)),
      firstFrameBy_(std::min(end_, at_ + kFirstFrameWithin)) {}

Mp3Walk::Mp3Walk(std::span<const std::uint8_t> file, std::int64_t frame) : Mp3Walk(file) {
    at_ = std::min(frame, end_);
    firstFrameBy_ = end_;
}

std::optional<Mp3Run> Mp3Walk::next(std::int64_t atMost) {
    while (goToFrame()) {
        Mp3Run run;
        run.begin = at_;
        run.header = *headerAt(at_);
        takeFollowed(run, atMost);
        if (run.count < atMost) judgeLast(run);
        if (run.count > 0) return run;
    }
    return std::nullopt;
}

/// Moves to the frame that is expected here, or else to the next true one; false at the end.
bool Mp3Walk::goToFrame() {
    if (!headerAt(at_)) at_ = findTrueFrame(at_);
    if (at_ == end_) return false;
    firstFrameBy_ = end_;
    return true;
}

/// Counts the frames that are followed by one of their own kind, and moves to the one that is not,
/// or behind the last that is asked for.
void Mp3Walk::takeFollowed(Mp3Run& run, std::int64_t atMost) {
    const std::uint8_t* frame = data_ + at_;
    const std::uint8_t* const last = data_ + end_ - kHeaderBytes;
    const std::uint32_t plain = wordAt(frame) & kKindMask;
    const int padding = (wordAt(frame) & kPaddingBit) != 0 ? 1 : 0;
    const std::int64_t length[2] = {run.header.frameBytes - padding,
                                    run.header.frameBytes - padding + 1};
    std::int64_t followed = 0;
    while (followed < atMost) {
        const std::int64_t step = length[(wordAt(frame) & kPaddingBit) != 0];
        if (last - frame < step || (wordAt(frame + step) & kKindMask) != plain) break;
        frame += step;
        ++followed;
    }
    run.count += followed;
    at_ = frame - data_;
    run.end = at_;
}

/// Decides whether the frame here, which is not followed by one of its own kind, counts as the
/// run's last, and moves on.
void Mp3Walk::judgeLast(Mp3Run& run) {
    const std::int64_t frame = at_;
    const std::int64_t behind = frame + headerAt(frame)->frameBytes;
    std::int64_t nextFrame = behind;
    if (isFollowedBy(frame, behind))
        nextFrame = findChain(frame + 1, behind);
    else if (behind != end_)
        nextFrame = findTrueFrame(frame + 1);

    at_ = nextFrame;
    if (behind > end_ || nextFrame < behind) return;
    ++run.count;
    run.end = behind;
}

/// Whether a frame begins at `behind`, where the one at `frame` ends, and not sound that a torn
/// frame's length points at.
bool Mp3Walk::isFollowedBy(std::int64_t frame, std::int64_t behind) const {
    const auto next = headerAt(behind);
    if (!next) return false;
    if (isSameStream(frame, behind)) return true;
    const std::int64_t afterNext = behind + next->frameBytes;
    if (afterNext == end_) return true;
    if (!headerAt(afterNext)) return false;
    // A lone frame between two other streams, unless the second began before it.
    return isSameStream(behind, afterNext) || findChain(frame + 1, afterNext) == afterNext;
}

std::optional<Mp3Header> Mp3Walk::headerAt(std::int64_t at) const {
    if (end_ - at < kHeaderBytes) return std::nullopt;
    return parseMp3Header({data_ + at, kMp3HeaderBytes});
}

std::uint32_t Mp3Walk::kindAt(std::int64_t at) const {
    return wordAt(data_ + at) & kKindMask;
}

bool Mp3Walk::isSameStream(std::int64_t one, std::int64_t other) const {
    return ((wordAt(data_ + one) ^ wordAt(data_ + other)) & kStreamMask) == 0;
}

bool Mp3Walk::isTrueFrame(std::int64_t at) const {
    const auto header = headerAt(at);
    if (!header) return false;
    const std::int64_t behind = at + header->frameBytes;
    return behind == end_ || (headerAt(behind) && isSameStream(at, behind));
}

/// The first true frame at or behind `from`; end_ when there is none.
std::int64_t Mp3Walk::findTrueFrame(std::int64_t from) const {
    const std::int64_t to = std::min(firstFrameBy_, end_ - kHeaderBytes + 1);
    for (std::int64_t place = from; place < to; ++place) {
        place = findMp3Sync(data_ + place, data_ + to) - data_;
        if (place < to && isTrueFrame(place)) return place;
    }
    return end_;
}

/// The first place in [from, to) where frames of the kind of the one at `to` begin that lead up to
/// it; `to` when there is none. Two frames' bytes at most are searched.
std::int64_t Mp3Walk::findChain(std::int64_t from, std::int64_t to) const {
    const std::uint32_t kind = kindAt(to);
    // A chain that meets one that led elsewhere leads there too: no header is looked at twice.
    std::bitset<static_cast<std::size_t>(kMp3MaxFrameBytes) * 2> tried;
    const auto index = [from](std::int64_t at) { return static_cast<std::size_t>(at - from); };
    for (std::int64_t place = from; place < to; ++place) {
        place = findMp3Sync(data_ + place, data_ + to) - data_;
        std::int64_t link = place;
        while (link < to && kindAt(link) == kind && !tried[index(link)]) {
            tried.set(index(link));
            link += headerAt(link)->frameBytes;
        }
        if (link == to) return place;
    }
    return to;
}

Result<AudioFileInfo> walkMp3(std::span<const std::uint8_t> file) {
    Mp3Length length;
    Mp3Walk walk(file);
    while (const auto run = walk.next()) length.add(run->header, run->count);
    if (length.firstRate() == 0) return Result<AudioFileInfo>::failure(kNoMp3Frame);
    return AudioFileInfo{length.frames(), static_cast<double>(length.firstRate())};
}

Result<AudioFileInfo> readAudioFileInfo(const std::filesystem::path& file) {
    if (isM4aName(file)) return readM4aInfo(file);
    const auto mapped = MappedFile::open(file, MappedFile::Order::frontToBack);
    if (!mapped) return Result<AudioFileInfo>::failure(mapped.error());
    return walkMp3(mapped.value().bytes());
}

}  // namespace sonavault
