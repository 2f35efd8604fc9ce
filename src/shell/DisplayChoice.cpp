#include "shell/DisplayChoice.h"

#include <QtGlobal>

namespace sonavault {

std::optional<std::string> platformWithoutDisplay(const ReadVariable& environment) {
#if defined(Q_OS_LINUX) || defined(Q_OS_BSD4)
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        const char* value = environment(name);
        if (value && *value) return std::nullopt;
    }
    return "offscreen";
#else
    (void)environment;
    return std::nullopt;
#endif
}

}  // namespace sonavault
