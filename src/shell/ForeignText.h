#pragma once

#include <cstddef>
#include <string>

namespace sonavault {

/// The most of one text of another program that is printed or put into a marker's label. Units:
/// bytes
inline constexpr std::size_t kMostBytesOfForeignText = 4096;

/// As much of the beginning of `text` as fits into `mostBytes`, ending with a whole character.
/// `text` is UTF-8.
std::string shortened(std::string text, std::size_t mostBytes = kMostBytesOfForeignText);

/// The same, with a blank for whatever a terminal or a reader of lines takes for a command or a
/// line's end: what others wrote must not pass for lines of our own in the printed log.
std::string printable(const std::string& text);

}  // namespace sonavault
