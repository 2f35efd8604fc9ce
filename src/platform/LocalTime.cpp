#include "platform/LocalTime.h"

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <optional>
#include <string_view>

namespace sonavault {
namespace {

constexpr std::int64_t kNanosecondsInSecond = 1'000'000'000;

/// A moment as whole seconds since 1970 and what lies beyond them, which is never negative.
struct SplitMoment {
    std::int64_t second;
    int nanosecond;
};

// Done with plain integers because rounding a moment near the ends of the clock's range down to a
// second with <chrono> would leave that range.
SplitMoment split(WallTime moment) {
    const std::int64_t count = moment.time_since_epoch().count();
    SplitMoment parts{count / kNanosecondsInSecond, static_cast<int>(count % kNanosecondsInSecond)};
    if (parts.nanosecond < 0) {
        parts.second -= 1;
        parts.nanosecond += static_cast<int>(kNanosecondsInSecond);
    }
    return parts;
}

/// Takes a text apart from its beginning; every step says whether it found what it wanted.
class Reader {
  public:
    explicit Reader(std::string_view text) : rest_(text) {}

    bool atEnd() const { return rest_.empty(); }

    bool take(char wanted) {
        if (rest_.empty() || rest_.front() != wanted) return false;
        rest_.remove_prefix(1);
        return true;
    }

    /// Exactly `digits` decimal digits.
    bool number(int digits, int& value) {
        int read = 0;
        for (int i = 0; i < digits; ++i) {
            const auto digit = this->digit();
            if (!digit) return false;
            read = read * 10 + *digit;
        }
        value = read;
        return true;
    }

    /// One digit or more after the decimal point. What is finer than a nanosecond is cut off.
    bool fraction(std::int64_t& nanoseconds) {
        std::int64_t unit = kNanosecondsInSecond;
        nanoseconds = 0;
        int digits = 0;
        for (auto each = digit(); each; each = digit(), ++digits) {
            unit /= 10;
            nanoseconds += *each * unit;
        }
        return digits > 0;
    }

    /// "Z", "+hh:mm" or "+hhmm", as the seconds by which the local clock is ahead.
    bool zone(std::int64_t& ahead) {
        ahead = 0;
        if (take('Z')) return true;
        const bool east = take('+');
        if (!east && !take('-')) return false;
        int hours = 0;
        int minutes = 0;
        if (!number(2, hours)) return false;
        take(':');
        if (!number(2, minutes) || hours > 23 || minutes > 59) return false;
        const std::int64_t difference = hours * 3600 + minutes * 60;
        ahead = east ? difference : -difference;
        return true;
    }

  private:
    std::optional<int> digit() {
        if (rest_.empty() || rest_.front() < '0' || rest_.front() > '9') return std::nullopt;
        const int value = rest_.front() - '0';
        rest_.remove_prefix(1);
        return value;
    }

    std::string_view rest_;
};

/// The days since 1970 of a date "yyyy-MM-dd" that exists.
std::optional<std::chrono::sys_days> readDate(Reader& in) {
    int year = 0;
    int month = 0;
    int day = 0;
    if (!in.number(4, year) || !in.take('-') || !in.number(2, month) || !in.take('-') ||
        !in.number(2, day))
        return std::nullopt;
    const std::chrono::year_month_day date{std::chrono::year(year),
                                           std::chrono::month(static_cast<unsigned>(month)),
                                           std::chrono::day(static_cast<unsigned>(day))};
    if (!date.ok()) return std::nullopt;
    return std::chrono::sys_days(date);
}

/// The seconds of the day of a time "HH:mm:ss". The sixty-first second of a minute is not taken:
/// the machine's clock never shows one, and so none was ever written.
std::optional<int> readTime(Reader& in) {
    int hour = 0;
    int minute = 0;
    int second = 0;
    if (!in.number(2, hour) || !in.take(':') || !in.number(2, minute) || !in.take(':') ||
        !in.number(2, second))
        return std::nullopt;
    if (hour > 23 || minute > 59 || second > 59) return std::nullopt;
    return hour * 3600 + minute * 60 + second;
}

}  // namespace

LocalTime localTime(WallTime moment) {
    const SplitMoment parts = split(moment);
    const auto seconds = static_cast<std::time_t>(parts.second);
    std::tm local{};
    // localtime_r alone would go on with the zone that it met first.
    tzset();
    localtime_r(&seconds, &local);
    return {.year = local.tm_year + 1900,
            .month = local.tm_mon + 1,
            .day = local.tm_mday,
            .hour = local.tm_hour,
            .minute = local.tm_min,
            .second = local.tm_sec,
            .nanosecond = parts.nanosecond};
}

std::string isoDateString(WallTime moment) {
    const LocalTime local = localTime(moment);
    char text[48];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d", local.year, local.month, local.day);
    return text;
}

double clockSecondsSinceMidnight(WallTime moment) {
    const LocalTime local = localTime(moment);
    return local.hour * 3600 + local.minute * 60 + local.second + local.nanosecond / 1e9;
}

// Found by halving, because calendar arithmetic has no answer for a midnight that does not exist or
// comes twice.
WallTime startOfNextLocalDay(WallTime moment) {
    using std::chrono::seconds;
    const std::string today = isoDateString(moment);
    const std::int64_t from = split(moment).second;
    std::int64_t last = 0;  // seconds after `from`: still today
    std::int64_t next = 1;  // not today any more
    while (isoDateString(WallTime(seconds(from + next))) == today) next *= 2;
    while (next - last > 1) {
        const std::int64_t middle = last + (next - last) / 2;
        (isoDateString(WallTime(seconds(from + middle))) == today ? last : next) = middle;
    }
    return WallTime(seconds(from + next));
}

std::string iso8601WithMilliseconds(WallTime moment) {
    const SplitMoment parts = split(moment);
    const std::chrono::sys_seconds seconds{std::chrono::seconds(parts.second)};
    const auto midnight = std::chrono::floor<std::chrono::days>(seconds);
    const std::chrono::year_month_day date(midnight);
    const auto ofDay = static_cast<int>((seconds - midnight).count());
    // Cut, not rounded: what is read back is never later than the moment itself, so a recording
    // does not seem to begin after its first sample, and the last half millisecond of a day stays
    // in that day.
    const int milliseconds = parts.nanosecond / 1'000'000;
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ",
                  static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                  static_cast<unsigned>(date.day()), ofDay / 3600, ofDay / 60 % 60, ofDay % 60,
                  milliseconds);
    return text;
}

bool parseIso8601WithFraction(const std::string& text, WallTime& moment) {
    Reader in(text);
    const auto date = readDate(in);
    if (!date || !in.take('T')) return false;
    const auto time = readTime(in);
    std::int64_t nanoseconds = 0;
    std::int64_t ahead = 0;
    if (!time || !in.take('.') || !in.fraction(nanoseconds) || !in.zone(ahead) || !in.atEnd())
        return false;
    const std::int64_t seconds =
        std::chrono::sys_seconds(*date).time_since_epoch().count() + *time - ahead;
    // The clock counts nanoseconds in 64 bits: the years 1678 to 2261.
    constexpr std::int64_t kFarthest = INT64_MAX / kNanosecondsInSecond;
    if (seconds <= -kFarthest || seconds >= kFarthest) return false;
    moment = WallTime(std::chrono::nanoseconds(seconds * kNanosecondsInSecond + nanoseconds));
    return true;
}

}  // namespace sonavault
