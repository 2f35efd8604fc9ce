#pragma once

#include <QStringList>
#include <optional>
#include <string>

#include "automation/AirPacer.h"
#include "automation/AirPlan.h"
#include "automation/AirWire.h"
#include "automation/MarkerSender.h"
#include "automation/Signal.h"
#include "platform/Result.h"

namespace sonavault::automation {

/// What the program was asked to do.
struct Options {
    std::string host = "127.0.0.1";
    std::uint16_t port = 9171;
    AirFormat format;
    double chunkSec = AirPacer::kChunkSec;  ///< what is sent at once. Units: seconds
    SignalSettings signal;
    AirPlan plan;
    std::optional<double> durationSec;  ///< absent: until it is told to end
    bool once = false;                  ///< a lost audio connection ends the program
    MarkerOptions markers;
    bool wantsHelp = false;  ///< nothing else matters then
};

/// `arguments` with the program's name first. Errors: what is wrong with them, in words.
Result<Options> parseOptions(const QStringList& arguments);

/// What --help prints.
std::string helpText();

}  // namespace sonavault::automation
