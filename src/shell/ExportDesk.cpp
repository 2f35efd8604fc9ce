#include "shell/ExportDesk.h"

namespace sonavault {

ExportDesk::ExportDesk(ShellServices& services, ReviewDesk& review, const Selections& selections,
                       Outlets outlets)
    : services_(services),
      review_(review),
      selections_(selections),
      outlets_(std::move(outlets)),
      folder_(services.preferences, services.recorder.stationFolder),
      exporter_(*this, services.recorder.mainQueue),
      selectionExport_(*this, *this, folder_, exporter_),
      aircheckExport_(*this, *this, folder_, exporter_),
      schedule_({.host = *this,
                 .day = *this,
                 .exporter = exporter_,
                 .preferences = services.preferences,
                 .station = services.recorder.stationFolder,
                 .clock = services.recorder.clock}) {}

std::optional<double> ExportDesk::progress() const {
    const auto underWay = exporter_.underWay();
    if (underWay.empty()) return std::nullopt;
    double sum = 0;
    for (const auto& each : underWay) sum += each.fraction;
    return sum / static_cast<double>(underWay.size());
}

std::vector<std::filesystem::path> ExportDesk::recordingsFolders() const {
    std::vector<std::filesystem::path> folders;
    if (const auto listed = services_.recorder.stationFolder.recordingsFolder())
        folders.push_back(*listed);
    // The recorder goes on where it began when the station's folder has become another.
    if (const auto recorded = review_.lastRecordingURL())
        folders.push_back(recorded->parent_path());
    return folders;
}

std::size_t ExportDesk::showAlert(const ExportAlert& alert) {
    QStringList buttons;
    for (const auto& button : alert.buttons) buttons << QString::fromStdString(button);
    return static_cast<std::size_t>(services_.alerts.showModally(
        {.style = alert.isWarning ? Alert::warning : Alert::informational,
         .message = QString::fromStdString(alert.message),
         .information = QString::fromStdString(alert.information),
         .buttons = buttons}));
}

}  // namespace sonavault
