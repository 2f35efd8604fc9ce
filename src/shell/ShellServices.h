#pragma once

#include <filesystem>
#include <functional>

#include "platform/Preferences.h"
#include "recorder/SVRecorder.h"
#include "shell/Alerts.h"

namespace sonavault {

/// The preferences that the shell keeps, in the standard domain.
inline constexpr auto kSourceModeKey = "SonavaultSourceMode";
inline constexpr auto kAutoResumeOnLaunchKey = "SonavaultAutoResumeOnLaunch";

/// Whether a launch begins recording; not unless the person asked for it.
inline bool autoResumesOnLaunch(const Preferences& preferences) {
    return preferences.boolean(kAutoResumeOnLaunchKey).value_or(false);
}

/// What the program works with: the machine's own in real life, a test's otherwise. All of it
/// outlives the program's other objects.
struct ShellServices {
    RecorderServices recorder;
    Preferences& preferences;  ///< the standard domain
    Alerts& alerts;

    /// Hands a file to the program with which the person's desktop opens it; false when there is
    /// none.
    std::function<bool(const std::filesystem::path&)> openFile;
};

}  // namespace sonavault
