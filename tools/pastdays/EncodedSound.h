#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace sonavault::pastdays {

/// Compressed sound that needs nothing of what stands before it: it may be put behind any other,
/// any number of times, and be cut behind any of its frames.
class EncodedSound {
  public:
    std::int64_t frames() const { return static_cast<std::int64_t>(ends_.size()); }

    /// Its first `count` frames. Range: up to frames()
    std::span<const std::uint8_t> first(std::int64_t count) const {
        return {bytes_.data(), count == 0 ? 0 : ends_[static_cast<std::size_t>(count) - 1]};
    }

    /// One frame of these.
    std::span<const std::uint8_t> frame(std::int64_t number) const {
        return first(number + 1).subspan(first(number).size());
    }

    void append(std::span<const std::uint8_t> frame) {
        bytes_.insert(bytes_.end(), frame.begin(), frame.end());
        ends_.push_back(bytes_.size());
    }

  private:
    std::vector<std::uint8_t> bytes_;
    std::vector<std::size_t> ends_;
};

}  // namespace sonavault::pastdays
