#pragma once

#include <array>
#include <random>

namespace sonavault::automation {

/// Something that sounds like a person talking, in no language: a pulse train through three moving
/// formants, in syllables with a hiss before some of them, in phrases with a pause after each.
///
/// Its root mean square while it talks is about 1.
class Voice {
  public:
    Voice(int sampleRate, unsigned seed);
    float next();

  private:
    /// One formant: a resonance that rings at its frequency.
    struct Resonance {
        double a1 = 0;
        double a2 = 0;
        double gain = 0;
        double y1 = 0;
        double y2 = 0;
        void tune(double frequency, double bandwidth, int sampleRate);
        double pass(double x);
    };

    void beginPhrase();
    void beginSyllable();
    void moveFormants();
    float envelope() const;
    double pulse();

    const int sampleRate_;
    std::mt19937 random_;
    std::array<Resonance, 3> formants_;
    std::array<double, 3> frequencies_{500, 1500, 2500};
    std::array<double, 3> targets_{500, 1500, 2500};
    double pitch_ = 120;
    double phase_ = 0;
    int syllablesLeft_ = 0;
    int pauseLeft_ = 0;
    int syllableLength_ = 1;
    int syllablePosition_ = 1;
    int hissLength_ = 0;
};

}  // namespace sonavault::automation
