#pragma once

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/AudioInput.h"
#include "platform/CubebCaptureRun.h"

namespace sonavault {

/// Re-blocks what a run of capture brings in and hands it to the tap, on a thread of its own.
///
/// Only whole blocks go out. A block that was begun when the samples dried up is completed with
/// silence, so that what was heard before an outage is not moved behind it.
///
/// Thread: constructed, used and destroyed on the control thread. Destruction waits for a tap call
/// that is under way.
class CubebDelivery {
  public:
    CubebDelivery(std::shared_ptr<CubebCaptureRun> run, int blockFrames, AudioInput::Tap tap);
    ~CubebDelivery();
    CubebDelivery(const CubebDelivery&) = delete;
    CubebDelivery& operator=(const CubebDelivery&) = delete;

    /// When it returns, the tap is not running and will not be called again. Samples are thrown
    /// away from then on.
    void dropTap();

  private:
    // Delivery thread
    void deliverUntilStopped();
    bool takeWhatArrived();
    void completeWithSilence();
    void handOut();
    void separateChannels();

    const std::shared_ptr<CubebCaptureRun> run_;
    const FrameCount blockFrames_;
    std::atomic<bool> stopping_{false};

    // Under mutex_, which is not held while the tap runs
    std::mutex mutex_;
    std::condition_variable tapReturned_;
    std::shared_ptr<const AudioInput::Tap> tap_;
    bool tapRunning_ = false;

    // Delivery thread only
    std::vector<float> block_;
    std::vector<float> separated_;
    std::vector<const float*> planes_;
    FrameCount filled_ = 0;

    std::thread thread_;
};

}  // namespace sonavault
