#include "store/MarkerLogWriter.h"

#include <fstream>

#include "platform/AppendWhole.h"
#include "platform/AtomicFile.h"
#include "platform/FileQueries.h"
#include "platform/Format.h"

namespace sonavault {

namespace {

bool endsInMidLine(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary | std::ios::ate);
    if (!in || in.tellg() <= 0) return false;
    in.seekg(-1, std::ios::end);
    return in.get() != '\n';
}

}  // namespace

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

void writeCSVHeaderIfNeeded(const std::filesystem::path& log, DiskFlusher& flusher) {
    if (pathExists(log)) return;
    if (writeFileAtomically(log, kMarkerLogHeader)) flusher.flushSoon(log);
}

Outcome appendMarkerRow(const std::filesystem::path& log, const std::string& row,
                        DiskFlusher& flusher) {
    // A process that is killed can leave half a row. What follows begins a line of its own.
    auto appended = appendWhole(log, endsInMidLine(log) ? '\n' + row : row);
    if (appended) flusher.flushSoon(log);
    return appended;
}

}  // namespace sonavault
