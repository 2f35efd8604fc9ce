#include "automation/AirPacer.h"

#include <cmath>

namespace sonavault::automation {

AirPacer::AirPacer(int sampleRate, double chunkSec)
    : sampleRate_(sampleRate), chunk_(std::llround(chunkSec * sampleRate)) {}

AirPacer::Due AirPacer::take(double elapsedSec) {
    Due due;
    const std::int64_t owed = frameAt(elapsedSec) - position_;
    if (static_cast<double>(owed) > kMostBehindSec * sampleRate_) {
        due.lost = owed - chunk_;
        position_ += due.lost;
    }
    due.first = position_;
    due.frames = (owed - due.lost) / chunk_ * chunk_;
    if (due.frames < 0) due.frames = 0;
    position_ += due.frames;
    return due;
}

void AirPacer::beginAt(double elapsedSec) {
    position_ = frameAt(elapsedSec);
}

std::int64_t AirPacer::frameAt(double elapsedSec) const {
    return static_cast<std::int64_t>(std::floor(elapsedSec * sampleRate_));
}

}  // namespace sonavault::automation
