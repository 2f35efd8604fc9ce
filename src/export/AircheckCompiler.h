#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/RecordingModel.h"

namespace sonavault {

/// What an aircheck is made of: the spans in which the microphone was open, or the voicetracks.
enum class AircheckMode : std::uint8_t { liveMic, voicetracked };

/// "liveMic" or "voicetracked".
std::string aircheckModeName(AircheckMode mode);

/// Every text that is not exactly "liveMic" stands for voicetracks.
AircheckMode aircheckModeNamed(std::string_view name);

/// How the mode is written in the names of files: "Live" or "VT".
std::string aircheckTag(std::string_view modeName);

/// How much of what was on the air around a span is kept with it. Units: seconds
inline constexpr double kAircheckContextSec = 8;

/// The segments of an aircheck, in order of time and apart, from a marker log of this content. A
/// span that is still open, or ends without a beginning, gives none; of several beginnings before
/// one end the last counts. A segment may end behind the end of the day.
std::vector<Selection> aircheckSegmentsIn(std::string_view markerLog, AircheckMode mode);

/// The same from the log beside an audio file, read afresh. Errors: none, when there is no audio
/// file, or its log can't be read as UTF-8 text.
std::vector<Selection> computeAircheckSegments(const std::optional<std::filesystem::path>& audio,
                                               AircheckMode mode);

/// Whole hours of the day. Range: 0 to 23, `end` included and not before `start`
struct HourWindow {
    int start = 0;
    int end = 23;

    bool isWholeDay() const { return start == 0 && end == 23; }
};

/// Those of `segments` that begin in the window, the kept context included: one that runs over its
/// end is kept whole.
std::vector<Selection> beginningIn(HourWindow window, std::vector<Selection> segments);

}  // namespace sonavault
