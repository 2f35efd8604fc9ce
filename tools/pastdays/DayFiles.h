#pragma once

#include <filesystem>
#include <string>

#include "pastdays/DayPlan.h"
#include "platform/Clock.h"
#include "platform/DiskFlusher.h"
#include "platform/Result.h"
#include "store/StationFolder.h"

namespace sonavault::pastdays {

/// Whether that date has a recording already, of today's form or the legacy one.
bool dayExists(const std::filesystem::path& recordings, const std::string& date);

/// The files of a date in that folder.
OutputURLs filesOf(const std::filesystem::path& recordings, const std::string& date);

/// Writes a day as the recorder leaves it: audio, manifest and marker log. `start`: the moment of
/// frame 0. The audio gets its name last, so that a day that is there is there whole.
///
/// Errors: the system's words; what was written then stays under a name that is no day's.
Outcome writeDay(const OutputURLs& files, const DayPlan& plan, const std::vector<Piece>& pieces,
                 WallTime start, DiskFlusher& flusher);

/// The marker log alone. Errors: the system's words.
Outcome writeMarkerLog(const std::filesystem::path& file, const DayPlan& plan);

}  // namespace sonavault::pastdays
