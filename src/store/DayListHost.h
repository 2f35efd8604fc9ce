#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "store/RecordingModel.h"

namespace sonavault {

/// A warning that the person has to answer before anything is done.
struct DayListWarning {
    std::string message;
    std::string information;
    std::vector<std::string> buttons;  ///< the first is the default
};

/// What the list of days asks of the program around it.
///
/// Thread: main.
class DayListHost {
  public:
    virtual ~DayListHost() = default;

    /// Whether today's file is being written; false also while there is no recorder.
    virtual bool isRecording() const = 0;

    /// How much of today is recorded; asked only while isRecording(). Units: seconds
    virtual double currentRecordingDurationSec() const = 0;

    /// The day under review; nothing when none is loaded.
    virtual std::optional<std::filesystem::path> loadedFileURL() const = 0;

    /// Puts a day under review. Whether that worked shows in loadedFileURL(). `silent`: nobody
    /// asked for it, so a failure is not worth an alert.
    virtual void loadRecording(const std::filesystem::path& audio, bool silent) = 0;

    /// Stops playback and clears all that belongs to the day under review.
    virtual void unloadRecording() = 0;

    /// Chooses the day that a launch would choose.
    virtual void loadStartupRecording() = 0;

    /// Reads the marker log of the day under review again.
    virtual void loadMarkersForLoadedRecording() = 0;

    virtual void redrawSummaryBar() = 0;

    /// Shows all rows anew.
    virtual void renderDateList() = 0;

    /// Shows one row's new values in place; the row of that date may not be on the screen.
    virtual void updateRow(const DailyRecording& row) = 0;

    /// Returns when the person has answered. Gives the index of the button; the last one when the
    /// warning was closed without a choice.
    virtual std::size_t ask(const DayListWarning& warning) = 0;
};

}  // namespace sonavault
