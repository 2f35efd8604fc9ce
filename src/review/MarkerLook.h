#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <variant>

#include "review/Colour.h"
#include "review/Geometry.h"
#include "store/RecordingModel.h"

namespace sonavault {

// How a marker looks and what it says. Units: points

inline constexpr double kMarkerHourTopInset = 4;
inline constexpr double kMarkerHourBotInset = 4;
inline constexpr double kMarkerSpanH = 22;
inline constexpr double kMarkerVTArrowW = 10;
inline constexpr double kMarkerVTArrowH = 22;
inline constexpr double kMarkerInstantBodyW = 8;  ///< also the least width of a span
inline constexpr double kMarkerInstantBodyH = 18;
inline constexpr double kMarkerPinheadH = 6;

/// Whether the marker is drawn over its length. Only breaks, voicetracks and live-mic spans that
/// are told as one event are.
bool isSpan(const Marker& marker);

/// Whether the marker is drawn as a pin; arrows are too small for it to matter to them.
bool isInstant(const Marker& marker);

/// Unlike its lane, the colour goes by the whole type: "vt-other" is a note in the voicetrack lane.
Colour markerColour(const std::string& type);

/// "Hour", "Break", "Voicetrack", ...; "Note" for a type that nobody knows.
std::string markerWord(const std::string& type);

/// The hover text: "{time}  {word}", and the label if there is one.
std::string markerReadout(const Marker& marker);

/// Where the marker stands in a lane of this size. A start arrow stands right of its moment and an
/// end arrow left of it, so that a pair encloses what it marks.
Box markerFrame(const Marker& marker, Size lane);

struct RoundedBox {
    Box box;
    double radius = 0;
    bool operator==(const RoundedBox&) const = default;
};

using Triangle = std::array<Point, 3>;

struct FilledShape {
    std::variant<Box, RoundedBox, Triangle> outline;
    Colour colour;
};

/// What a marker is drawn with, bottom first.
struct MarkerShapes {
    std::array<FilledShape, 2> shapes;
    std::size_t count = 0;

    const FilledShape* begin() const { return shapes.data(); }
    const FilledShape* end() const { return shapes.data() + count; }
};

/// The shapes within a frame of `size`, from its upper left corner.
MarkerShapes markerShapes(const Marker& marker, Size size);

/// The triangle on top of the playhead's line.
Triangle playheadCap(double width);

}  // namespace sonavault
