#include "store/MarkerLogReader.h"

#include <QUtf8StringView>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <utility>

#include "platform/ReadFile.h"

namespace sonavault {

namespace {

constexpr std::size_t kNeededColumns = 3;

/// Gives `visit` each line that is not empty, up to a line feed or the end.
template <class Visit>
void forEachLine(std::string_view text, Visit visit) {
    while (!text.empty()) {
        const auto end = text.find('\n');
        if (end != 0) visit(text.substr(0, end));
        if (end == std::string_view::npos) return;
        text.remove_prefix(end + 1);
    }
}

/// All of `text` as a number, in digits that no locale changes; a plus sign is taken.
template <class Number>
std::optional<Number> wholeNumberIn(std::string_view text) {
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return value;
}

/// What is no finite number would spread through everything that is computed from the marker.
double durationIn(std::string_view text) {
    const auto seconds = wholeNumberIn<double>(text);
    return seconds && std::isfinite(*seconds) ? *seconds : 0;
}

/// What the timeline calls an event that the log calls `event`.
std::string modelType(std::string event) {
    if (event == "break_start" || event == "break_end") return "break";
    if (event == "vt_pre") return "vt-pre";
    if (event == "vt_post") return "vt-post";
    return event;
}

std::optional<Marker> markerIn(std::string_view line) {
    auto columns = parseCSVRow(line);
    if (columns.size() < kNeededColumns) return std::nullopt;
    const auto timeSec = markerTimeSec(columns[0]);
    if (!timeSec) return std::nullopt;
    return Marker{.type = modelType(std::move(columns[1])),
                  .timeSec = *timeSec,
                  .label = std::move(columns[2]),
                  .durationSec = columns.size() > kNeededColumns ? durationIn(columns[3]) : 0};
}

bool isUtf8(std::string_view text) {
    return QUtf8StringView(text.data(), static_cast<qsizetype>(text.size())).isValidUtf8();
}

}  // namespace

std::vector<std::string> parseCSVRow(std::string_view line) {
    std::vector<std::string> fields(1);
    bool inQuotes = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        std::string& field = fields.back();
        if (inQuotes && c == '"') {
            inQuotes = i + 1 < line.size() && line[i + 1] == '"';
            if (!inQuotes) continue;
            field += c;
            ++i;
        } else if (!inQuotes && c == ',') {
            fields.emplace_back();
        } else if (!inQuotes && c == '"' && field.empty()) {
            inQuotes = true;
        } else {
            field += c;
        }
    }
    return fields;
}

std::optional<double> markerTimeSec(std::string_view timestamp) {
    constexpr int kPieces = 3;
    double seconds = 0;
    int pieces = 0;
    for (bool more = true; more;) {
        const auto colon = timestamp.find(':');
        // As a double, so that hours beyond any clock can't overflow.
        if (const auto piece = wholeNumberIn<std::int64_t>(timestamp.substr(0, colon))) {
            seconds = seconds * 60 + static_cast<double>(*piece);
            ++pieces;
        }
        more = colon != std::string_view::npos;
        if (more) timestamp.remove_prefix(colon + 1);
    }
    if (pieces != kPieces) return std::nullopt;
    return seconds;
}

std::optional<std::string> readMarkerLogText(const std::filesystem::path& log) {
    auto bytes = readWholeFile(log);
    if (!bytes || !isUtf8(bytes.value())) return std::nullopt;
    return std::move(bytes.value());
}

void forEachMarkerRow(std::string_view text, const std::function<void(std::string_view)>& visit) {
    bool isHeader = true;
    forEachLine(text, [&](std::string_view line) {
        if (!isHeader) visit(line);
        isHeader = false;
    });
}

std::optional<std::vector<Marker>> parseMarkerText(std::string_view text) {
    if (!isUtf8(text)) return std::nullopt;
    std::vector<Marker> markers;
    forEachMarkerRow(text, [&](std::string_view row) {
        if (auto marker = markerIn(row)) markers.push_back(std::move(*marker));
    });
    return markers;
}

std::optional<std::vector<Marker>> parseMarkerCSV(const std::filesystem::path& log) {
    const auto text = readMarkerLogText(log);
    return text ? parseMarkerText(*text) : std::nullopt;
}

int countMarkerRows(std::string_view text) {
    if (!isUtf8(text)) return 0;
    int lines = 0;
    forEachLine(text, [&lines](std::string_view) { ++lines; });
    return lines > 0 ? lines - 1 : 0;
}

int countMarkerLines(const std::filesystem::path& log) {
    const auto text = readMarkerLogText(log);
    return text ? countMarkerRows(*text) : 0;
}

}  // namespace sonavault
