#pragma once

#include <algorithm>
#include <filesystem>
#include <functional>

#include "platform/AudioOutput.h"
#include "platform/Preferences.h"
#include "recorder/SVRecorder.h"
#include "review/TimelineRows.h"
#include "shell/Alerts.h"
#include "shell/ExportDialogs.h"
#include "shell/StationHub.h"

namespace sonavault {

/// The preferences that the shell keeps, in the standard domain.
inline constexpr auto kSourceModeKey = "SonavaultSourceMode";
inline constexpr auto kAutoResumeOnLaunchKey = "SonavaultAutoResumeOnLaunch";
inline constexpr auto kActionBarHeightKey = "SonavaultActionBarHeight";

/// Whether a launch begins recording; not unless the person asked for it.
inline bool autoResumesOnLaunch(const Preferences& preferences) {
    return preferences.boolean(kAutoResumeOnLaunchKey).value_or(false);
}

/// The height that the person last gave the action bar, kept between 50 and 180; 50 when they never
/// did. Units: points
inline double restoredActionBarHeight(const Preferences& preferences) {
    const double stored = preferences.real(kActionBarHeightKey).value_or(0);
    return stored > 0 ? std::clamp(stored, kSummaryBarHeight, kSummaryBarHeightMax)
                      : kSummaryBarHeight;
}

/// What the program works with: the machine's own in real life, a test's otherwise. All of it
/// outlives the program's other objects.
struct ShellServices {
    RecorderServices recorder;
    Preferences& preferences;  ///< the standard domain
    Alerts& alerts;
    AudioOutput& audioOutput;
    std::filesystem::path cacheFolder;  ///< for what can be made anew
    StationHub& hub;

    ExportDialogs& exportDialogs;

    /// Shows a file in the desktop's file viewer.
    std::function<void(const std::filesystem::path&)> revealInFileViewer;

    /// The person asked for help.
    std::function<void()> helpClicked;
};

}  // namespace sonavault
