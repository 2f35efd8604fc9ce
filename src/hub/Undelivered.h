#pragma once

#include <atomic>
#include <cstddef>
#include <memory>

namespace sonavault {

/// What may wait for its callbacks before nothing more is read. Units: bytes of decoded messages
constexpr std::size_t kMostUndeliveredBytes = 8'388'608;

/// The same in callbacks. Whoever runs them may run all that wait in one turn, and has other things
/// to do as well: the display's tick must not wait for a hub that shouts.
constexpr std::size_t kMostUndeliveredCallbacks = 40;

/// How much of what came in still waits for its callbacks to run.
///
/// Thread: any.
class Undelivered {
    struct Totals {
        std::atomic<std::size_t> callbacks{0};
        std::atomic<std::size_t> bytes{0};
    };

  public:
    /// A part of the whole, for as long as it lives. May outlive the count.
    class Share {
      public:
        Share(std::shared_ptr<Totals> totals, std::size_t callbacks, std::size_t bytes)
            : totals_(std::move(totals)), callbacks_(callbacks), bytes_(bytes) {
            totals_->callbacks += callbacks_;
            totals_->bytes += bytes_;
        }
        ~Share() {
            totals_->callbacks -= callbacks_;
            totals_->bytes -= bytes_;
        }
        Share(const Share&) = delete;
        Share& operator=(const Share&) = delete;

      private:
        const std::shared_ptr<Totals> totals_;
        const std::size_t callbacks_;
        const std::size_t bytes_;
    };

    /// Counts a message of that many bytes that waits for that many callbacks.
    std::shared_ptr<const Share> add(std::size_t callbacks, std::size_t bytes) const {
        return std::make_shared<const Share>(totals_, callbacks, bytes);
    }

    bool isTooMuch() const {
        return totals_->callbacks >= kMostUndeliveredCallbacks ||
               totals_->bytes >= kMostUndeliveredBytes;
    }

  private:
    const std::shared_ptr<Totals> totals_ = std::make_shared<Totals>();
};

}  // namespace sonavault
