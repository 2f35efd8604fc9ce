#pragma once

#include <array>
#include <filesystem>
#include <memory>
#include <span>
#include <stop_token>

#include "platform/AudioFormat.h"
#include "platform/Result.h"

namespace sonavault {

/// Sound of a file that a decoder lends until it is asked for more.
struct DecodedAudio {
    FrameCount position = 0;  ///< of the first frame, in the file
    FrameCount frames = 0;
    std::array<const float*, 2> planes{};  ///< one a channel; a mono file has the first alone
};

/// Gives the sound of a day's file from any position on.
///
/// Positions and lengths are those of readAudioFileInfo(): as many frames come as it tells. What
/// can't be decoded is silence of its length, so that a bad place never ends the day.
///
/// Thread: one at a time. Any number of decoders may read one file.
class AudioDecoder {
  public:
    /// Learns where everything is in the file, which for a full day takes some ten milliseconds. Of
    /// a file that grows the decoder sees what is there now.
    ///
    /// Errors: words, when the file can't be read, holds no sound, or `stop` was asked for.
    static Result<std::unique_ptr<AudioDecoder>> open(const std::filesystem::path& file,
                                                      const std::stop_token& stop = {});

    virtual ~AudioDecoder() = default;

    virtual double sampleRate() const = 0;
    virtual int channels() const = 0;  ///< Range: 1 or 2
    virtual FrameCount length() const = 0;

    /// What comes next begins at `position`: the same samples, bit by bit, as when the file is
    /// decoded from its beginning. Range: any; beyond the file's ends it is taken to them.
    virtual void seek(FrameCount position) = 0;

    /// The next frames, at least one and at most `atMost`; none at the file's end.
    virtual DecodedAudio next(FrameCount atMost) = 0;

    /// Fills `planes`, as many as wanted, with the next `frames` frames; gives how many there were,
    /// fewer only at the file's end. A mono file fills all planes alike.
    FrameCount read(std::span<float* const> planes, FrameCount frames);
};

}  // namespace sonavault
