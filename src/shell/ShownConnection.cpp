#include "shell/ShownConnection.h"

namespace sonavault {

LinkState shownConnection(std::optional<SVRecorderSourceMode> source, bool isCadenzoConnected) {
    if (source != SVRecorderSourceMode::cadenzoTCP) return LinkState::notInUse;
    return isCadenzoConnected ? LinkState::connected : LinkState::notConnected;
}

}  // namespace sonavault
