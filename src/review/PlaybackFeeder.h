#pragma once

#include <memory>

#include "platform/AudioOutputSound.h"
#include "platform/LeavableThread.h"
#include "review/PlaybackFile.h"

namespace sonavault {

/// Decodes ahead of the listener, on a thread of its own.
///
/// Thread: all calls on one control thread, which never waits for the disk here, nor for a decoder.
class PlaybackFeeder {
  public:
    PlaybackFeeder();

    /// A thread that hangs in a frozen disk is left behind: it touches nothing but what it shares
    /// in owning.
    ~PlaybackFeeder();
    PlaybackFeeder(const PlaybackFeeder&) = delete;
    PlaybackFeeder& operator=(const PlaybackFeeder&) = delete;

    /// Fills `sound` with what the file holds from frame `from` on, up to its end or the next call,
    /// whichever comes first. A file of one channel fills both sides.
    void feed(std::shared_ptr<const PlaybackSource> source, FrameCount from,
              std::shared_ptr<AudioOutputSound> sound);

    /// Decodes nothing from now on, and soon lets go of the file.
    void stop();

  private:
    class Worker;

    const std::shared_ptr<Worker> worker_;
    LeavableThread thread_;
};

}  // namespace sonavault
