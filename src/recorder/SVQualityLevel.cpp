#include "recorder/SVQualityLevel.h"

#include <cmath>

#include "platform/Format.h"

namespace sonavault {

SVQualityLevel SVQualityLevel::current(const Preferences& preferences) {
    if (!preferences.text(kQualityLevelKey)) return kDefault;
    // What is stored but is no number counts as 0.
    const double level = std::trunc(preferences.real(kQualityLevelKey).value_or(0));
    if (level < 0 || level >= static_cast<double>(allCases.size())) return kDefault;
    return static_cast<Case>(level);
}

std::string SVQualityLevel::label() const {
    constexpr std::array kLabels{"Crummy", "Pretty Good", "Good", "Really Good", "Crazy Good"};
    return kLabels.at(static_cast<std::size_t>(level_));
}

int SVQualityLevel::bitrateKbps() const {
    constexpr std::array kBitrates{8, 16, 24, 48, 96};
    return kBitrates.at(static_cast<std::size_t>(level_));
}

double SVQualityLevel::oneHourMB() const {
    return bitrateKbps() * 3600 * 0.125 * 0.0009765625;
}

std::string SVQualityLevel::detailString() const {
    const double kHz = sampleRate() / 1000;
    const int decimals = kHz == std::trunc(kHz) ? 0 : 1;
    return fixedPoint(kHz, decimals) + " kHz " + (channels() == 1 ? "mono" : "stereo") + " · " +
           std::to_string(bitrateKbps()) + " kbps MP3";
}

}  // namespace sonavault
