#include "hub/LineSplitter.h"

namespace sonavault {
namespace {

// A buffer that one long line has blown up is given back.
constexpr std::size_t kBytesWorthKeeping = 1'048'576;

}  // namespace

void LineSplitter::append(std::string_view bytes) {
    reclaim();
    buffer_ += bytes;
}

std::optional<std::string_view> LineSplitter::next() {
    for (;;) {
        const auto end = buffer_.find('\n', searched_);
        if (end == std::string::npos) {
            searched_ = buffer_.size();
            dropOverlongRest();
            return std::nullopt;
        }
        const auto line = std::string_view(buffer_).substr(taken_, end - taken_);
        const bool wanted = !skipping_ && !line.empty() && line.size() <= mostBytesOfALine_;
        taken_ = searched_ = end + 1;
        skipping_ = false;
        if (wanted) return line;
    }
}

void LineSplitter::clear() {
    std::string().swap(buffer_);
    taken_ = searched_ = 0;
    skipping_ = false;
}

void LineSplitter::dropOverlongRest() {
    if (!skipping_ && pendingByteCount() <= mostBytesOfALine_) return;
    clear();
    skipping_ = true;
}

void LineSplitter::reclaim() {
    if (taken_ == 0) return;
    buffer_.erase(0, taken_);
    searched_ -= taken_;
    taken_ = 0;
    if (buffer_.capacity() > kBytesWorthKeeping && buffer_.size() < kBytesWorthKeeping / 2)
        buffer_.shrink_to_fit();
}

}  // namespace sonavault
