#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Clock.h"
#include "platform/Log.h"
#include "platform/Result.h"

namespace sonavault {

/// What a day's recording says of itself: above all where its first frame stands on the clock, and
/// the settings with which the file began, so that a later run on the same day continues with them.
/// The file's format is described in docs/formats/manifest.md.
struct RecordingManifest {
    std::int64_t version = 1;
    double startOffsetSec = 0;  ///< the wall clock at frame 0. Units: seconds since local midnight
    std::optional<std::string> sourceMode;
    std::optional<std::string> startedAtIso8601;  ///< the moment of frame 0, UTC with milliseconds
    std::optional<std::int64_t> sampleRate;       ///< what the encoder was given. Units: hertz
    std::optional<std::int64_t> channels;
    std::optional<std::int64_t> bitrateKbps;
    std::optional<std::string> deviceName;  ///< what fed the recording
    std::optional<std::string> recordedBy;
    std::optional<std::string> notes;

    bool operator==(const RecordingManifest&) const = default;
};

/// One JSON object, indented, keys sorted, absent fields left out.
std::string encodeManifest(const RecordingManifest& manifest);

/// Errors: words, when `json` is no object, lacks `version` or `start_offset_sec`, or has a key of
/// a wrong type. Unknown keys are passed over, and a null counts as absent.
Result<RecordingManifest> decodeManifest(std::string_view json);

/// The manifest beside an audio file.
std::filesystem::path manifestURL(const std::filesystem::path& audio);

/// The review side's reader: nothing without a manifest, and nothing with a line in `log` for one
/// that can't be read.
std::optional<RecordingManifest> loadManifest(const std::filesystem::path& audio, Log& log);

/// The recorder's reader: nothing when there is no manifest or it can't be read, without a word.
std::optional<RecordingManifest> readManifest(const std::filesystem::path& file);

/// The moment of the file's frame 0, when the manifest tells it with its milliseconds.
std::optional<WallTime> readManifestStartedAt(const std::filesystem::path& file);

}  // namespace sonavault
