#pragma once

#include <cstdint>

namespace sonavault {

/// The ports on which the automation delivers the station's air and the events of its day.
inline constexpr std::uint16_t kAudioPort = 9171;
inline constexpr std::uint16_t kMarkerPort = 9172;

}  // namespace sonavault
