#include "platform/Format.h"

#include <array>
#include <charconv>
#include <cmath>

namespace sonavault {

namespace {

template <class... Style>
std::string numberText(double value, Style... style) {
    std::array<char, 400> text;  // the longest double in fixed form has 309 digits before the point
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, style...).ptr;
    return {text.data(), end};
}

}  // namespace

std::string fixedPoint(double value, int decimals) {
    return numberText(value, std::chars_format::fixed, decimals);
}

std::string sixDigits(double value) {
    return numberText(value, std::chars_format::general, 6);
}

std::string shortest(double value) {
    std::string text = numberText(value);
    if (std::isfinite(value) && text.find_first_of(".e") == std::string::npos) text += ".0";
    return text;
}

std::string zeroPadded(long long value, int width) {
    std::string digits = std::to_string(value < 0 ? -value : value);
    const auto wanted = static_cast<std::size_t>(width - (value < 0 ? 1 : 0));
    if (digits.size() < wanted) digits.insert(0, wanted - digits.size(), '0');
    return value < 0 ? "-" + digits : digits;
}

std::string wholeNumber(double value) {
    return fixedPoint(std::trunc(value), 0);
}

}  // namespace sonavault
