#pragma once

#include <array>
#include <string>

#include "platform/Preferences.h"

namespace sonavault {

/// The preference that holds the chosen level's raw value.
inline constexpr auto kQualityLevelKey = "SVQualityLevel";

/// How much disk a day of air is worth, on a scale of five. All levels record mono at one rate;
/// only the bit rate differs.
class SVQualityLevel {
  public:
    enum Case { crummy, prettyGood, good, reallyGood, crazyGood };

    static constexpr Case kDefault = good;
    static constexpr std::array<Case, 5> allCases{crummy, prettyGood, good, reallyGood, crazyGood};

    constexpr SVQualityLevel(Case level) : level_(level) {}  // NOLINT: meant to convert

    /// The level in force: the stored one, or the default without a stored value or with one off
    /// the scale.
    static SVQualityLevel current(const Preferences& preferences);

    constexpr int rawValue() const { return level_; }
    std::string label() const;
    constexpr double sampleRate() const {
        return 22050;
    }  ///< what the encoder is given. Units: hertz
    constexpr int channels() const { return 1; }
    int bitrateKbps() const;

    /// What an hour takes on disk. Units: megabytes of 1024 kilobytes
    double oneHourMB() const;

    /// "22.1 kHz mono · 48 kbps MP3"
    std::string detailString() const;

    constexpr bool operator==(const SVQualityLevel&) const = default;

  private:
    Case level_;
};

}  // namespace sonavault
