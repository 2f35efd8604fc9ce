#pragma once

#include <chrono>
#include <filesystem>

namespace sonavault {

/// Sees to it that only the copy started last runs.
///
/// The copies find each other through a registry: a folder under the person's runtime folder with one file a copy, named
/// after its process id and holding the moment at which that process started, so that an id which the system has since
/// given to something else is never signalled.
class SingleInstance {
  public:
    explicit SingleInstance(std::filesystem::path registry) : registry_(std::move(registry)) {}

    /// $XDG_RUNTIME_DIR/sonavault, or a folder of the person's own under the system's temporary folder without one.
    static std::filesystem::path defaultRegistry();

    /// Ends every older copy, one at a time: asks it to end, waits `patience`, then forces it. Then enters this process.
    /// Never fails the launch: what can't be found or ended is passed over.
    void takeOver(std::chrono::microseconds patience = std::chrono::microseconds(500'000));

  private:
    std::filesystem::path registry_;
};

}  // namespace sonavault
