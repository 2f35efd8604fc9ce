#pragma once

#include <string>

namespace sonavault {

// Numbers as text, the same in every locale: the person's decimal comma must never reach a file or
// a log line.

/// `value` with exactly `decimals` digits behind the point, like "%.{decimals}f".
std::string fixedPoint(double value, int decimals);

/// `value` with at most six significant digits and no trailing zeros, like "%g".
std::string sixDigits(double value);

/// The shortest text that reads back to `value`, with ".0" on a whole value ("5.0").
std::string shortest(double value);

/// `value` in decimal digits, with zeros in front up to `width`.
std::string zeroPadded(long long value, int width);

/// `value` cut to a whole number.
std::string wholeNumber(double value);

}  // namespace sonavault
