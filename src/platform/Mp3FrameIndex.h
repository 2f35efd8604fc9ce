#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/AudioFileInfo.h"
#include "platform/FileStamp.h"
#include "platform/MappedFile.h"
#include "platform/Mp3Length.h"
#include "platform/OpenFile.h"

namespace sonavault {

/// Where every position of a day's file is found without reading what lies before it, and how far
/// the file is known.
///
/// Positions count sample frames at the rate of the file's first MPEG frame: MPEG frame n begins
/// where the frames before it end, with nothing trimmed for an encoder's or decoder's delay.
///
/// A value: a copy can be read on another thread while the original is extended. It takes some 900
/// KB for a day.
class Mp3FrameIndex {
  public:
    /// Of no file.
    Mp3FrameIndex() = default;

    /// Knows nothing of the file before extend() is called.
    explicit Mp3FrameIndex(std::filesystem::path file) : file_(std::move(file)) {}

    /// MPEG frames back to back, of one rate and length in samples.
    struct Group {
        std::int64_t begin = 0;       ///< the first one's first byte in the file
        double position = 0;          ///< of its first sample; not whole where rates are mixed
        std::int32_t sampleRate = 0;  ///< Units: hertz
        std::int16_t samplesPerFrame = 0;
        std::int16_t count = 0;  ///< Range: 1 to kGroupFrames
    };
    static constexpr std::int64_t kGroupFrames = 64;

    /// Where one MPEG frame is found: a group and the frame's number in it.
    struct Place {
        std::size_t group = 0;
        std::int64_t frame = 0;

        bool operator==(const Place&) const = default;
    };

    /// Walks the whole file as it is at the call.
    ///
    /// Thread: any. Errors: words, when the file can't be read, holds no MPEG audio frame, or
    /// `stop` was asked for.
    static Result<Mp3FrameIndex> of(const std::filesystem::path& file,
                                    const std::stop_token& stop = {});

    /// Learns what the file has gained since, by walking the new part only. Gives the position up
    /// to which all that was known before goes on being true; 0 when another file has come in its
    /// place, which is then walked from its beginning.
    ///
    /// Errors: as of(); what was known before then stands.
    Result<FrameCount> extend(const std::stop_token& stop = {});

    /// The same of the file behind `opened`, whatever has become of its name.
    Result<FrameCount> extend(const OpenFile& opened, const std::stop_token& stop = {});

    const std::filesystem::path& file() const { return file_; }

    /// The length and the rate, the same as readAudioFileInfo() gives.
    AudioFileInfo info() const;

    /// Of the first frame. Range: 1 or 2
    int channels() const { return channels_; }

    std::span<const Group> groups() const { return groups_; }

    /// The frame in which `position` lies. Range: 0 to below the length.
    Place find(FrameCount position) const;

    /// The frame that comes `count` frames before; the file's first when there are not as many.
    Place stepBack(Place from, std::int64_t count) const;

    /// Where a frame begins; with the group's count as frame, where its last one ends.
    FrameCount positionOf(Place place) const;

  private:
    Outcome walk(const MappedFile& mapped, std::int64_t from, const std::stop_token& stop);
    void append(const Mp3Run& run);
    void forgetUnsettled(std::span<const std::uint8_t> bytes);
    bool isContinuedIn(std::span<const std::uint8_t> bytes) const;

    std::filesystem::path file_;
    std::optional<FileStamp> stamp_;
    std::vector<Group> groups_;
    Mp3Length length_;
    int channels_ = 0;

    // What a grown file is recognised by and continued from.
    std::size_t fileBytes_ = 0;
    std::size_t settledGroups_ = 0;  // no byte that the file gains changes these
    std::int64_t settledBytes_ = 0;  // where they end
    std::string lastSettled_;        // the bytes before that
};

}  // namespace sonavault
