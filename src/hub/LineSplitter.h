#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace sonavault {

/// Cuts a stream of bytes into lines at each line feed, however the stream was cut into pieces on
/// its way.
class LineSplitter {
  public:
    /// Beyond this a line is thrown away up to its line feed, so that a sender that never ends a
    /// line can't fill the memory. Far above any line that means something. Units: bytes
    static constexpr std::size_t kMostBytesOfALine = 8'388'608;

    explicit LineSplitter(std::size_t mostBytesOfALine = kMostBytesOfALine)
        : mostBytesOfALine_(mostBytesOfALine) {}

    void append(std::string_view bytes);

    /// The next whole line, without its line feed and never empty; nothing until one is complete.
    /// Valid until the next call of any other member.
    std::optional<std::string_view> next();

    /// Forgets everything, half a line included.
    void clear();

    std::size_t pendingByteCount() const { return buffer_.size() - taken_; }

  private:
    void dropOverlongRest();
    void reclaim();

    const std::size_t mostBytesOfALine_;
    std::string buffer_;
    std::size_t taken_ = 0;     // the bytes ahead of this have been given out
    std::size_t searched_ = 0;  // no line feed between taken_ and this
    bool skipping_ = false;     // within a line that is too long
};

}  // namespace sonavault
