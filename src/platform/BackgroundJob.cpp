#include "platform/BackgroundJob.h"

#include <chrono>
#include <utility>

#include "platform/ThisThread.h"

namespace sonavault {
namespace {

constexpr std::chrono::seconds kPatience(1);

}  // namespace

BackgroundJob::BackgroundJob(const std::string& name, Work work, Priority priority)
    : thread_(name, [priority, work = std::move(work), stop = stop_.get_token()] {
          if (priority == Priority::yielding) yieldToOthersOnThisThread();
          work(stop);
      }) {}

void BackgroundJob::leave() {
    stop_.request_stop();
    thread_.leave();
}

BackgroundJob::~BackgroundJob() {
    stop_.request_stop();
    thread_.endWithin(kPatience);
}

bool BackgroundJob::hasEnded() const {
    return thread_.hasEnded();
}

}  // namespace sonavault
