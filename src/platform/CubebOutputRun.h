#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <vector>

#include "platform/AudioOutput.h"

namespace sonavault {

/// What the control thread and the output's streams share: the sound to send out, and the levels of
/// what was sent.
///
/// It outlives the streams that come and go while the sound server fails and returns. Shared,
/// because a device thread that is stuck in a frozen sound server keeps using it.
class CubebOutputRun {
  public:
    using SteadyClock = std::chrono::steady_clock;

    /// The levels of a stream that sends nothing any more count for no longer.
    static constexpr std::chrono::milliseconds kLevelsHoldFor{500};

    /// From now on this is sent out; silence when there is none. A sound that a stream may still be
    /// reading is let go by a later call.
    /// Thread: control.
    void use(std::shared_ptr<AudioOutputSound> sound) {
        wanted_ = sound.get();
        if (sound) kept_.push_back(std::move(sound));
        // In this order: a stream that does not say that it reads a sound will not begin to.
        const AudioOutputSound* const borrowed = borrowed_;
        std::erase_if(kept_, [&](const auto& each) {
            return each.get() != wanted_ && each.get() != borrowed;
        });
    }

    /// What is to be sent out; it stays alive until giveBack().
    /// Thread: the sound system's; waits for nobody.
    AudioOutputSound* borrow() {
        AudioOutputSound* sound = wanted_;
        for (;;) {
            borrowed_ = sound;
            // It may have been let go before anybody could see that it is being read.
            AudioOutputSound* const now = wanted_;
            if (now == sound) return sound;
            sound = now;
        }
    }
    void giveBack() { borrowed_ = nullptr; }

    /// A stream asked for frames, or was just opened.
    /// Thread: the sound system's, or the device thread.
    void asked() { lastAsked_ = SteadyClock::now().time_since_epoch().count(); }

    /// How long ago that was. Thread: any.
    SteadyClock::duration quietFor() const {
        return SteadyClock::now().time_since_epoch() - SteadyClock::duration(lastAsked_);
    }

    /// Thread: the sound system's.
    void setLevels(const AudioOutputLevels& levels) {
        left_ = levels.left;
        right_ = levels.right;
    }

    /// Thread: any.
    AudioOutputLevels levels() const {
        if (quietFor() > kLevelsHoldFor) return {};
        return {left_, right_};
    }

    /// The sound system gave up the present stream.
    std::atomic<bool> failed{false};

  private:
    std::atomic<AudioOutputSound*> wanted_{nullptr};
    std::atomic<AudioOutputSound*> borrowed_{nullptr};
    std::atomic<SteadyClock::rep> lastAsked_{0};
    std::atomic<float> left_{kSilenceDb};
    std::atomic<float> right_{kSilenceDb};

    // Control thread only
    std::vector<std::shared_ptr<AudioOutputSound>> kept_;
};

}  // namespace sonavault
