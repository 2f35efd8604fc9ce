#pragma once

#include <optional>
#include <string>

namespace sonavault {

/// What other programs hear when recording begins, ends or goes on into another day.
struct RecordingTransition {
    std::string state;  ///< "started", "stopped" or "midnight-rolled-over"
    std::string date;   ///< the day that it is about; a recording that ends names its own

    bool operator==(const RecordingTransition&) const = default;
};

/// Finds transitions by looking at the recording and the calendar over and over, so that the
/// recorder need not know who listens.
class RecordingTransitions {
  public:
    /// What has changed since the last look, if anything. What the first look finds is no change.
    /// `today`: "yyyy-MM-dd"
    std::optional<RecordingTransition> look(bool isRecording, const std::string& today);

  private:
    std::string lastState_ = "<uninit>";
    std::string lastDate_;
};

}  // namespace sonavault
