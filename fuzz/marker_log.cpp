#include <cmath>
#include <cstdint>
#include <string_view>

#include "Check.h"
#include "store/MarkerLogReader.h"
#include "store/MarkerLogWriter.h"

namespace {

using namespace sonavault;

using sonavault::testing::check;

std::size_t feedsIn(std::string_view text) {
    std::size_t feeds = 0;
    for (const char c : text) feeds += c == '\n';
    return feeds;
}

/// A label of any bytes comes back from a row by itself, its line feeds apart.
void checkRoundTrip(std::string_view bytes) {
    const std::string label(bytes);
    const auto row = markerRow("08:00:00", "custom", label, 1.5);
    const auto fields = parseCSVRow(std::string_view(row).substr(0, row.size() - 1));
    check(fields.size() == 4);
    check(fields[0] == "08:00:00" && fields[1] == "custom" && fields[2] == label &&
          fields[3] == "1.5");
}

}  // namespace

/// Any bytes are refused or read; what is read is no more than the lines there are, and finite.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    checkRoundTrip(text);
    const auto markers = parseMarkerText(text);
    const auto count = static_cast<std::size_t>(countMarkerRows(text));
    check(count <= feedsIn(text));
    if (!markers) {
        check(count == 0);
        return 0;
    }
    check(markers->size() <= count);
    for (const auto& marker : *markers) {
        check(std::isfinite(marker.timeSec) && std::isfinite(marker.durationSec));
        check(marker.type != "break_start" && marker.type != "vt_pre");
        check(marker.label.size() <= size && marker.label.find('\n') == std::string::npos);
    }
    return 0;
}
