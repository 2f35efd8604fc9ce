#pragma once

#include "platform/Clock.h"
#include "platform/CubebAudioInput.h"
#include "platform/CubebOutput.h"
#include "platform/DiskFlusher.h"
#include "platform/Log.h"
#include "platform/Preferences.h"
#include "platform/SerialQueue.h"
#include "shell/HelpLauncher.h"
#include "shell/ShellServices.h"
#include "store/StationFolder.h"

namespace sonavault {

/// The services of a real station: this machine's clock, files, sound and network, for the person
/// who started the program.
///
/// Thread: made and destroyed on the main thread while the application object exists.
class StationServices {
  public:
    StationServices();
    StationServices(const StationServices&) = delete;
    StationServices& operator=(const StationServices&) = delete;

    ShellServices services();

  private:
    SystemClock clock_;
    StandardOutputLog log_;
    MainQueue mainQueue_;
    Preferences preferences_;
    StationFolder stationFolder_;
    DiskFlusher flusher_;
    CubebAudioInput lineInput_;
    CubebOutput audioOutput_;
    MessageBoxAlerts alerts_;
    WindowExportDialogs exportDialogs_;
    HelpLauncher help_{HelpServices::ofThisMachine()};
    SwitchboardHub hub_{mainQueue_};
};

}  // namespace sonavault
