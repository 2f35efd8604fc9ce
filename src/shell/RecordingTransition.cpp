#include "shell/RecordingTransition.h"

#include <utility>

namespace sonavault {

namespace {

constexpr auto kUninitialised = "<uninit>";
constexpr auto kStarted = "started";
constexpr auto kStopped = "stopped";

}  // namespace

std::optional<RecordingTransition> RecordingTransitions::look(bool isRecording,
                                                              const std::string& today) {
    if (lastState_ == kUninitialised) {
        lastState_ = isRecording ? kStarted : kStopped;
        lastDate_ = today;
        return std::nullopt;
    }
    if (isRecording && lastState_ != kStarted) {
        lastState_ = kStarted;
        lastDate_ = today;
        return RecordingTransition{kStarted, today};
    }
    if (!isRecording && lastState_ == kStarted) {
        lastState_ = kStopped;
        return RecordingTransition{kStopped, std::exchange(lastDate_, today)};
    }
    if (isRecording && !lastDate_.empty() && lastDate_ != today) {
        lastDate_ = today;
        return RecordingTransition{"midnight-rolled-over", today};
    }
    return std::nullopt;
}

}  // namespace sonavault
