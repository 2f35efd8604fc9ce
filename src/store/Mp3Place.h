#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "platform/Mp3Header.h"

namespace sonavault {

/// The order in which frames of one kind with and without padding follow each other in a stream of
/// constant bitrate. A frame is a whole number of bytes while the bitrate asks for a fraction more,
/// so each encoder pads a frame whenever the fractions add up to a byte; the order repeats.
struct Mp3Cadence {
    /// Frames of this kind. The cadence begins at a frame that owes nothing.
    explicit Mp3Cadence(const Mp3Header& kind);

    std::int64_t plainBytes = 0;       ///< a frame without padding
    std::int64_t bytes = 0;            ///< all frames of one turn
    std::vector<std::int64_t> before;  ///< for each frame of a turn, the turn's bytes before it

    int frames() const { return static_cast<int>(before.size()); }
    bool isPadded(int frame) const;
};

/// A frame that surely is one, because enough of its kind follow it in their cadence.
struct Mp3Place {
    std::int64_t at = 0;  ///< Units: bytes from the beginning of the file
    Mp3Header kind;       ///< as of a frame without padding
    int turn = 0;         ///< which frame of the cadence it is

    bool operator==(const Mp3Place&) const = default;
};

/// The bytes of a file that it takes to find a place among frames of this kind.
std::int64_t bytesToFindPlace(const Mp3Header& kind);

/// The first frame of the longest stretch of equal frames in `block`, which begins at the byte
/// `begin` of its file. Nothing when too few follow each other to be sure.
std::optional<Mp3Place> findMp3Place(std::span<const std::uint8_t> block, std::int64_t begin);

/// How many frames lie from one place up to a later one when the same stream leads through both.
/// Nothing when it can't: another kind, or another position within its cadence.
std::optional<std::int64_t> framesBetween(const Mp3Place& from, const Mp3Place& to);

}  // namespace sonavault
