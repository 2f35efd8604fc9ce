#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <vector>

#include "platform/SourceFile.h"
#include "store/RecordingModel.h"

namespace sonavault {

/// What a cut needs to know of one MPEG frame.
struct MP3FrameInfo {
    int frameSize = 0;       ///< the whole frame, header included. Units: bytes
    double durationSec = 0;  ///< Units: seconds

    bool operator==(const MP3FrameInfo&) const = default;
};

/// The Layer III frame that begins at `offset`; nothing when none of known size can begin there.
/// Three bytes decide, but four must be there.
std::optional<MP3FrameInfo> parseMP3FrameAt(std::span<const std::uint8_t> file,
                                            std::int64_t offset);

/// Where the audio begins: behind an ID3v2 tag when the file starts with one, else 0. May lie
/// beyond the file's end.
std::int64_t mp3DataStartOffset(std::span<const std::uint8_t> file);

/// A stretch of the audio file. Range: `high` greater than `low`; they may lie outside the file
struct FileSpan {
    FileSeconds low;
    FileSeconds high;

    bool operator==(const FileSpan&) const = default;
};

/// The stretches of the file that `selections` cover, in order of time, with none that overlap or
/// touch; selections of no length are left out. `startOffset`: the moment of the file's first
/// frame.
std::vector<FileSpan> mergedSpans(std::span<const Selection> selections, DaySeconds startOffset);

/// Finds the bytes of all frames that sound within some stretches of a file, in one walk over the
/// frames' headers.
///
/// A stretch is widened to whole frames, and bytes between its frames that are no frame stay where
/// they are. The time is the sum of the durations that the headers give, so it stays right through
/// any change of bitrate or rate. A frame that sounds in two stretches is found for both.
///
/// Every frame counts that parses, and none has to be followed by another: unlike the walk that
/// tells a recording's length, a cut would rather keep a doubtful frame than lose a true one.
class Mp3FrameWalk {
  public:
    /// `spans` as from mergedSpans().
    Mp3FrameWalk(std::span<const std::uint8_t> file, std::span<const FileSpan> spans);

    static constexpr std::int64_t kStepBytes = std::int64_t{4} << 20;

    /// Goes on for some bytes; false when there is nothing left to find. What is found does not
    /// depend on the steps.
    bool walkOn(std::int64_t bytes = kStepBytes);

    /// How far the walk has come. Range: up to end()
    std::int64_t position() const { return std::min(at_, end_); }

    /// Where the audio ends: a closing ID3v1 tag is no part of it.
    std::int64_t end() const { return end_; }

    /// Whether the last walkOn() found no frame at all.
    bool isAmongJunk() const { return amongJunk_; }

    /// Goes on from `offset`; what lies before it must hold no byte 0xFF. Range: from position()
    void skipTo(std::int64_t offset);

    /// The bytes of each stretch, in order; those without any are left out. Complete once walkOn()
    /// has given false.
    std::vector<ByteRange> found() const;

  private:
    void followFrames(const MP3FrameInfo& frame, std::int64_t stop);
    void passFrame(const MP3FrameInfo& frame);
    void noteSpansAt(double frameEnd);
    bool isDone() const { return at_ >= end_ || closed_ == spans_.size(); }

    std::span<const std::uint8_t> file_;
    std::span<const FileSpan> spans_;
    std::int64_t at_;
    std::int64_t end_;
    double time_ = 0;  // at which the frame at at_ begins
    bool amongJunk_ = false;

    // Both grow in the order of spans_, which lie in order and apart.
    std::vector<ByteRange> ranges_;  // of the spans that have begun; those yet open end at end_
    std::size_t closed_ = 0;

    // When the next span begins, and when the oldest open one ends.
    double nextLow_;
    double nextHigh_ = std::numeric_limits<double>::infinity();
};

}  // namespace sonavault
