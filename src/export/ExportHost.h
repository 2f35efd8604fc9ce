#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "export/AircheckQuestion.h"
#include "store/RecordingModel.h"

namespace sonavault {

/// A message that the person has to answer.
struct ExportAlert {
    bool isWarning = false;
    std::string message;               ///< the bold line
    std::string information;           ///< what stands below it
    std::vector<std::string> buttons;  ///< the first is the default

    bool operator==(const ExportAlert&) const = default;
};

/// The question where a cut is to be saved. It offers MP3 files only, and lets the person make
/// folders.
struct SavePanel {
    std::string title;
    std::string message;
    std::filesystem::path directory;  ///< where it opens
    std::string nameField;            ///< the name offered

    bool operator==(const SavePanel&) const = default;
};

/// What is told to the station's other programs of an aircheck that was written.
struct AircheckSaved {
    std::string label;  ///< "manual", or the card's
    std::string mode;   ///< "liveMic" or "voicetracked"
    std::string date;   ///< of the day compiled, of a scheduled one of its run, "yyyy-MM-dd"
    int startHour = 0;
    int endHour = 0;
    std::filesystem::path outputURL;
    std::size_t segmentCount = 0;
    double totalDurationSec = 0;
    std::string source;  ///< "manual" or "scheduled"

    bool operator==(const AircheckSaved&) const = default;
};

/// The day from which is exported.
///
/// Thread: main.
class ExportedDay {
  public:
    virtual ~ExportedDay() = default;

    /// The day under review; nothing when none is loaded.
    virtual std::optional<std::filesystem::path> loadedFileURL() const = 0;

    /// The moment of its first frame.
    virtual DaySeconds currentRecordingOffset() const = 0;

    /// The date on the screen, "yyyy-MM-dd".
    virtual std::string selectedDate() const = 0;

    /// Where days are recorded to and listed from.
    virtual std::vector<std::filesystem::path> recordingsFolders() const = 0;

    /// The reviewer's ranges, in order of creation.
    virtual std::vector<Selection> selections() const = 0;
};

/// What exports ask of the program around them.
///
/// Thread: main.
class ExportHost {
  public:
    virtual ~ExportHost() = default;

    /// Returns when the person has answered, with the index of the button; the last one when the
    /// alert was closed without a choice.
    virtual std::size_t showAlert(const ExportAlert& alert) = 0;

    /// The same for an alert with a choice of hours in it.
    virtual AircheckAnswer askForAircheck(const AircheckQuestion& question) = 0;

    /// The file that the person chose, whose replacement they have agreed to if it exists; nothing
    /// when they did not.
    virtual std::optional<std::filesystem::path> chooseOutput(const SavePanel& panel) = 0;

    virtual void setStatusBarText(const std::string& text) = 0;

    /// Shows the file in the desktop's file viewer.
    virtual void revealInFileViewer(const std::filesystem::path& file) = 0;

    virtual void publishAircheckSaved(const AircheckSaved& saved) = 0;
};

}  // namespace sonavault
