#pragma once

#include <string>

namespace sonavault {

/// What the recorder asks of the program around it.
class RecorderHost {
  public:
    virtual ~RecorderHost() = default;

    /// Whether the day's file is growing. Thread: main.
    virtual void setRecording(bool recording) = 0;

    /// The level of what comes in, also while nothing is recorded. Units: dBFS. Thread: any; must
    /// not wait.
    virtual void setRecordingInputDb(float db) = 0;

    /// One sentence for the person at the desk. Thread: main.
    virtual void setStatusBarText(const std::string& text) = 0;

    /// The loudness of the quarter of a second just recorded, linear. Thread: main.
    virtual void appendLivePeak(float rms, double bucketSec) = 0;

    /// Something the person must act on; returns when it was read. Thread: main.
    virtual void showAlert(const std::string& message, const std::string& information) = 0;
};

}  // namespace sonavault
