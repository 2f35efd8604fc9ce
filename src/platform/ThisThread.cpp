#include "platform/ThisThread.h"

#include <pthread.h>
#include <sys/resource.h>

namespace sonavault {

namespace {

constexpr std::size_t kLongestThreadName = 15;
constexpr int kNice = 10;

}  // namespace

void nameThisThread(const std::string& name) {
    pthread_setname_np(pthread_self(), name.substr(0, kLongestThreadName).c_str());
}

void yieldToOthersOnThisThread() {
    // Of 0 it is the calling thread alone. Never refused: it only gives up what one has.
    ::setpriority(PRIO_PROCESS, 0, kNice);
}

}  // namespace sonavault
