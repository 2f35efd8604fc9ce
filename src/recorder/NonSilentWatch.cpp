#include "recorder/NonSilentWatch.h"

#include "platform/Format.h"
#include "recorder/WallClockSync.h"

namespace sonavault {

std::optional<std::string> watchVerdict(const NonSilentWatch& watch, WallTime now, float db) {
    const double elapsed = secondsBetween(watch.armedAt, now);
    const double level = db;
    const double threshold = kNonSilentDbFS;
    if (db > kNonSilentDbFS)
        return "Sonavault diag: first_nonsilent_after_mic_start delta=" +
               std::to_string(roundedMilliseconds(elapsed)) +
               "ms (mic_start emit_clock=" + watch.emitClockTime + ", db=" + fixedPoint(level, 1) +
               ")";
    if (elapsed > kNonSilentWatchTimeout)
        return "Sonavault diag: first_nonsilent_after_mic_start TIMEOUT (" +
               shortest(kNonSilentWatchTimeout) +
               "s elapsed; mic_start emit_clock=" + watch.emitClockTime + "; buffer still ≤ " +
               shortest(threshold) + " dBFS)";
    return std::nullopt;
}

}  // namespace sonavault
