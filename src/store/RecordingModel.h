#pragma once

#include <QUuid>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/Clock.h"

namespace sonavault {

/// The length of the timeline. Units: seconds
inline constexpr double kSecondsInDay = 86400;

/// Where a recording without a manifest is taken to begin: at midnight. Units: seconds of the day
inline constexpr double kRecordingStartOffsetSec = 0.0;

/// A position on the day's clock. Range: 0 to kSecondsInDay. Units: seconds since local midnight of
/// the date
struct DaySeconds {
    double value = 0;
    auto operator<=>(const DaySeconds&) const = default;
};

/// A position in the day's audio file, which need not begin at midnight. Units: seconds since the
/// file's first frame
struct FileSeconds {
    double value = 0;
    auto operator<=>(const FileSeconds&) const = default;
};

/// Where the file has what was on the air at `position`; negative before the recording began.
/// `startOffset`: the moment of the file's first frame.
inline FileSeconds inFile(DaySeconds position, DaySeconds startOffset) {
    return {position.value - startOffset.value};
}

/// When that place of the file was on the air.
inline DaySeconds onDay(FileSeconds position, DaySeconds startOffset) {
    return {position.value + startOffset.value};
}

/// One event on the timeline.
struct Marker {
    std::string type;        ///< an open vocabulary, see laneFor()
    double timeSec = 0;      ///< Units: seconds since local midnight
    std::string label;       ///< free text, may be empty
    double durationSec = 0;  ///< 0 when the log gives none

    bool operator==(const Marker&) const = default;
};

/// A range that the reviewer chose; its ends may stand in either order.
struct Selection {
    QUuid id = QUuid::createUuid();
    double startSec = 0;  ///< Units: seconds since local midnight
    double endSec = 0;

    double lowSec() const { return startSec < endSec ? startSec : endSec; }
    double highSec() const { return startSec < endSec ? endSec : startSec; }
    double durationSec() const { return highSec() - lowSec(); }
};

/// One day's row in the date list.
struct DailyRecording {
    std::string date;       ///< "yyyy-MM-dd", the row's identity
    std::string dayOfWeek;  ///< "Mon" to "Sun", empty when the date is none
    bool live = false;      ///< the date is today's
    std::string recorded;   ///< how much of the day is recorded, "HH:MM"
    int markerCount = 0;
    std::optional<std::string> warning;
    std::optional<int> expiresInDays;
    std::optional<std::filesystem::path> audioURL;
};

/// The loudness of a recording, one value a bucket, as the summary bar draws it.
struct PeaksData {
    double bucketSec = 0;         ///< Units: seconds a bucket
    double totalDurationSec = 0;  ///< what the summary covers
    std::vector<float> rms;  ///< linear (1.0 is full scale), bucket 0 at the file's first frame
    float maxRMS = 1.0F;  ///< the largest value; 1.0 when all is silent, so that drawing can always
                          ///< divide by it
};

/// The rows of the timeline, from the top.
enum class Lane : std::uint8_t { hour, breaks, vt, mic, eas, custom };

/// The lane that shows markers of `type`. The test is case-sensitive, and any unknown type is a
/// note.
Lane laneFor(const std::string& type);

/// "HH:MM:SS", or "HH:MM" without seconds, all cut and not rounded. A negative time is zero; hours
/// don't wrap at 24.
std::string formatTime(double seconds, bool includeSeconds = true);

/// Today's date in local time as "yyyy-MM-dd", read afresh from the clock.
std::string todayDateString(const Clock& clock);

/// Whether `text` has the shape of a date, 4-2-2 characters with dashes between, each part an
/// integer. A date that no calendar has passes.
bool isISOdate(const std::string& text);

/// "Mon" to "Sun" for a "yyyy-MM-dd" date, always in English; nothing when there is no such date.
std::optional<std::string> shortDayOfWeek(const std::string& isoDate);

}  // namespace sonavault
