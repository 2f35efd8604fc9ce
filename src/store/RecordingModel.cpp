#include "store/RecordingModel.h"

#include <array>
#include <charconv>
#include <chrono>

#include "platform/Format.h"
#include "platform/LocalTime.h"

namespace sonavault {

namespace {

/// A whole decimal integer with an optional sign, and nothing else.
bool isInteger(std::string_view text) {
    if (text.starts_with('+')) text.remove_prefix(1);
    long long ignored = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), ignored);
    return error == std::errc{} && end == text.data() + text.size();
}

std::optional<int> digitsOnly(std::string_view text) {
    int value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') return std::nullopt;
        value = value * 10 + (c - '0');
    }
    return value;
}

}  // namespace

Lane laneFor(const std::string& type) {
    if (type == "hour") return Lane::hour;
    if (type == "break") return Lane::breaks;
    if (type.starts_with("vt")) return Lane::vt;
    if (type.starts_with("mic")) return Lane::mic;
    if (type == "eas") return Lane::eas;
    return Lane::custom;
}

std::string formatTime(double seconds, bool includeSeconds) {
    // A time that is no number, or beyond what an integer holds, must not become undefined
    // behaviour in a label.
    constexpr double kLongest = 1e15;
    const double shown = seconds > 0 ? std::min(seconds, kLongest) : 0;
    const auto whole = static_cast<long long>(shown);
    std::string text = zeroPadded(whole / 3600, 2) + ":" + zeroPadded(whole % 3600 / 60, 2);
    if (includeSeconds) text += ":" + zeroPadded(whole % 60, 2);
    return text;
}

std::string todayDateString(const Clock& clock) {
    return isoDateString(clock.now());
}

bool isISOdate(const std::string& text) {
    if (text.size() != 10 || text[4] != '-' || text[7] != '-') return false;
    const std::string_view view(text);
    for (const auto part : {view.substr(0, 4), view.substr(5, 2), view.substr(8, 2)})
        if (part.find('-') != std::string_view::npos || !isInteger(part)) return false;
    return true;
}

std::optional<std::string> shortDayOfWeek(const std::string& isoDate) {
    if (!isISOdate(isoDate)) return std::nullopt;
    const std::string_view view(isoDate);
    const auto year = digitsOnly(view.substr(0, 4));
    const auto month = digitsOnly(view.substr(5, 2));
    const auto day = digitsOnly(view.substr(8, 2));
    if (!year || !month || !day) return std::nullopt;
    const std::chrono::year_month_day date{std::chrono::year(*year),
                                           std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day))};
    if (!date.ok()) return std::nullopt;
    constexpr std::array kNames{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    return kNames.at(std::chrono::weekday(std::chrono::sys_days(date)).c_encoding());
}

}  // namespace sonavault
