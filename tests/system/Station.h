#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "support/TempFolder.h"
#include "system/ChildProcess.h"

namespace sonavault::testing {

/// A station of the test's own: a home, preferences, and the built program and its demonstration
/// automation in it.
///
/// Its local time is about noon whenever the test runs, so that no test meets midnight by chance.
class Station {
  public:
    Station();

    void choose(const std::string& key, const std::string& value);
    void useLineInput() { choose("SonavaultSourceMode", "line_input"); }
    void useLink() { choose("SonavaultSourceMode", "cadenzo_tcp"); }
    void resumeOnLaunch() { choose("SonavaultAutoResumeOnLaunch", "true"); }
    void chooseQuality(int level) { choose("SVQualityLevel", std::to_string(level)); }

    /// Also for every program started from now on.
    void setEnvironment(const std::map<std::string, std::string>& more);

    std::unique_ptr<ChildProcess> start(
        ChildProcess::Output output = ChildProcess::Output::read) const;

    /// The automation, sending to the program's audio link.
    std::unique_ptr<ChildProcess> startAutomation(const std::vector<std::string>& options) const;

    /// The demonstration hub, where the program looks for one.
    std::unique_ptr<ChildProcess> startHub() const;

    std::filesystem::path home() const { return temp_ / "home"; }
    std::filesystem::path audioFolder() const { return home() / "Calderwave/Station/Logs/Audio"; }
    std::filesystem::path dayFile(const std::string& suffix) const;

  private:
    TempFolder temp_;
    std::map<std::string, std::string> preferences_;
    std::map<std::string, std::string> environment_;
    std::string date_;
};

/// What a line says behind `label`, as a number: number("… drift=-3ms", "drift=") is -3.
double number(const std::string& line, const std::string& label);

/// Seconds from one moment to another.
double seconds(std::chrono::system_clock::time_point from,
               std::chrono::system_clock::time_point to);

}  // namespace sonavault::testing
