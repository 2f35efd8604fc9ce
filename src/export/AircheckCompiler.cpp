#include "export/AircheckCompiler.h"

#include <algorithm>

#include "store/MarkerLogReader.h"
#include "store/StationFolder.h"

namespace sonavault {
namespace {

struct Event {
    std::string type;  // as the log has it, unlike a Marker's
    double sec;
};

struct Span {
    double begin;
    double end;
};

std::optional<Event> eventIn(std::string_view line) {
    auto columns = parseCSVRow(line);
    if (columns.size() < 2) return std::nullopt;
    const auto sec = markerTimeSec(columns[0]);
    if (!sec) return std::nullopt;
    return Event{std::move(columns[1]), *sec};
}

/// The events of all lines but the first, in order of time.
std::vector<Event> eventsIn(std::string_view log) {
    std::vector<Event> events;
    forEachMarkerRow(log, [&events](std::string_view row) {
        if (auto event = eventIn(row)) events.push_back(std::move(*event));
    });
    std::stable_sort(events.begin(), events.end(),
                     [](const Event& one, const Event& other) { return one.sec < other.sec; });
    return events;
}

bool opens(const std::string& type, AircheckMode mode) {
    if (mode == AircheckMode::liveMic) return type == "mic_start";
    return type == "vt_start" || type == "vt_pre";
}

bool closes(const std::string& type, AircheckMode mode) {
    if (mode == AircheckMode::liveMic) return type == "mic_end";
    return type == "vt_end" || type == "vt_post";
}

std::vector<Span> pairedSpans(const std::vector<Event>& events, AircheckMode mode) {
    std::vector<Span> spans;
    const Event* open = nullptr;
    for (const auto& event : events) {
        if (opens(event.type, mode)) {
            open = &event;
        } else if (open && closes(event.type, mode)) {
            spans.push_back({open->sec - kAircheckContextSec, event.sec + kAircheckContextSec});
            open = nullptr;
        }
    }
    return spans;
}

/// `spans` in order of their beginnings, which pairing events in order of time gives.
std::vector<Span> merged(const std::vector<Span>& spans) {
    std::vector<Span> merged;
    for (const auto& span : spans) {
        if (!merged.empty() && merged.back().end >= span.begin)
            merged.back().end = std::max(merged.back().end, span.end);
        else
            merged.push_back(span);
    }
    return merged;
}

}  // namespace

std::string aircheckModeName(AircheckMode mode) {
    return mode == AircheckMode::liveMic ? "liveMic" : "voicetracked";
}

AircheckMode aircheckModeNamed(std::string_view name) {
    return name == "liveMic" ? AircheckMode::liveMic : AircheckMode::voicetracked;
}

std::string aircheckTag(std::string_view modeName) {
    return aircheckModeNamed(modeName) == AircheckMode::liveMic ? "Live" : "VT";
}

std::vector<Selection> aircheckSegmentsIn(std::string_view markerLog, AircheckMode mode) {
    std::vector<Selection> segments;
    for (const auto& span : merged(pairedSpans(eventsIn(markerLog), mode)))
        segments.push_back({.startSec = std::max(0.0, span.begin), .endSec = span.end});
    return segments;
}

std::vector<Selection> computeAircheckSegments(const std::optional<std::filesystem::path>& audio,
                                               AircheckMode mode) {
    if (!audio) return {};
    const auto text = readMarkerLogText(markerLogURL(*audio));
    return text ? aircheckSegmentsIn(*text, mode) : std::vector<Selection>{};
}

std::vector<Selection> beginningIn(HourWindow window, std::vector<Selection> segments) {
    constexpr double kSecondsInHour = 3600;
    const double begin = window.start * kSecondsInHour;
    const double end = (window.end + 1.0) * kSecondsInHour;
    std::erase_if(segments, [begin, end](const Selection& segment) {
        return segment.lowSec() < begin || segment.lowSec() >= end;
    });
    return segments;
}

}  // namespace sonavault
