#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace sonavault::testing {

/// The stream of one recording: what its frames' headers say.
struct Mp3Shape {
    int sampleRate = 16000;  ///< any of the nine of Layer III; it decides the version and so the
                             ///< samples of a frame
    int bitrateKbps = 24;    ///< any of the fourteen of that version
    enum class Padding { never, always, alternating } padding = Padding::never;
    bool stereo = false;
};

/// One frame that was written whole.
struct Mp3FrameMade {
    std::int64_t begin = 0;  ///< Units: bytes from the beginning of the file
    std::int64_t bytes = 0;
    int samples = 0;
    int sampleRate = 0;
};

/// Makes MPEG audio files piece by piece, in which every frame's header is true, its sound is
/// silence, and its last five bytes number it. Only headers hold a byte 0xFF, unless junk brings
/// one.
///
/// It keeps its own account of what was written, from the standard's tables and not from the code
/// under test.
class SyntheticMp3 {
  public:
    /// Adds whole frames, numbered on from the last.
    SyntheticMp3& frames(int count, const Mp3Shape& shape = {});

    /// Adds the first `bytes` bytes of a frame, as a run does that is killed: a frame begun and not
    /// counted.
    SyntheticMp3& tornFrame(int bytes, const Mp3Shape& shape = {});

    /// Takes the file's last `bytes` bytes away; a frame that loses some no longer counts.
    SyntheticMp3& cutEnd(std::int64_t bytes);

    /// Adds `bytes` of noise without a byte 0xFF, another for each `seed`.
    SyntheticMp3& junk(int bytes, std::uint32_t seed = 1);

    /// Adds bytes as they are; nothing of them counts.
    SyntheticMp3& raw(std::string_view bytes);

    /// Adds an ID3v2 tag with `payload` bytes behind its ten bytes of header.
    SyntheticMp3& id3v2(int payload);

    /// Adds an ID3v1 tag of 128 bytes.
    SyntheticMp3& id3v1();

    const std::string& bytes() const { return bytes_; }
    std::span<const std::uint8_t> span() const;
    const std::vector<Mp3FrameMade>& made() const { return made_; }

    /// The sum of the whole frames' durations. Units: seconds
    double durationSec() const;

    /// What a reader should tell as the length, at the rate of the first whole frame. Units: sample
    /// frames
    std::int64_t lengthInFrames() const;

  private:
    std::string nextFrame(const Mp3Shape& shape, bool padded);

    std::string bytes_;
    std::vector<Mp3FrameMade> made_;
    std::int64_t numbered_ = 0;
};

/// The four bytes of a header.
std::string mp3HeaderBytes(const Mp3Shape& shape, bool padded);

/// The bytes of a whole frame of this shape.
int mp3FrameBytes(const Mp3Shape& shape, bool padded);

/// Which frame of a SyntheticMp3, counted from 0, these bytes are.
std::int64_t mp3FrameNumber(std::string_view wholeFrame);

}  // namespace sonavault::testing
