#include "export/ExportFolder.h"

#include <QStandardPaths>

#include "platform/FileQueries.h"

namespace sonavault {

std::optional<std::filesystem::path> documentsFolder() {
    const std::filesystem::path folder =
        QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation).toStdString();
    if (folder.empty() || !pathExists(folder)) return std::nullopt;
    return folder;
}

std::filesystem::path ExportFolder::defaultExportFolderURL() const {
    if (const auto last = preferences_.text(kLastExportFolderKey);
        last && !last->empty() && pathExists(*last))
        return *last;
    if (const auto station = station_.stationPath()) return *station;
    return documentsFolder().value_or(homeFolder());
}

void ExportFolder::remember(const std::filesystem::path& output) {
    preferences_.setText(kLastExportFolderKey, output.parent_path().string());
}

}  // namespace sonavault
