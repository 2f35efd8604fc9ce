#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace sonavault {

/// What the waveform asks of the program around it. Thread: main.
class PeaksHost {
  public:
    virtual ~PeaksHost() = default;

    /// The audio file that the recorder opened last, also after it stopped; nothing without a
    /// recorder.
    virtual std::optional<std::filesystem::path> lastRecordingURL() const = 0;

    /// The audio file of the day that is shown.
    virtual std::optional<std::filesystem::path> loadedFileURL() const = 0;

    /// One sentence for the person at the desk; empty to take the last one away.
    virtual void setStatusBarText(const std::string& text) = 0;

    /// Has the summary bar drawn afresh, soon.
    virtual void redrawSummaryBar() = 0;
};

}  // namespace sonavault
