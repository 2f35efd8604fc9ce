#pragma once

#include <chrono>
#include <filesystem>
#include <string>

#include "platform/Result.h"

namespace sonavault {

/// Sees to it that only the copy started last runs.
///
/// The copies find each other through a registry: a folder under the person's runtime folder with
/// one file a copy, named after its process id and holding the moment at which that process
/// started, so that an id which the system has since given to something else is never signalled.
class SingleInstance {
  public:
    /// `program` is the name of the executable file that a copy must be running to be ended.
    explicit SingleInstance(std::filesystem::path registry, std::string program = ownProgram())
        : registry_(std::move(registry)), program_(std::move(program)) {}

    /// $XDG_RUNTIME_DIR/sonavault, or a folder of the person's own under the system's temporary
    /// folder without one.
    static std::filesystem::path defaultRegistry();

    /// The name of the file that this process runs.
    static std::string ownProgram();

    /// Ends every other copy that is entered, one at a time: asks it to end, waits `patience`, then
    /// forces it. Then enters this process. Of copies that are started at the same moment one goes
    /// first, and the next finds it entered. Never fails the launch: what can't be found or ended
    /// is passed over.
    void takeOver(std::chrono::microseconds patience = std::chrono::microseconds(500'000));

    /// Makes a running process known to the copies that come after it. Errors: words.
    Outcome enter(int processId);

  private:
    bool prepareRegistry() const;
    void endOthers(std::chrono::microseconds patience) const;
    void end(int processId, const std::string& startedAt, std::chrono::microseconds patience) const;
    bool isCopy(int processId, const std::string& startedAt) const;

    std::filesystem::path registry_;
    std::string program_;
};

}  // namespace sonavault
