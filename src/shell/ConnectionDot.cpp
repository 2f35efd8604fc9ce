#include "shell/ConnectionDot.h"

#include "views/Theme.h"

namespace sonavault {

QColor connectionDotColour(std::optional<SVRecorderSourceMode> source, bool isCadenzoConnected) {
    if (source != SVRecorderSourceMode::cadenzoTCP) return whiteLevel(0.35);
    return isCadenzoConnected ? kColorSystemGreen : kColorSystemRed;
}

}  // namespace sonavault
