#include "store/MarkerLogWriter.h"

#include "platform/AppendWhole.h"
#include "platform/AtomicFile.h"
#include "platform/FileQueries.h"
#include "platform/FileStamp.h"
#include "platform/Format.h"

namespace sonavault {

std::string csvEscape(const std::string& text) {
    if (text.find_first_of(",\"\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"') quoted += '"';
        quoted += c;
    }
    return quoted + '"';
}

std::string formatDuration(double seconds) {
    return seconds == 0 ? "0" : sixDigits(seconds);
}

std::string markerRow(const std::string& clockTime, const std::string& type,
                      const std::string& label, double durationSec) {
    return clockTime + "," + type + "," + csvEscape(label) + "," + formatDuration(durationSec) +
           "\n";
}

namespace {

/// As a power cut can leave a file: its name without its content.
bool isEmptyFile(const std::filesystem::path& log) {
    std::error_code unreadable;
    const auto status = std::filesystem::symlink_status(log, unreadable);
    const auto stamp = fileStamp(log);
    return std::filesystem::is_regular_file(status) && stamp && stamp->size == 0;
}

}  // namespace

void writeCSVHeaderIfNeeded(const std::filesystem::path& log, DiskFlusher& flusher) {
    if (!isAbsent(log) && !isEmptyFile(log)) return;
    if (writeFileAtomically(log, kMarkerLogHeader)) flusher.flushSoon(log);
}

Outcome appendMarkerRow(const std::filesystem::path& log, const std::string& row,
                        DiskFlusher& flusher) {
    auto appended = appendWholeLine(log, row);
    if (appended) flusher.flushSoon(log);
    return appended;
}

}  // namespace sonavault
