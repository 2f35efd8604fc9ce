#pragma once

#include <filesystem>
#include <string>

#include "export/ExportHost.h"

namespace sonavault {

/// "1 selection", "2 selections".
std::string counted(std::size_t count, const std::string& noun);

/// The sum of the selections' lengths; what several cover counts as often. Units: seconds
double totalDurationSec(const std::vector<Selection>& selections);

/// Tells that a file was written. `what`: "2 selections"
ExportAlert savedAlert(const std::string& message, const std::string& what, double total,
                       const std::filesystem::path& output);

/// Shows that alert, and the file if the person asks for it.
void tellSaved(ExportHost& host, const std::string& message, const std::string& what, double total,
               const std::filesystem::path& output);

/// Shows why an export failed.
void tellFailed(ExportHost& host, const std::string& message, const std::string& reason);

}  // namespace sonavault
