#include "export/Mp3FrameWalk.h"

#include <algorithm>
#include <cstring>

#include "platform/Mp3Header.h"

namespace sonavault {
namespace {

constexpr auto kHeaderBytes = static_cast<std::int64_t>(kMp3HeaderBytes);
constexpr double kNever = std::numeric_limits<double>::infinity();

/// A frame's first four bytes in one number, in this machine's order.
std::uint32_t wordAt(const std::uint8_t* bytes) {
    std::uint32_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/// The bits of a header that decide over the frame's size and duration: all of the first three
/// bytes but for the sign of a checksum and the private bit.
const std::uint32_t kSizeMask = [] {
    constexpr std::uint8_t kBits[] = {0xFF, 0xFE, 0xFE, 0x00};
    return wordAt(kBits);
}();
const std::uint32_t kPaddingMask = [] {
    constexpr std::uint8_t kBits[] = {0x00, 0x00, 0x02, 0x00};
    return wordAt(kBits);
}();

}  // namespace

std::optional<MP3FrameInfo> parseMP3FrameAt(std::span<const std::uint8_t> file,
                                            std::int64_t offset) {
    const auto size = static_cast<std::int64_t>(file.size());
    if (offset < 0 || offset > size - kHeaderBytes) return std::nullopt;
    const auto header =
        parseMp3Header(file.subspan(static_cast<std::size_t>(offset), kMp3HeaderBytes));
    if (!header) return std::nullopt;
    return MP3FrameInfo{.frameSize = header->frameBytes, .durationSec = header->durationSec()};
}

std::int64_t mp3DataStartOffset(std::span<const std::uint8_t> file) {
    return mp3DataStart(file);
}

std::vector<FileSpan> mergedSpans(std::span<const Selection> selections, DaySeconds startOffset) {
    std::vector<FileSpan> spans;
    for (const auto& selection : selections) {
        const FileSpan span{.low = inFile({selection.lowSec()}, startOffset),
                            .high = inFile({selection.highSec()}, startOffset)};
        if (span.high.value > span.low.value) spans.push_back(span);
    }
    std::sort(spans.begin(), spans.end(), [](const FileSpan& one, const FileSpan& other) {
        return one.low.value < other.low.value;
    });
    std::vector<FileSpan> merged;
    for (const auto& span : spans) {
        if (!merged.empty() && merged.back().high.value >= span.low.value)
            merged.back().high.value = std::max(merged.back().high.value, span.high.value);
        else
            merged.push_back(span);
    }
    return merged;
}

Mp3FrameWalk::Mp3FrameWalk(std::span<const std::uint8_t> file, std::span<const FileSpan> spans)
    : file_(file),
      spans_(spans),
      end_(mp3DataEnd(file)),
      nextLow_(spans.empty() ? kNever : spans.front().low.value) {
    at_ = std::min(mp3DataStartOffset(file), end_);
}

bool Mp3FrameWalk::walkOn(std::int64_t bytes) {
    const double timeBefore = time_;
    const std::int64_t stop = std::min(at_ + bytes, end_);
    while (at_ < stop && closed_ < spans_.size()) {
        const std::int64_t before = at_;
        const auto frame = parseMP3FrameAt(file_, at_);
        if (frame) {
            followFrames(*frame, stop);
            if (at_ == before) passFrame(*frame);
            continue;
        }
        // The last place of all has no byte behind it, and no header either.
        const auto last = std::min(stop, static_cast<std::int64_t>(file_.size()) - 1);
        const auto next = std::min(at_ + 1, last);
        at_ = findMp3Sync(file_.data() + next, file_.data() + last) - file_.data();
        if (at_ == last) at_ = stop;
    }
    amongJunk_ = time_ == timeBefore;
    return !isDone();
}

/// Passes frames that are alike but for their padding, up to the first at which a span begins or
/// ends.
void Mp3FrameWalk::followFrames(const MP3FrameInfo& frame, std::int64_t stop) {
    const std::uint8_t* const data = file_.data();
    const std::int64_t last =
        std::min(stop, static_cast<std::int64_t>(file_.size()) - kHeaderBytes + 1);
    std::uint32_t wanted = wordAt(data + at_) & kSizeMask;
    std::int64_t size = frame.frameSize;
    std::int64_t at = at_;
    double time = time_;
    while (at < last) {
        const std::uint32_t word = wordAt(data + at) & kSizeMask;
        if (word != wanted) {
            if ((word ^ wanted) != kPaddingMask) break;
            size += (word & kPaddingMask) != 0 ? 1 : -1;
            wanted = word;
        }
        const double frameEnd = time + frame.durationSec;
        if (frameEnd > nextLow_ || time >= nextHigh_) break;
        time = frameEnd;
        // Taken from the frames before, and not from this one's padding, so that the processor
        // need not wait for one header to know where the next one is.
        at += size;
    }
    time_ = time;
    at_ = at;
}

void Mp3FrameWalk::passFrame(const MP3FrameInfo& frame) {
    const double frameEnd = time_ + frame.durationSec;
    noteSpansAt(frameEnd);
    if (closed_ == spans_.size()) return;
    at_ += frame.frameSize;
    time_ = frameEnd;
}

/// Begins and ends spans with the frame at at_.
void Mp3FrameWalk::noteSpansAt(double frameEnd) {
    while (frameEnd > nextLow_) {
        ranges_.push_back({at_, end_});
        nextLow_ = ranges_.size() < spans_.size() ? spans_[ranges_.size()].low.value : kNever;
    }
    while (closed_ < ranges_.size() && time_ >= spans_[closed_].high.value)
        ranges_[closed_++].end = at_;
    nextHigh_ = closed_ < ranges_.size() ? spans_[closed_].high.value : kNever;
}

void Mp3FrameWalk::skipTo(std::int64_t offset) {
    at_ = std::max(at_, std::min(offset, end_));
}

std::vector<ByteRange> Mp3FrameWalk::found() const {
    std::vector<ByteRange> kept;
    std::copy_if(ranges_.begin(), ranges_.end(), std::back_inserter(kept),
                 [](const ByteRange& range) { return range.size() > 0; });
    return kept;
}

}  // namespace sonavault
