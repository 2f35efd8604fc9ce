#pragma once

#include <functional>
#include <optional>
#include <string>

namespace sonavault {

/// Reads one variable of the environment; null when it is not set.
using ReadVariable = std::function<const char*(const char* name)>;

/// The window platform to force on the toolkit because there is no display to open a window on;
/// nothing when a display is announced, when the person chose a platform, or where displays are not
/// announced this way.
std::optional<std::string> platformWithoutDisplay(const ReadVariable& environment);

}  // namespace sonavault
