#pragma once

#include <array>
#include <random>

namespace sonavault::automation {

/// Something that sounds like music: chords on a steady beat, a bass below them, a drum and a
/// shaker.
///
/// Its root mean square is about 1.
class Music {
  public:
    Music(int sampleRate, unsigned seed);
    float next();

  private:
    void beginBeat();
    double chord();
    double drums();

    const int sampleRate_;
    std::mt19937 random_;
    const int beatLength_;
    int beat_ = -1;
    int position_ = 0;
    int key_ = 0;
    std::array<double, 4> frequencies_{};
    std::array<double, 4> phases_{};
    double drumPhase_ = 0;
};

}  // namespace sonavault::automation
