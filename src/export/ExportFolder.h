#pragma once

#include <filesystem>
#include <optional>

#include "platform/Preferences.h"
#include "store/StationFolder.h"

namespace sonavault {

/// The preference that holds the folder of the last export.
inline constexpr auto kLastExportFolderKey = "SonavaultLastExportFolder";

/// The person's folder for documents; nothing when there is none.
std::optional<std::filesystem::path> documentsFolder();

/// Where save panels open.
///
/// Thread: main.
class ExportFolder {
  public:
    /// `preferences`: the program's own domain. Both outlive this object.
    ExportFolder(Preferences& preferences, const StationFolder& station)
        : preferences_(preferences), station_(station) {}

    /// The folder of the last export if that still exists, else the station folder, else the
    /// person's documents or home.
    std::filesystem::path defaultExportFolderURL() const;

    /// The person has chosen to save there; whether the export then works doesn't matter.
    void remember(const std::filesystem::path& output);

  private:
    Preferences& preferences_;
    const StationFolder& station_;
};

}  // namespace sonavault
