#pragma once

#include "platform/Clock.h"
#include "platform/Log.h"
#include "store/StationFolder.h"

namespace sonavault {

/// Puts the recordings folder right after a crash: an empty legacy file of a past day gets its
/// audio back from the largest temporary left beside it, other temporaries are kept aside under a
/// .bak name, and empty audio files are cleared away. See docs/formats/day-files.md.
///
/// To be called once, before anything writes or reads these files. What is done is told in `log`
/// and nowhere else; what can't be done is left as it is.
///
/// Thread: main.
void recoverOrphanedRecordings(const StationFolder& station, const Clock& clock, Log& log);

}  // namespace sonavault
