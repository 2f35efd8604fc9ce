#include "shell/StationServices.h"

#include <QDesktopServices>
#include <QUrl>

#include "links/SVAudioServer.h"
#include "links/SVMarkerServer.h"
#include "platform/FileViewer.h"

namespace sonavault {
namespace {

constexpr auto kStandardDomain = "com.calderwave.sonavault";
constexpr auto kSharedDomain = "com.calderwave.shared";

Preferences domain(const char* name) {
    return Preferences(Preferences::fileForDomain(name));
}

void revealInFileViewer(const std::filesystem::path& file) {
    showInFileViewer(file, [folder = file.parent_path()] {
        QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(folder.string())));
    });
}

}  // namespace

StationServices::StationServices()
    : preferences_(domain(kStandardDomain)), stationFolder_(homeFolder(), domain(kSharedDomain)) {}

ShellServices StationServices::services() {
    return {
        .recorder = {.clock = clock_,
                     .log = log_,
                     .mainQueue = mainQueue_,
                     .preferences = preferences_,
                     .stationFolder = stationFolder_,
                     .flusher = flusher_,
                     .lineInput = lineInput_,
                     .makeAudioLink = [this] { return std::make_unique<SVAudioServer>(log_); },
                     .makeMarkerLink = [this] { return std::make_unique<SVMarkerServer>(log_); },
                     .makeMainTimer = [] { return std::make_unique<QtMainTimer>(); }},
        .preferences = preferences_,
        .alerts = alerts_,
        .audioOutput = audioOutput_,
        .cacheFolder = cacheFolder(),
        .hub = hub_,
        .exportDialogs = exportDialogs_,
        .revealInFileViewer = revealInFileViewer,
        .helpClicked = [this] { help_.helpClicked(); },
    };
}

}  // namespace sonavault
