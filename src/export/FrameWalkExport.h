#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <stop_token>
#include <vector>

#include "export/ExportError.h"
#include "platform/Result.h"
#include "store/RecordingModel.h"

namespace sonavault {

/// What an export takes of the day under review, as it was when the export was asked for.
struct ExportSource {
    std::optional<std::filesystem::path> loadedFileURL;
    DaySeconds currentRecordingOffset;                     ///< the moment of the file's first frame
    std::vector<Selection> selections;                     ///< the reviewer's own
    std::vector<std::filesystem::path> recordingsFolders;  ///< besides the loaded day's
};

/// Copies the frames that sound within some ranges of a day into one MP3 file, in order of time,
/// without decoding. It takes about as long as reading the day.
///
/// `ranges`: on the day's timeline; absent for the reviewer's selections. A file of the name
/// `outputURL` is replaced in one step, so that it is never there in part, and is on the disk at
/// return. `onProgress` is told how much of the day has been walked, 0 to 1.
///
/// Thread: any. Errors: also writeFailed when `stop` was asked for, and when the output would be a
/// day's recording.
Result<Done, ExportError> performFrameWalkExport(
    const ExportSource& source, const std::optional<std::vector<Selection>>& ranges,
    const std::filesystem::path& outputURL, const std::stop_token& stop = {},
    const std::function<void(double)>& onProgress = {});

}  // namespace sonavault
