#pragma once

#include <cstdint>
#include <filesystem>
#include <limits>
#include <optional>
#include <span>

#include "platform/AudioFormat.h"
#include "platform/Mp3Header.h"
#include "platform/Result.h"

namespace sonavault {

/// How long an audio file is once decoded.
struct AudioFileInfo {
    /// At `sampleRate`. Of a file with several rates: its duration at that rate, rounded.
    FrameCount frames = 0;
    double sampleRate = 0;  ///< the rate of the file's first frame; Units: hertz

    double durationSec() const { return static_cast<double>(frames) / sampleRate; }
};

/// MPEG frames of one kind that lie back to back: same version, rate, bitrate and mode, with
/// padding here and there.
struct Mp3Run {
    std::int64_t begin = 0;  ///< where the first frame's first byte is
    std::int64_t end = 0;    ///< behind the last frame's last byte
    std::int64_t count = 0;  ///< MPEG frames, at least one
    Mp3Header header;        ///< of the first frame
};

/// Steps through the true frames of an MPEG audio file, run by run.
///
/// A day's file has seams where one recording ended and the next began: a torn frame, junk, or a
/// change of rate. A frame is looked for where the one before ended. Where none begins, the next
/// one counts that is followed by a frame of its own stream (bitrate aside) or ends the file, since
/// sound may look like a header.
///
/// A torn frame's claimed length reaches into the recording after it. So a frame that nothing
/// follows does not count when a true frame begins inside it, and a frame that another kind follows
/// does not count when frames of that kind begin inside it and lead up to its end. A last frame
/// whose bytes are not all there does not count. An ID3v2 tag before and an ID3v1 tag behind are
/// stepped over.
///
/// The time is linear in the size, whatever the bytes.
class Mp3Walk {
  public:
    /// How far into a file its first frame is looked for, so that a file of something else is
    /// refused at once.
    static constexpr std::int64_t kFirstFrameWithin = std::int64_t{16} << 20;

    /// How far ahead of a frame the walk looks before it decides whether the frame counts. Of a
    /// file that grows, frames that lie further from its end are settled.
    static constexpr std::int64_t kLookAhead = std::int64_t{3} * kMp3MaxFrameBytes;

    /// `file` is the whole file, and stays where it is as long as the walk.
    explicit Mp3Walk(std::span<const std::uint8_t> file);

    /// Goes on at `frame`, where an earlier walk of the same file found a frame.
    Mp3Walk(std::span<const std::uint8_t> file, std::int64_t frame);

    /// The next run of at most `atMost` frames, or nothing when there is none. A run ends at the
    /// latest where its kind ends, but may end sooner.
    std::optional<Mp3Run> next(std::int64_t atMost = std::numeric_limits<std::int64_t>::max());

  private:
    bool goToFrame();
    void takeFollowed(Mp3Run& run, std::int64_t atMost);
    void judgeLast(Mp3Run& run);

    std::optional<Mp3Header> headerAt(std::int64_t at) const;
    std::uint32_t kindAt(std::int64_t at) const;
    bool isSameStream(std::int64_t one, std::int64_t other) const;
    bool isFollowedBy(std::int64_t frame, std::int64_t behind) const;
    bool isTrueFrame(std::int64_t at) const;
    std::int64_t findTrueFrame(std::int64_t from) const;
    std::int64_t findChain(std::int64_t from, std::int64_t to) const;

    const std::uint8_t* data_;
    std::int64_t end_;
    std::int64_t at_;            // where the next frame is looked for
    std::int64_t firstFrameBy_;  // where the search for a first one ends; end_ afterwards
};

/// How long an MPEG audio file of these bytes is once decoded.
///
/// Thread: any. Errors: words, when there is no MPEG audio frame.
Result<AudioFileInfo> walkMp3(std::span<const std::uint8_t> file);

/// Learns a day's exact length from its frame headers, without decoding. Of a file that grows
/// meanwhile it sees what was there at the call.
///
/// Thread: any. Errors: words, when the file can't be read or holds no MPEG audio frame.
Result<AudioFileInfo> readAudioFileInfo(const std::filesystem::path& file);

}  // namespace sonavault
