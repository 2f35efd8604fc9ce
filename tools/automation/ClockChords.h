#pragma once

#include <array>

#include "automation/Signal.h"

namespace sonavault::automation {

/// At each second of the wall clock a chord of three tones that tell its hour, minute and second in
/// UTC, and a faint low tone at all other times: a recording of it shows of every moment whether
/// there was air, and of every second which one it is.
///
/// All of it lies below 2,400 Hz, so that it outlasts the lowest bitrate.
class ClockChords final : public Signal {
  public:
    /// How long a chord sounds, from the whole second on.
    static constexpr double kChordSec = 0.25;
    /// The tone between the chords. Units: hertz
    static constexpr double kCarrierHertz = 300;
    /// How far that tone is below a chord, both as root mean square. Units: dB
    static constexpr double kCarrierBelowDb = 14;

    /// What tells one hand of the clock: a tone for each of its values.
    struct Hand {
        double lowest = 0;   ///< the frequency of 0. Units: hertz
        double step = 0;     ///< from one value to the next
        int values = 0;      ///< 24 or 60
        int secondsOfA = 0;  ///< what one of its steps is worth
    };
    static constexpr std::array<Hand, 3> kHands{
        {{500, 10, 60, 1}, {1200, 10, 60, 60}, {1900, 20, 24, 3600}}};

    explicit ClockChords(const SignalSettings& settings);
    void fill(std::span<float> samples, WallTime first) override;

  private:
    double chord(double inSecond) const;
    void tune(long long secondOfDay);

    const int sampleRate_;
    const double chordPeak_;    ///< of each of the three tones
    const double carrierPeak_;  ///< of the tone between
    long long tunedTo_ = -1;
    std::array<double, 3> frequencies_{};
};

}  // namespace sonavault::automation
