#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "review/Geometry.h"
#include "support/TempFolder.h"
#include "system/ChildProcess.h"
#include "system/PrivateDisplay.h"
#include "system/ScreenPicture.h"

namespace sonavault::testing {

/// A display of the test's own with a window manager, as a desktop has one, and a person's hands on
/// keyboard and mouse: windows that open come to the front and get the keys.
///
/// Errors: std::runtime_error in words.
class PrivateDesktop {
  public:
    PrivateDesktop();

    std::map<std::string, std::string> environment() const { return display_.environment(); }

    // Keyboard

    /// Waits until the window whose whole title is `title` is the one that gets the keys.
    void awaitFront(const std::string& title) const;

    /// Closes the window of that title, which is in front, by the window manager's key; once more
    /// when a busy window manager has not heard of it.
    void closeFront(const std::string& title) const;

    /// Presses chords one after another, as in {"ctrl+Right", "bracketleft"}.
    void press(const std::vector<std::string>& chords) const;

    /// Puts `text` in place of what the field with the focus holds.
    void fillIn(const std::string& text) const;

    /// Chooses from the list that is open the item that begins so.
    void typeOn(const std::string& text) const;

    // Mouse. Places are of the screen.

    void moveTo(Point place) const;
    void click(Point place) const;
    void rightClick(Point place) const;

    /// Presses at `from`, goes to `to` as a hand does, and lets go there.
    void drag(Point from, Point to) const;

    /// Presses, holds still for so long, and lets go.
    void hold(Point place, std::chrono::milliseconds length) const;

    /// Turns the wheel by so many notches, away from the person when above 0.
    void turnWheel(Point place, int notches) const;

    // Windows

    /// Whether a window of that title is there.
    bool hasWindow(const std::string& title) const;
    int windowCount(const std::string& title) const;

    /// What is inside the window's frame. The pointer ends up in its upper left corner.
    Box windowBox(const std::string& title) const;

    /// Brings the window to the front, as a click on its name in a taskbar does.
    void activate(const std::string& title) const;

    /// `inside`: what its frame will hold, as far as the window lets itself be resized.
    void resizeWindow(const std::string& title, Size inside) const;

    // The screen

    ScreenPicture look() const { return ScreenPicture(display_.frameBuffer()); }

    /// Looks again and again until `isSo`; false when it did not come so in time.
    bool awaitSight(const std::function<bool(const ScreenPicture&)>& isSo) const;

    /// What is on the screen now, as a PNG in the folder of pictures that a test run leaves.
    void takePicture(const std::string& name) const;

  private:
    /// Ends once the server has taken all of it.
    void useMouse(const std::vector<std::string>& gestures) const;

    /// What a helper program printed; nothing when it did not end well in time.
    std::optional<std::string> ask(const std::vector<std::string>& command) const;
    void use(const std::vector<std::string>& command) const;

    TempFolder home_;
    PrivateDisplay display_;
    std::unique_ptr<ChildProcess> windowManager_;
};

}  // namespace sonavault::testing
