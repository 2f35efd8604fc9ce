#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace sonavault {

/// What playback asks of the program around it.
///
/// Thread: main.
class PlaybackHost {
  public:
    virtual ~PlaybackHost() = default;

    /// Shows the playhead where it is now.
    virtual void updatePlayheadVisuals() = 0;

    /// What the play button offers: "▶" to play, "⏸" to stop.
    virtual void setPlayButtonTitle(const std::string& title) = 0;

    /// The audio file that the recorder opened last, also after it stopped; nothing without a
    /// recorder.
    virtual std::optional<std::filesystem::path> lastRecordingURL() const = 0;
};

}  // namespace sonavault
