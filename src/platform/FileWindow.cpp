#include "platform/FileWindow.h"

#include <algorithm>

namespace sonavault {

std::span<const std::uint8_t> FileWindow::at(std::int64_t from, std::size_t count) {
    const auto held = [&] {
        const std::int64_t behind = begin_ + static_cast<std::int64_t>(bytes_.size());
        return from >= begin_ && from + static_cast<std::int64_t>(count) <= behind;
    };
    if (!held()) fill(from);
    const auto offset = static_cast<std::size_t>(from - begin_);
    if (offset >= bytes_.size()) return {};
    return std::span(bytes_).subspan(offset, std::min(count, bytes_.size() - offset));
}

void FileWindow::fill(std::int64_t from) {
    begin_ = from;
    bytes_.resize(kBytes);
    bytes_.resize(file_->readAt(from, bytes_));
}

}  // namespace sonavault
