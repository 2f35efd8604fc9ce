#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "platform/Mp3Header.h"

namespace sonavault::testing {

/// How many bytes from the first on are whole MP3 frames, back to back and of one rate and bitrate:
/// all of a recording that nothing has torn.
inline std::size_t bytesOfWholeFrames(const std::string& bytes) {
    const std::span file(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    const auto first = parseMp3Header(file);
    std::size_t at = 0;
    while (at < file.size()) {
        const auto header = parseMp3Header(file.subspan(at));
        if (!header || header->sampleRate != first->sampleRate ||
            header->bitrateKbps != first->bitrateKbps)
            break;
        const auto end = at + static_cast<std::size_t>(header->frameBytes);
        if (end > file.size()) break;
        at = end;
    }
    return at;
}

}  // namespace sonavault::testing
