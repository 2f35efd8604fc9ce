#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "support/TempFolder.h"
#include "system/ChildProcess.h"

namespace sonavault::testing {

/// An X server of the test's own, with one screen and no window manager, and a pair of hands on it.
///
/// Errors: std::runtime_error in words.
class PrivateDisplay {
  public:
    PrivateDisplay();

    /// What a program needs to open its window here.
    std::map<std::string, std::string> environment() const;

    /// The file that holds what the screen shows, kept up by the server.
    std::filesystem::path frameBuffer() const { return memory_ / "Xvfb_screen0"; }

    /// Presses a chord, as "ctrl+r", in the visible window whose title contains `title`, waiting
    /// for the window first.
    void press(const std::string& chord, const std::string& title) const;

  private:
    TempFolder memory_;
    std::unique_ptr<ChildProcess> server_;
    std::string name_;
};

}  // namespace sonavault::testing
