#include "shell/OwedRecording.h"

namespace sonavault {

bool OwedRecording::takeTry(bool recording, bool armed, double now) {
    if (recording) lastTry_.reset();
    if (armed) lastTry_ = now;
    if (!lastTry_) return false;
    // A computer that has just started often sets its clock, in either direction.
    const bool due = now - *lastTry_ > kTryEverySec || now < *lastTry_;
    if (due) lastTry_ = now;
    return due;
}

}  // namespace sonavault
