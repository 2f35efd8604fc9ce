#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "review/Colour.h"
#include "review/Geometry.h"
#include "store/RecordingModel.h"

namespace sonavault {

// What the list of days shows of one day. Units: points

inline constexpr double kDateListHeaderHeight = 36;
inline constexpr double kDayProgressHeight = 2;

inline constexpr Colour kColorDateListBG = rgb(248, 248, 247);
inline constexpr Colour kColorDateListHeaderBG = rgb(236, 236, 233);
inline constexpr Colour kColorDateListSep = rgb(236, 236, 236);
inline constexpr Colour kColorDateSelected = rgb(220, 232, 241);
inline constexpr Colour kColorDayProgress = rgb(229, 85, 85).withAlpha(0.55);
inline constexpr Colour kColorRec = rgb(229, 85, 85);
inline constexpr Colour kColorDateWarning = rgb(229, 165, 64);

/// The light at the left of a row, and the level lights of the row that is live.
inline constexpr Box kDateIndicator = {14, 16, 12, 12};
inline constexpr Box kRecordingCluster = {230, 11, 38, 16};

/// How much of a day a length "HH:MM" is, 0 for a text that is none. Range: 0 to 1
double parseFractionOfDay(std::string_view text);

/// "{recorded} recorded · {markerCount} markers"
std::string dateRowMeta(const DailyRecording& recording);

enum class DateRowPart : std::uint8_t { title, today, meta, warning, expiry };

/// One line of a row.
struct DateRowText {
    DateRowPart part;
    Box box;  ///< within the row
    std::string text;
};

struct DateRowLook {
    std::vector<DateRowText> texts;  ///< only those that the day calls for, from the top
    double height = 0;
};

/// The lines of a day's row, and how high they make it.
DateRowLook dateRowLook(const DailyRecording& recording);

/// The whole row as one sentence, for who can't see it.
std::string dateRowSentence(const DailyRecording& recording);

/// What the light of a row says.
enum class DateIndicator : std::uint8_t { recording, warning, none };

/// `isRecording`: whether the recorder runs.
DateIndicator dateIndicator(const DailyRecording& recording, bool isRecording);

/// The width of the bar on top of a row of `width`; 0 when there is none. It tells how long the
/// recording of today is, not how late it is.
double dayProgressWidth(const DailyRecording& recording, double width);

/// A row's hover text.
std::string dateRowHint(const std::string& date, const std::string& today);

/// "Stop Recording" or "Start Recording".
std::string toggleRecordingTitle(bool isRecording);

/// "Delete {date} ({dayOfWeek})…"
std::string deleteRecordingTitle(const DailyRecording& recording);

}  // namespace sonavault
