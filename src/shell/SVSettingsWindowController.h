#pragma once

#include <QWidget>
#include <memory>

#include "platform/Preferences.h"

namespace sonavault {

/// The window in which the recording quality is chosen. Made once and kept; closing hides it.
///
/// Thread: main.
class SVSettingsWindowController {
  public:
    /// `preferences`: the program's own domain; outlives this object.
    explicit SVSettingsWindowController(Preferences& preferences);
    ~SVSettingsWindowController();
    SVSettingsWindowController(const SVSettingsWindowController&) = delete;
    SVSettingsWindowController& operator=(const SVSettingsWindowController&) = delete;

    /// Shows the window and brings it to the front.
    void showWindow();

    QWidget& window();
};

}  // namespace sonavault
