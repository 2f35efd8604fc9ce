#pragma once

#include <memory>
#include <string>

#include "store/Version.h"
#include "support/PrivateSoundServer.h"
#include "system/DeskPlaces.h"
#include "system/PrivateDesktop.h"
#include "system/Station.h"

namespace sonavault::testing {

/// A person at a station's desk: a screen, a sound server, the built program in its window, and
/// hands on the mouse.
class Desk {
  public:
    static inline const std::string kWindow = std::string("Sonavault ") + kSonavaultVersion;
    static constexpr auto kAlert = "Sonavault";

    Desk();

    Station station;
    PrivateSoundServer sound;
    PrivateDesktop desktop;
    std::unique_ptr<ChildProcess> program;

    /// Starts the program, and returns once its window has the keys.
    void open();

    /// Gives the window's content another size.
    void resize(Size content);

    /// Where things are in the window as it was opened, or resized last.
    DeskPlaces places(double actionBarHeight = kSummaryBarHeight) const {
        return DeskPlaces(content_, actionBarHeight);
    }

    /// Opens the menu bar by the mouse and chooses an item of it by the arrows, as menus and items
    /// are as wide and high as the desktop's face makes them. Each by its number from 0, without
    /// separators.
    void chooseFromMenu(std::size_t menu, std::size_t item) const;

    /// A preference as it stands in the file, without its quotes; empty when there is none.
    std::string preference(const std::string& key) const;
    bool eventuallyPrefers(const std::string& key, const std::string& value) const;

    /// The line of the log that comes next and holds `part`.
    bool eventuallySays(const std::string& part);

    /// Answers the question or report on the screen by its first button, or by its last.
    void confirm() const;
    void dismiss() const;

    /// Nothing changes any more in that part of the screen.
    bool eventuallyIsCalm(const Box& part) const;

    /// The playhead's line is seen at that second of the day, to a pixel.
    bool eventuallyShowsPlayheadAt(double second) const;

  private:
    double menuBarHeight_ = 0;
    Box content_;
};

}  // namespace sonavault::testing
