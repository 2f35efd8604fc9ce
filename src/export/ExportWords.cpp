#include "export/ExportWords.h"

namespace sonavault {

std::string counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

double totalDurationSec(const std::vector<Selection>& selections) {
    double total = 0;
    for (const auto& each : selections) total += each.durationSec();
    return total;
}

ExportAlert savedAlert(const std::string& message, const std::string& what, double total,
                       const std::filesystem::path& output) {
    return {.message = message,
            .information =
                "Wrote " + what + " (total " + formatTime(total) + ") to:\n\n" + output.string(),
            .buttons = {"Reveal in Finder", "OK"}};
}

void tellSaved(ExportHost& host, const std::string& message, const std::string& what, double total,
               const std::filesystem::path& output) {
    if (host.showAlert(savedAlert(message, what, total, output)) == 0)
        host.revealInFileViewer(output);
}

void tellFailed(ExportHost& host, const std::string& message, const std::string& reason) {
    host.showAlert(
        {.isWarning = true, .message = message, .information = reason, .buttons = {"OK"}});
}

}  // namespace sonavault
