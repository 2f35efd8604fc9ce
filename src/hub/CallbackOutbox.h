#pragma once

#include <atomic>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>

#include "platform/Executor.h"

namespace sonavault {

/// What may wait for its callbacks before nothing more is read. Units: bytes of decoded messages
constexpr std::size_t kMostUndeliveredBytes = 8'388'608;

/// How many callbacks may lie in the callers' queues. Whoever runs them may run all that wait in
/// one turn, and has other things to do as well: the display's tick must not wait for a hub that
/// shouts.
constexpr std::size_t kMostUndeliveredCallbacks = 40;

/// What a callback that waits takes by itself, besides the message that it will see. Units: bytes
constexpr std::size_t kBytesOfACallback = 256;

/// The callbacks on their way to the callers' queues: all in the order in which they came, and only
/// a few at a time.
///
/// Thread: the network queue. The callbacks may run on any, and may outlive this.
class CallbackOutbox {
    struct Totals {
        std::atomic<std::size_t> callbacks{0};
        std::atomic<std::size_t> bytes{0};
    };

  public:
    /// So many bytes that are not delivered yet, for as long as it lives.
    class Load {
      public:
        Load(std::shared_ptr<Totals> totals, std::size_t bytes)
            : totals_(std::move(totals)), bytes_(bytes) {
            totals_->bytes += bytes_;
        }
        ~Load() { totals_->bytes -= bytes_; }
        Load(const Load&) = delete;
        Load& operator=(const Load&) = delete;

      private:
        const std::shared_ptr<Totals> totals_;
        const std::size_t bytes_;
    };

    /// Counts what the callbacks of a message hold.
    std::shared_ptr<const Load> add(std::size_t bytes) const {
        return std::make_shared<const Load>(totals_, bytes);
    }

    /// `queue` outlives the outbox, or its next clear().
    void post(Executor& queue, std::function<void()> callback);

    /// Hands over as many as have room now.
    void handOver();

    /// Forgets what was not handed over.
    void clear() { waiting_.clear(); }

    bool isEmpty() const { return waiting_.empty(); }

    /// Nothing more is to be read until callbacks have run.
    bool isFull() const { return totals_->bytes >= kMostUndeliveredBytes; }

  private:
    struct Waiting {
        Executor* queue;
        std::function<void()> callback;
        std::shared_ptr<const Load> load;
    };

    std::shared_ptr<const void> takeTurn() const;

    const std::shared_ptr<Totals> totals_ = std::make_shared<Totals>();
    std::deque<Waiting> waiting_;
};

}  // namespace sonavault
