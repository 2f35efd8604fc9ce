#include "export/SelectionExport.h"

#include <algorithm>

#include "export/ExportWords.h"

namespace sonavault {
namespace {

constexpr std::size_t kBrowse = 0;

std::string summaryLine(std::size_t number, const Selection& selection) {
    return "  " + std::to_string(number) + ". " + formatTime(selection.lowSec()) + " – " +
           formatTime(selection.highSec()) + "   (" + formatTime(selection.durationSec()) + ")";
}

SavePanel savePanel(std::size_t count, const std::string& date,
                    const std::filesystem::path& directory) {
    return {.title = "Save Selections",
            .message = "Save " + counted(count, "selection") + " into one MP3 file",
            .directory = directory,
            .nameField = date + "_selections.mp3"};
}

}  // namespace

ExportAlert selectionSummary(const std::vector<Selection>& selections) {
    auto sorted = selections;
    std::stable_sort(
        sorted.begin(), sorted.end(),
        [](const Selection& one, const Selection& other) { return one.lowSec() < other.lowSec(); });
    std::string lines;
    for (std::size_t i = 0; i < sorted.size(); ++i)
        lines += (i > 0 ? "\n" : "") + summaryLine(i + 1, sorted[i]);
    return {.message = "Save " + counted(sorted.size(), "selection") + " into a single file",
            .information = lines + "\n\nTotal length: " + formatTime(totalDurationSec(sorted)) +
                           "\n\nClick Browse to choose where the combined MP3 should be saved.",
            .buttons = {"Browse...", "Cancel"}};
}

void SelectionExport::exportSelections() {
    const auto selections = day_.selections();
    if (selections.empty()) return;
    const double total = totalDurationSec(selections);
    if (host_.showAlert(selectionSummary(selections)) != kBrowse) return;
    const auto output = host_.chooseOutput(
        savePanel(selections.size(), day_.selectedDate(), folder_.defaultExportFolderURL()));
    if (!output) return;
    folder_.remember(*output);
    host_.setStatusBarText("Exporting…");
    // Counted anew, as the walk takes the selections anew: a timer's work may have changed them
    // while the person was asked.
    const std::size_t count = day_.selections().size();
    exporter_.exportSelectionsToMP3(std::nullopt, *output,
                                    lifetime_.guard([this, count, total, output = *output](
                                                        const Result<Done, ExportError>& result) {
                                        tell(result, count, total, output);
                                    }));
}

void SelectionExport::tell(const Result<Done, ExportError>& result, std::size_t count, double total,
                           const std::filesystem::path& output) {
    host_.setStatusBarText("");
    if (result)
        tellSaved(host_, "Saved", counted(count, "selection"), total, output);
    else
        tellFailed(host_, "Export failed", result.error().errorDescription());
}

}  // namespace sonavault
