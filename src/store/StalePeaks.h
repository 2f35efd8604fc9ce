#pragma once

#include "store/StationFolder.h"

namespace sonavault {

/// Removes the waveforms of days that went on growing after they were measured, as a process leaves
/// them that ends while it records. They would be taken for all of the day.
///
/// To be called once at launch, before a day is loaded: a waveform is not compared with its audio
/// when it is taken, for a finished day doesn't change.
///
/// Thread: main. What can't be looked at or removed is left as it is.
void removeStalePeaks(const StationFolder& station);

}  // namespace sonavault
