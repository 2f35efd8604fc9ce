#pragma once

#include <atomic>
#include <functional>

#include "platform/SampleMath.h"
#include "recorder/RecorderHost.h"

namespace sonavault {

/// What the recorder tells the window, kept where any thread may write it.
///
/// Shared: the recorder holds it weakly, and a source's thread may be using it at the moment the
/// window goes.
class RecorderDesk final : public RecorderHost {
  public:
    // Set before the recorder knows the desk.
    std::function<void(const std::string& text)> onStatusText;
    std::function<void(const std::string& message, const std::string& information)> onAlert;
    std::function<void(float rms, double bucketSec)> onLivePeak;
    std::function<void()> onRecordingBegan;

    bool isRecording() const { return isRecording_; }
    float recordingInputDb() const { return recordingInputDb_.load(std::memory_order_relaxed); }

    void setRecording(bool recording) override {
        isRecording_ = recording;
        if (recording) onRecordingBegan();
    }
    void setRecordingInputDb(float db) override {
        recordingInputDb_.store(db, std::memory_order_relaxed);
    }
    void setStatusBarText(const std::string& text) override { onStatusText(text); }
    void appendLivePeak(float rms, double bucketSec) override { onLivePeak(rms, bucketSec); }
    void showAlert(const std::string& message, const std::string& information) override {
        onAlert(message, information);
    }

  private:
    bool isRecording_ = false;  // main thread
    std::atomic<float> recordingInputDb_{kSilenceDb};
};

}  // namespace sonavault
