#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <vector>

#include "platform/AudioInput.h"

namespace sonavault::testing {

/// A tap that keeps what it is given and lets the test wait for it.
///
/// Thread: the tap's and the test's.
class Listener {
  public:
    using Clock = std::chrono::steady_clock;

    struct Block {
        AudioFormat format;
        FrameCount frames;
        std::vector<std::vector<float>> channels;
        Clock::time_point heardAt;
    };

    AudioInput::Tap tap() {
        return [this](const AudioBufferView& buffer) { take(buffer); };
    }

    /// Whether `condition` came true of all blocks so far within `patience`.
    bool await(const std::function<bool(const std::vector<Block>&)>& condition,
               std::chrono::milliseconds patience) {
        std::unique_lock lock(mutex_);
        return came_.wait_for(lock, patience, [&] { return condition(blocks_); });
    }

    bool awaitBlocks(std::size_t count, std::chrono::milliseconds patience) {
        return await([count](const auto& blocks) { return blocks.size() >= count; }, patience);
    }

    std::vector<Block> blocks() const {
        std::scoped_lock lock(mutex_);
        return blocks_;
    }

    void clear() {
        std::scoped_lock lock(mutex_);
        blocks_.clear();
    }

  private:
    void take(const AudioBufferView& buffer) {
        Block block{buffer.format, buffer.frames, {}, Clock::now()};
        const auto frames = static_cast<std::size_t>(buffer.frames);
        const auto channels = static_cast<std::size_t>(buffer.format.channels);
        block.channels.assign(channels, std::vector<float>(frames));
        for (std::size_t c = 0; c < channels; ++c)
            for (std::size_t i = 0; i < frames; ++i)
                block.channels[c][i] = buffer.format.interleaved
                                           ? buffer.planes[0][i * channels + c]
                                           : buffer.planes[c][i];
        std::scoped_lock lock(mutex_);
        blocks_.push_back(std::move(block));
        came_.notify_all();
    }

    mutable std::mutex mutex_;
    std::condition_variable came_;
    std::vector<Block> blocks_;
};

}  // namespace sonavault::testing
