#pragma once

#include <QString>
#include <filesystem>
#include <optional>

#include "export/AircheckQuestion.h"
#include "export/ExportHost.h"

namespace sonavault {

/// The questions of an export that take more than a button to answer.
///
/// Thread: main. Each returns when the person has answered; everything that hangs on timers goes on
/// meanwhile.
class ExportDialogs {
  public:
    virtual ~ExportDialogs() = default;

    virtual AircheckAnswer askForAircheck(const AircheckQuestion& question) = 0;

    /// The file that the person chose, whose replacement they have agreed to if it exists; nothing
    /// when they did not.
    virtual std::optional<std::filesystem::path> chooseOutput(const SavePanel& panel) = 0;
};

/// What stands over a save panel. One of the desktop's own has no other place for its message.
QString panelTitle(const SavePanel& panel, bool hasRoomForMessage);

/// Dialogs in front of the window that is in use, the desktop's own where it has them.
class WindowExportDialogs final : public ExportDialogs {
  public:
    AircheckAnswer askForAircheck(const AircheckQuestion& question) override;
    std::optional<std::filesystem::path> chooseOutput(const SavePanel& panel) override;
};

}  // namespace sonavault
