#include "platform/BrokenPipes.h"

#include <csignal>

namespace sonavault {

void ignoreBrokenPipes() {
    std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace sonavault
