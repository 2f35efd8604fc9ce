#include "automation/MarkerOrder.h"

#include <algorithm>
#include <cmath>
#include <locale>
#include <sstream>
#include <string_view>

namespace sonavault::automation {

namespace {

constexpr std::string_view kBlanks = " \t\r";

/// Takes the next word off the front of `rest`, with the blanks around it.
std::string_view takeWord(std::string_view& rest) {
    rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
    const auto word = rest.substr(0, rest.find_first_of(kBlanks));
    rest.remove_prefix(word.size());
    rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
    return word;
}

std::optional<double> number(std::string_view text) {
    std::istringstream in{std::string(text)};
    in.imbue(std::locale::classic());
    double value = 0;
    if (!(in >> value) || !in.eof() || !std::isfinite(value)) return std::nullopt;
    return value;
}

/// The value of a setting such as duration=5, when `word` is that setting.
std::optional<std::string_view> setting(std::string_view word, std::string_view name) {
    if (!word.starts_with(name)) return std::nullopt;
    return word.substr(name.size());
}

/// True when `word` is one of the settings and was taken into `marker`.
bool takeSetting(std::string_view word, StationMarker& marker) {
    if (const auto duration = setting(word, "duration=")) {
        marker.durationSec = number(*duration);
        return marker.durationSec.has_value();
    }
    if (const auto clock = setting(word, "clock=")) {
        marker.clockTime = *clock;
    } else if (const auto file = setting(word, "file=")) {
        marker.file = *file;
    } else if (word == "test") {
        marker.testMode = true;
    } else {
        return false;
    }
    return true;
}

std::optional<MarkerOrder> parseMarker(std::string_view rest) {
    StationMarker marker;
    marker.type = takeWord(rest);
    if (marker.type.empty()) return std::nullopt;
    for (;;) {
        auto behind = rest;
        if (!takeSetting(takeWord(behind), marker)) break;
        rest = behind;
    }
    if (rest.ends_with('\r')) rest.remove_suffix(1);
    marker.label = rest;
    return marker;
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

std::optional<MarkerOrder> parseRaw(std::string_view rest) {
    std::string digits;
    for (auto word = takeWord(rest); !word.empty(); word = takeWord(rest)) digits += word;
    if (digits.empty() || digits.size() % 2 != 0) return std::nullopt;
    MarkerBytes raw;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const int high = hexDigit(digits[i]);
        const int low = hexDigit(digits[i + 1]);
        if (high < 0 || low < 0) return std::nullopt;
        raw.bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
    }
    return raw;
}

}  // namespace

std::optional<MarkerOrder> parseMarkerOrder(const std::string& line) {
    std::string_view rest = line;
    const auto verb = takeWord(rest);
    if (verb == "marker") return parseMarker(rest);
    if (verb == "marker-raw") return parseRaw(rest);
    if (verb == "marker-text") return MarkerText{std::string(rest)};
    if (verb == "marker-drop" && rest.empty()) return MarkerLinkDrop{};
    return std::nullopt;
}

Result<std::vector<TimedOrder>> parseMarkerScript(const std::string& text) {
    std::vector<TimedOrder> script;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::string_view rest = line;
        const auto first = takeWord(rest);
        if (first.empty() || first.starts_with('#')) continue;
        const auto second = number(first);
        const auto order = parseMarkerOrder(std::string(rest));
        if (!second || *second < 0 || !order)
            return Result<std::vector<TimedOrder>>::failure("\"" + line +
                                                            "\" is no planned marker");
        script.push_back({*second, *order});
    }
    std::stable_sort(script.begin(), script.end(),
                     [](const auto& a, const auto& b) { return a.second < b.second; });
    return script;
}

}  // namespace sonavault::automation
