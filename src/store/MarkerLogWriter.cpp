#include "store/MarkerLogWriter.h"

#include "platform/AppendFile.h"
#include "platform/AtomicFile.h"
#include "platform/FileQueries.h"
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

void writeCSVHeaderIfNeeded(const std::filesystem::path& log, DiskFlusher& flusher) {
    if (pathExists(log)) return;
    if (writeFileAtomically(log, kMarkerLogHeader)) flusher.flushSoon(log);
}

Outcome appendMarkerRow(const std::filesystem::path& log, const std::string& row,
                        DiskFlusher& flusher) {
    std::error_code error;
    const auto sizeBefore = std::filesystem::file_size(log, error);
    if (error) return Outcome::failure(error.message());
    auto file = AppendFile::open(log, flusher);
    if (!file) return Outcome::failure(file.error());
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(row.data());
    if (file.value()->write({bytes, row.size()})) return Done{};
    // The log grows by whole lines: half a row would take the next one with it.
    std::filesystem::resize_file(log, sizeBefore, error);
    return Outcome::failure("the row could not be written whole");
}

}  // namespace sonavault
