#include "store/StationFolder.h"

#include "platform/FileQueries.h"
#include "platform/LocalTime.h"

namespace sonavault {

namespace {

constexpr auto kStationFolderKey = "StationFolderPath";

}  // namespace

std::filesystem::path sidecarURL(const std::filesystem::path& audio, const std::string& suffix) {
    return std::filesystem::path(audio).replace_extension(suffix);
}

std::filesystem::path markerLogURL(const std::filesystem::path& audio) {
    return sidecarURL(audio, "csv");
}

std::optional<std::filesystem::path> StationFolder::stationPath() const {
    if (const auto chosen = shared_.text(kStationFolderKey);
        chosen && !chosen->empty() && pathExists(*chosen))
        return *chosen;
    const auto usual = home_ / "Calderwave" / "Station";
    if (pathExists(usual)) return usual;
    return std::nullopt;
}

std::optional<std::filesystem::path> StationFolder::recordingsFolder() const {
    if (const auto station = stationPath()) return *station / "Logs" / "Audio";
    return std::nullopt;
}

std::filesystem::path StationFolder::outputFolder() const {
    return recordingsFolder().value_or(home_ / "Documents" / "Calderwave_Recordings");
}

std::optional<OutputURLs> StationFolder::makeOutputURLs(WallTime moment, Log& log) const {
    const auto folder = outputFolder();
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) {
        log.line("Sonavault recorder: mkdir failed at " + folder.string() + ": " + error.message());
        return std::nullopt;
    }
    const auto base = folder / (kRecordingPrefix + isoDateString(moment));
    return OutputURLs{base.string() + ".mp3", base.string() + ".json", base.string() + ".csv"};
}

}  // namespace sonavault
