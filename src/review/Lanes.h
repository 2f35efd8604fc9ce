#pragma once

#include <array>
#include <optional>
#include <set>
#include <string_view>

#include "review/Colour.h"
#include "store/RecordingModel.h"

namespace sonavault {

inline constexpr Colour kColorLaneTintHour = rgb(217, 217, 217);
inline constexpr Colour kColorLaneTintBreak = rgb(236, 222, 219);
inline constexpr Colour kColorLaneTintVT = rgb(222, 230, 235);
inline constexpr Colour kColorLaneTintMic = rgb(222, 235, 231);
inline constexpr Colour kColorLaneTintEAS = rgb(235, 224, 233);
inline constexpr Colour kColorLaneTintCustom = rgb(241, 236, 222);
inline constexpr Colour kColorLaneSep = rgb(240, 240, 240);

inline constexpr Colour kColorMarkerHour = rgb(85, 85, 85);
inline constexpr Colour kColorMarkerBreak = rgb(216, 91, 64);
inline constexpr Colour kColorMarkerVT = rgb(74, 143, 190);
inline constexpr Colour kColorMarkerMic = rgb(79, 181, 155);
inline constexpr Colour kColorMarkerEAS = rgb(181, 84, 168);
inline constexpr Colour kColorMarkerCustom = rgb(229, 183, 59);
inline constexpr Colour kColorMarkerSilence = rgb(229, 126, 34);

/// What a person sees of a lane.
struct LaneDescription {
    Lane lane;
    std::string_view key;              ///< the name by which the filters know it
    std::string_view laneDisplayName;  ///< its name beside the filter
    std::string_view displayName;      ///< its name in the label column, in one or two lines
    Colour tint;                       ///< its ground
    Colour markerColour;               ///< its markers' and its swatch's
    std::string_view hint;             ///< the hover text of its label
};

/// The lanes from top to bottom.
inline constexpr std::array<LaneDescription, 6> laneOrder{{
    {Lane::hour, "hour", "Hours", "HOURS", kColorLaneTintHour, kColorMarkerHour,
     "Hours lane — vertical ticks at every hour boundary."},
    {Lane::breaks, "break", "Breaks", "BREAKS", kColorLaneTintBreak, kColorMarkerBreak,
     "Breaks lane — commercial breaks and stopsets."},
    {Lane::vt, "vt", "Voicetracks", "VOICE\nTRACKS", kColorLaneTintVT, kColorMarkerVT,
     "Voicetracks lane — pre-recorded talk between songs."},
    {Lane::mic, "mic", "Live mic", "LIVE\nMIC", kColorLaneTintMic, kColorMarkerMic,
     "Live mic lane — moments the studio mic was open."},
    {Lane::eas, "eas", "EAS", "EAS", kColorLaneTintEAS, kColorMarkerEAS,
     "EAS lane — Emergency Alert System activations."},
    {Lane::custom, "custom", "Notes", "NOTES", kColorLaneTintCustom, kColorMarkerCustom,
     "Notes lane — silence events and custom markers."},
}};

using LaneSet = std::set<Lane>;

const LaneDescription& descriptionOf(Lane lane);

/// The lane that bears `key`; nothing for any other text.
std::optional<Lane> laneWithKey(std::string_view key);

/// The hover text of a lane's label; one of its own for a key that no lane bears.
std::string_view laneHint(std::string_view key);

LaneSet allLanes();

}  // namespace sonavault
