#pragma once

#include <optional>
#include <string>

#include "store/RecordingModel.h"

namespace sonavault {

/// What the selections ask of the program around them.
///
/// Thread: main.
class SelectionsHost {
  public:
    virtual ~SelectionsHost() = default;

    /// The playhead's present place.
    virtual DaySeconds playheadSec() const = 0;

    virtual void redrawSummaryBar() = 0;

    /// The places at which the pointer shows that an edge can be dragged have moved.
    virtual void rebuildSummaryBarCursors() = 0;

    /// The report of what is selected, and whether there is anything to export.
    virtual void showSelectionInfo(const std::string& text, bool canExport) = 0;

    /// Shows the button that exports the selections; without a title it is hidden.
    virtual void showExportSelectionsButton(const std::optional<std::string>& title) = 0;
};

}  // namespace sonavault
