#pragma once

#include <optional>
#include <string>

namespace sonavault {

/// When a running process started, in the system's own count since its boot; nothing when it has
/// ended, even if its parent has not yet taken note of that.
std::optional<std::string> startOfProcess(int processId);

/// The name of the file that a process runs, also when that file has since been replaced by a newer
/// one; empty when there is no such process or it can't be looked at.
std::string programOfProcess(int processId);

/// The same of this process.
std::string ownProgram();

}  // namespace sonavault
