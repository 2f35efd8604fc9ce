#pragma once

#include <atomic>
#include <cstddef>
#include <memory>

namespace sonavault {

/// How much of what came in still waits for its callbacks to run.
///
/// Thread: any.
class UndeliveredBytes {
  public:
    /// A part of the whole, for as long as it lives. May outlive the count.
    class Share {
      public:
        Share(std::shared_ptr<std::atomic<std::size_t>> total, std::size_t bytes)
            : total_(std::move(total)), bytes_(bytes) {
            *total_ += bytes_;
        }
        ~Share() { *total_ -= bytes_; }
        Share(const Share&) = delete;
        Share& operator=(const Share&) = delete;

      private:
        const std::shared_ptr<std::atomic<std::size_t>> total_;
        const std::size_t bytes_;
    };

    std::shared_ptr<const Share> add(std::size_t bytes) const {
        return std::make_shared<const Share>(total_, bytes);
    }

    std::size_t total() const { return *total_; }

  private:
    const std::shared_ptr<std::atomic<std::size_t>> total_ =
        std::make_shared<std::atomic<std::size_t>>(0);
};

}  // namespace sonavault
