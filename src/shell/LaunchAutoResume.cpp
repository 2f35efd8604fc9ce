#include "shell/LaunchAutoResume.h"

namespace sonavault {

void LaunchAutoResume::askedAtLaunch(SVRecorderSourceMode source, bool recording, double now) {
    if (source == SVRecorderSourceMode::lineInput && !recording) lastTry_ = now;
}

bool LaunchAutoResume::isTryDue(bool recording, double now) {
    if (recording) lastTry_.reset();
    if (!lastTry_) return false;
    // A computer that has just started often sets its clock, in either direction.
    const bool due = now - *lastTry_ > kTryEverySec || now < *lastTry_;
    if (due) lastTry_ = now;
    return due;
}

}  // namespace sonavault
