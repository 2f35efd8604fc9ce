#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "support/TempFolder.h"
#include "system/ChildProcess.h"
#include "system/PrivateDisplay.h"

namespace sonavault::testing {

/// A display of the test's own with a window manager, as a desktop has one, and a person's hands on
/// keyboard and mouse: windows that open come to the front and get the keys.
///
/// Errors: std::runtime_error in words.
class PrivateDesktop {
  public:
    PrivateDesktop();

    std::map<std::string, std::string> environment() const { return display_.environment(); }

    /// Waits until the window whose whole title is `title` is the one that gets the keys.
    void awaitFront(const std::string& title) const;

    /// Presses chords one after another, as in {"ctrl+Right", "bracketleft"}.
    void press(const std::vector<std::string>& chords) const;

    /// Puts `text` in place of what the field with the focus holds.
    void fillIn(const std::string& text) const;

    /// Whether a window of that title is there.
    bool hasWindow(const std::string& title) const;

    /// What is on the screen now, as a PNG.
    void takePicture(const std::filesystem::path& file) const;

  private:
    /// What a helper program printed; nothing when it did not end well in time.
    std::optional<std::string> ask(const std::vector<std::string>& command) const;
    void use(const std::vector<std::string>& command) const;

    TempFolder home_;
    PrivateDisplay display_;
    std::unique_ptr<ChildProcess> windowManager_;
};

}  // namespace sonavault::testing
