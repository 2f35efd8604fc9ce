#pragma once

#include <filesystem>

#include "platform/AudioFormat.h"
#include "platform/Result.h"

namespace sonavault {

/// How long an audio file is once decoded.
struct AudioFileInfo {
    FrameCount frames = 0;       ///< at `sampleRate`
    double sampleRate = 0;       ///< the rate of the file's first frame; Units: hertz
    double durationSec() const { return static_cast<double>(frames) / sampleRate; }
};

/// Learns a day's exact length from its frame headers, without decoding.
///
/// A file of several runs has seams: a torn frame where a run was cut off, junk, or a change of rate. The walk finds the
/// next true frame after each (one whose successor is a frame as well, or that ends the file). A torn last frame does not
/// count. An ID3v2 tag before and an ID3v1 tag behind are stepped over.
///
/// Thread: any. Errors: words, when the file can't be read or holds no MPEG audio frame.
Result<AudioFileInfo> readAudioFileInfo(const std::filesystem::path& file);

}  // namespace sonavault
