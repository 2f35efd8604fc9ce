#pragma once

#include <QColor>
#include <optional>

#include "recorder/SVRecorderSourceMode.h"

namespace sonavault {

/// Grey unless the source is the automation's link, which is green while it is up and red while it
/// is not. `source`: nothing while there is no recorder
QColor connectionDotColour(std::optional<SVRecorderSourceMode> source, bool isCadenzoConnected);

}  // namespace sonavault
