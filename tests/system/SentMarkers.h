#pragma once

#include <string>
#include <vector>

#include "system/ChildProcess.h"

namespace sonavault::testing {

/// The first line of a day's marker log.
inline constexpr auto kLogHeader = "timestamp,event,label,duration\n";

/// The row that a message of the marker link has to leave in the day's log.
std::string rowOf(const std::string& message);

/// The rows of every marker that the automation says it sent, in their order.
std::vector<std::string> sentRows(const ChildProcess& automation);

/// The log that holds just these rows.
std::string logOf(const std::vector<std::string>& rows);

}  // namespace sonavault::testing
