#pragma once

#include <string>
#include <vector>

#include "store/RecordingModel.h"

namespace sonavault {

/// Where the reviewing half of the program shows itself.
///
/// Thread: main.
class ReviewScreen {
  public:
    virtual ~ReviewScreen() = default;

    virtual void renderDateList(const std::vector<DailyRecording>& days,
                                const std::string& selectedDate) = 0;

    /// A listed day has another length or number of markers.
    virtual void updateRow(const DailyRecording& row) = 0;

    /// Draws the timeline anew: its markers may be others.
    virtual void renderTimeline() = 0;

    /// What stands in place of the markers of a day without any; hidden when there is no text.
    virtual void showEmptyState(const std::string& text) = 0;

    virtual void redrawSummaryBar() = 0;

    /// Shows the playhead where it is now.
    virtual void updatePlayheadVisuals() = 0;

    /// "▶" to play, "⏸" to stop.
    virtual void setPlayButtonTitle(const std::string& title) = 0;

    virtual void setStatusBarText(const std::string& text) = 0;
};

}  // namespace sonavault
