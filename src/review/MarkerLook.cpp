#include "review/MarkerLook.h"

#include <algorithm>

#include "review/Lanes.h"
#include "review/TimelineMapping.h"

namespace sonavault {

namespace {

/// What a marker's type means to a person.
struct Kind {
    Colour colour;
    const char* word;
};

Kind kindOf(const std::string& type) {
    struct Known {
        const char* type;
        Kind kind;
    };
    static constexpr Kind kVoicetrack{kColorMarkerVT, "Voicetrack"};
    static constexpr Kind kMic{kColorMarkerMic, "Live mic"};
    static constexpr Kind kSilence{kColorMarkerSilence, "Silence"};
    static constexpr std::array<Known, 13> kKnown{{
        {"hour", {kColorMarkerHour, "Hour"}},
        {"break", {kColorMarkerBreak, "Break"}},
        {"vt", kVoicetrack},
        {"vt-pre", kVoicetrack},
        {"vt-post", kVoicetrack},
        {"vt_start", kVoicetrack},
        {"vt_end", kVoicetrack},
        {"mic", kMic},
        {"mic_start", kMic},
        {"mic_end", kMic},
        {"eas", {kColorMarkerEAS, "EAS"}},
        {"silence_start", kSilence},
        {"silence_end", kSilence},
    }};
    for (const Known& each : kKnown)
        if (type == each.type) return each.kind;
    return {kColorMarkerCustom, "Note"};
}

bool isStartArrow(const std::string& type) {
    return type == "vt_start" || type == "mic_start";
}
bool isEndArrow(const std::string& type) {
    return type == "vt_end" || type == "mic_end";
}

/// What stands under a pinhead.
RoundedBox bodyOf(Size size, double radius) {
    return {{0, kMarkerPinheadH, size.width, size.height - kMarkerPinheadH}, radius};
}

/// The point on top of a marker, pointing up.
Triangle pinhead(double width) {
    return {{{width / 2, 0}, {width, kMarkerPinheadH}, {0, kMarkerPinheadH}}};
}

}  // namespace

bool isSpan(const Marker& marker) {
    return marker.durationSec > 0 &&
           (marker.type == "break" || marker.type == "mic" || marker.type == "vt");
}

bool isInstant(const Marker& marker) {
    return !isSpan(marker) && marker.type != "hour";
}

Colour markerColour(const std::string& type) {
    return kindOf(type).colour;
}

std::string markerWord(const std::string& type) {
    return kindOf(type).word;
}

std::string markerReadout(const Marker& marker) {
    const std::string text = formatTime(marker.timeSec) + "  " + markerWord(marker.type);
    return marker.label.empty() ? text : text + ":  " + marker.label;
}

Box markerFrame(const Marker& marker, Size lane) {
    const double x = xAt({marker.timeSec}, lane.width);
    const auto middle = [&lane](double height) { return (lane.height - height) / 2; };
    if (marker.type == "hour")
        return {x - 1, kMarkerHourTopInset, 2,
                std::max(2.0, lane.height - kMarkerHourTopInset - kMarkerHourBotInset)};
    if (isSpan(marker))
        return {x, middle(kMarkerSpanH),
                std::max(kMarkerInstantBodyW, xAt({marker.durationSec}, lane.width)), kMarkerSpanH};
    if (isStartArrow(marker.type))
        return {x, middle(kMarkerVTArrowH), kMarkerVTArrowW, kMarkerVTArrowH};
    if (isEndArrow(marker.type))
        return {x - kMarkerVTArrowW, middle(kMarkerVTArrowH), kMarkerVTArrowW, kMarkerVTArrowH};
    constexpr double kPinH = kMarkerInstantBodyH + kMarkerPinheadH;
    return {x - kMarkerInstantBodyW / 2, middle(kPinH), kMarkerInstantBodyW, kPinH};
}

MarkerShapes markerShapes(const Marker& marker, Size size) {
    const Colour colour = markerColour(marker.type);
    const auto [w, h] = size;
    if (isStartArrow(marker.type))
        return {{{{Triangle{{{0, 0}, {w, h / 2}, {0, h}}}, colour}, {}}}, 1};
    if (isEndArrow(marker.type))
        return {{{{Triangle{{{w, 0}, {0, h / 2}, {w, h}}}, colour}, {}}}, 1};
    if (marker.type == "hour") return {{{{Box{0, 0, w, h}, colour}, {}}}, 1};
    constexpr double kPinRadius = 2;
    constexpr double kSpanRadius = 3;
    if (isInstant(marker)) return {{{{bodyOf(size, kPinRadius), colour}, {pinhead(w), colour}}}, 2};
    const double head = std::min(kMarkerInstantBodyW, w);
    return {{{{bodyOf(size, kSpanRadius), colour.withAlpha(0.5)}, {pinhead(head), colour}}}, 2};
}

Triangle playheadCap(double width) {
    constexpr double kHalfWidth = 6;
    constexpr double kHeight = 7;
    const double middle = width / 2;
    return {{{middle - kHalfWidth, 0}, {middle + kHalfWidth, 0}, {middle, kHeight}}};
}

}  // namespace sonavault
