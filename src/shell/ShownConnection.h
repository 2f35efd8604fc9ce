#pragma once

#include <optional>

#include "recorder/SVRecorderSourceMode.h"
#include "views/StatusBarView.h"

namespace sonavault {

/// What the status bar says of the automation's link. `source`: nothing while there is no recorder
LinkState shownConnection(std::optional<SVRecorderSourceMode> source, bool isCadenzoConnected);

}  // namespace sonavault
