#pragma once

#include <filesystem>
#include <string>

#include "platform/DiskFlusher.h"
#include "platform/Result.h"

namespace sonavault {

/// The first line of every marker log.
inline constexpr auto kMarkerLogHeader = "timestamp,event,label,duration\n";

/// `text` as a field of a marker log: in quotes, inner quotes doubled, when it holds a comma, a
/// quote or a line feed.
std::string csvEscape(const std::string& text);

/// "0" for 0, else at most six significant digits.
std::string formatDuration(double seconds);

/// One row with its line feed. Only the label is escaped: the clock time and the type go in as the
/// sender gave them.
std::string markerRow(const std::string& clockTime, const std::string& type,
                      const std::string& label, double durationSec);

/// Begins the day's log with its header when there is no file yet, or a plain one without a byte. A
/// failure is passed over: the
/// append that follows fails with its own words.
void writeCSVHeaderIfNeeded(const std::filesystem::path& log, DiskFlusher& flusher);

/// Adds one row at the end of a log that exists. Errors: the system's words; the rest of the file
/// is untouched.
Outcome appendMarkerRow(const std::filesystem::path& log, const std::string& row,
                        DiskFlusher& flusher);

}  // namespace sonavault
