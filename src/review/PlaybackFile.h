#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <stop_token>

#include "platform/AudioDecoder.h"
#include "platform/AudioFileInfo.h"
#include "platform/FileStamp.h"
#include "platform/OpenFile.h"
#include "platform/Result.h"
#include "review/DayIndex.h"

namespace sonavault {

/// A day's audio file as it was at one moment, from which any thread can make a decoder, also when
/// the file has lost its name since.
struct PlaybackSource {
    OpenFile::Shared file;
    std::optional<FileStamp> stamp;         ///< of the file at that moment
    std::shared_ptr<const DayIndex> index;  ///< none for a legacy day
    AudioFileInfo probed;                   ///< what holds until there is an index

    /// The length and the rate.
    AudioFileInfo info() const;

    /// Waits for the index where it is in the making.
    /// Errors: words, when the file can't be read any more, or `stop` was asked for.
    Result<std::unique_ptr<AudioDecoder>> openDecoder(const std::stop_token& stop) const;
};

/// The open audio file of the day under review, with the length that it had when it was opened
/// last.
///
/// A long file is not read whole here: its length is learnt from a few places of it, and an index
/// of its frames, which proves that length, is made in the background.
///
/// Thread: main.
class PlaybackFile {
  public:
    /// Errors: words, when the file can't be read or is no audio.
    static Result<PlaybackFile> open(const std::filesystem::path& file);

    /// Takes in what the file of that name has gained since; costs next to nothing when that is
    /// little. Errors: words; what was known before then stands, and can be heard.
    Outcome openAfresh();

    AudioFileInfo info() const { return source_->info(); }

    /// The same object for as long as the file is the same.
    const std::shared_ptr<const PlaybackSource>& source() const { return source_; }

  private:
    PlaybackFile() = default;

    std::shared_ptr<const PlaybackSource> source_;
};

}  // namespace sonavault
