#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include "platform/AudioDecoder.h"
#include "platform/AudioFileInfo.h"
#include "platform/FileStamp.h"
#include "platform/Mp3FrameIndex.h"
#include "platform/Result.h"

namespace sonavault {

/// A day's audio file as it was at one moment, from which any thread can make a decoder.
struct PlaybackSource {
    std::filesystem::path file;
    std::shared_ptr<const Mp3FrameIndex> index;  ///< none for a legacy day
    AudioFileInfo info;

    /// Errors: words, when the file can't be read any more.
    Result<std::unique_ptr<AudioDecoder>> openDecoder() const;
};

/// The open audio file of the day under review, with the length that it had when it was opened
/// last.
///
/// Thread: main.
class PlaybackFile {
  public:
    /// Errors: words, when the file can't be read or is no audio.
    static Result<PlaybackFile> open(const std::filesystem::path& file);

    /// Takes in what the file has gained since; costs next to nothing when that is little.
    /// Errors: words; what was known before then stands.
    Outcome openAfresh();

    const AudioFileInfo& info() const { return source_->info; }

    /// The same object for as long as the file is the same.
    const std::shared_ptr<const PlaybackSource>& source() const { return source_; }

  private:
    PlaybackFile() = default;

    std::optional<FileStamp> stamp_;
    std::shared_ptr<const PlaybackSource> source_;
};

}  // namespace sonavault
