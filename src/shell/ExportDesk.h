#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "export/AircheckExport.h"
#include "export/AircheckSchedule.h"
#include "export/ExportFolder.h"
#include "export/ExportHost.h"
#include "export/FrameExporter.h"
#include "export/SelectionExport.h"
#include "review/Selections.h"
#include "shell/ReviewDesk.h"
#include "shell/ShellServices.h"

namespace sonavault {

/// The exporting half of the program: cuts and airchecks by hand and by schedule, with the day they
/// are made of, the dialogs and the station's other programs.
///
/// Thread: main.
class ExportDesk final : private ExportedDay, private ExportHost {
  public:
    /// What an export is told to.
    struct Outlets {
        std::function<void(const std::string&)> statusBarText;
        std::function<void(const AircheckSaved&)> publish;
    };

    /// All, and what `services` name, outlive the desk.
    ExportDesk(ShellServices& services, ReviewDesk& review, const Selections& selections,
               Outlets outlets);

    void exportSelections() { selectionExport_.exportSelections(); }
    void exportAircheck() { aircheckExport_.exportAircheck(); }

    AircheckSchedule& schedule() { return schedule_; }

    /// How far the exports under way have come, all together; nothing when there are none.
    std::optional<double> progress() const;

  private:
    // ExportedDay
    std::optional<std::filesystem::path> loadedFileURL() const override {
        return review_.day().loadedFileURL();
    }
    DaySeconds currentRecordingOffset() const override {
        return review_.day().currentRecordingOffset();
    }
    std::string selectedDate() const override { return review_.days().selectedDate(); }
    std::vector<Selection> selections() const override { return selections_.selections(); }
    std::vector<std::filesystem::path> recordingsFolders() const override;

    // ExportHost
    std::size_t showAlert(const ExportAlert& alert) override;
    AircheckAnswer askForAircheck(const AircheckQuestion& question) override {
        return services_.exportDialogs.askForAircheck(question);
    }
    std::optional<std::filesystem::path> chooseOutput(const SavePanel& panel) override {
        return services_.exportDialogs.chooseOutput(panel);
    }
    void setStatusBarText(const std::string& text) override { outlets_.statusBarText(text); }
    void revealInFileViewer(const std::filesystem::path& file) override {
        services_.revealInFileViewer(file);
    }
    void publishAircheckSaved(const AircheckSaved& saved) override { outlets_.publish(saved); }

    ShellServices& services_;
    ReviewDesk& review_;
    const Selections& selections_;
    const Outlets outlets_;
    ExportFolder folder_;
    FrameExporter exporter_;
    SelectionExport selectionExport_;
    AircheckExport aircheckExport_;
    AircheckSchedule schedule_;
};

}  // namespace sonavault
