#include "export/DaysRecording.h"

#include <algorithm>

#include "platform/FileQueries.h"
#include "store/RecordingFiles.h"

namespace sonavault {
namespace {

using Path = std::filesystem::path;

bool hasOtherNames(const Path& file) {
    std::error_code absent;
    return std::filesystem::hard_link_count(file, absent) > 1 && !absent;
}

bool holdsRecording(const Path& folder, const Path& file) {
    const auto entries = entriesOf(folder);
    return entries && std::any_of(entries->begin(), entries->end(), [&](const Path& entry) {
               return recordingDate(entry) && isSameFile(entry, file);
           });
}

}  // namespace

bool isSameFile(const Path& one, const Path& other) {
    std::error_code absent;
    return one == other || std::filesystem::equivalent(one, other, absent);
}

bool isDaysRecording(const Path& output, std::span<const Path> folders) {
    const Path target = behindLinks(output);
    const bool named = recordingDate(target).has_value();
    const bool linked = hasOtherNames(target);
    return std::any_of(folders.begin(), folders.end(), [&](const Path& folder) {
        return (named && isSameFile(target.parent_path(), folder)) ||
               (linked && holdsRecording(folder, target));
    });
}

}  // namespace sonavault
