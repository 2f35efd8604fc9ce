#pragma once

#include <string>
#include <vector>

#include "store/RecordingModel.h"

namespace sonavault {

/// What the day under review asks of the program around it.
///
/// Thread: main.
class LoadedDayHost {
  public:
    virtual ~LoadedDayHost() = default;

    /// Another day will be heard, or none.
    virtual void stopPlayback() = 0;

    /// Shows the playhead where it is now.
    virtual void updatePlayheadVisuals() = 0;

    virtual void renderDateList() = 0;

    /// Draws lanes and selections anew, for another day or none.
    virtual void renderTimeline() = 0;

    /// Shows a sentence where a day without events has none; hidden when there is no text.
    virtual void showEmptyState(const std::string& text) = 0;

    /// A warning with one button, which returns once the person has read it.
    virtual void showWarning(const std::string& message, const std::string& information) = 0;
};

}  // namespace sonavault
