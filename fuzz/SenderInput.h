#pragma once

#include <algorithm>
#include <cstdint>

#include "links/WireBytes.h"

namespace sonavault::testing {

/// What a fuzzer's bytes mean for a parser of a sender's stream: the first says how many bytes of
/// split sizes follow, and the rest is what is sent.
struct SenderInput {
    /// Range: `size` greater than 0
    SenderInput(const std::uint8_t* data, std::size_t size) {
        const std::size_t splitCount = std::min<std::size_t>(data[0], size - 1);
        splits.assign(data + 1, data + 1 + splitCount);
        bytes.assign(data + 1 + splitCount, data + size);
    }

    Bytes splits;
    Bytes bytes;
};

}  // namespace sonavault::testing
