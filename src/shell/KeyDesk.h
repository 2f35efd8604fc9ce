#pragma once

#include <functional>

#include "review/KeyCommands.h"
#include "shell/ExportDesk.h"
#include "shell/TimelineDesk.h"

namespace sonavault {

/// Takes each key's command to what carries it out.
///
/// Thread: main.
class KeyDesk final : public KeyCommandHost {
  public:
    /// `timeline` and `exports` outlive the desk.
    KeyDesk(TimelineDesk& timeline, ExportDesk& exports, std::function<void()> toggleRecording)
        : timeline_(timeline), exports_(exports), toggleRecording_(std::move(toggleRecording)) {}

    void togglePlayback() override { timeline_.review().playback().togglePlayback(); }
    void jumpToMarker(int direction) override { timeline_.navigation().jumpToMarker(direction); }
    void jumpRelative(double seconds) override { timeline_.navigation().jumpRelative(seconds); }
    void jumpRelativeHour(int delta) override { timeline_.navigation().jumpRelativeHour(delta); }
    void markSelectionStart() override { timeline_.selections().markSelectionStart(); }
    void markSelectionEnd() override { timeline_.selections().markSelectionEnd(); }
    void undoLastChange() override { timeline_.selections().undoLastChange(); }
    void clearAllSelections() override { timeline_.selections().clearAllSelections(); }
    void exportSelections() override { exports_.exportSelections(); }
    void exportAircheck() override { exports_.exportAircheck(); }
    void toggleRecording() override { toggleRecording_(); }

  private:
    TimelineDesk& timeline_;
    ExportDesk& exports_;
    const std::function<void()> toggleRecording_;
};

}  // namespace sonavault
