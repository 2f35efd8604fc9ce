#include "review/Selections.h"

#include <algorithm>
#include <utility>

namespace sonavault {

bool isTooShort(double durationSec) {
    // 100.05 - 100 is a hair below 0.05 in doubles, and yet long enough for the person who sees it;
    // no two positions of a day are told apart at a billionth of a second.
    constexpr double kHair = 1e-9;
    return durationSec < kShortestSelectionSec - kHair;
}

std::string selectionInfoText(const std::vector<Selection>& selections,
                              std::optional<double> pendingStartSec) {
    if (pendingStartSec) return "Pending: " + formatTime(*pendingStartSec) + " — press ] to end";
    if (selections.empty()) return "Selections: —";
    if (selections.size() == 1) {
        const Selection& only = selections.front();
        return "1 selection: " + formatTime(only.lowSec()) + " – " + formatTime(only.highSec()) +
               " (" + formatTime(only.durationSec()) + ")";
    }
    double sum = 0;
    for (const Selection& each : selections) sum += each.durationSec();
    return std::to_string(selections.size()) + " selections, total " + formatTime(sum);
}

std::optional<std::string> exportSelectionsTitle(std::size_t count) {
    if (count == 0) return std::nullopt;
    if (count == 1) return "Export selection to file";
    return "Export " + std::to_string(count) + " selections to file";
}

void Selections::markSelectionStart() {
    pendingStartSec_ = host_.playheadSec().value;
    refreshSelectionUI();
}

void Selections::markSelectionEnd() {
    if (!pendingStartSec_) return;
    const auto [low, high] = std::minmax({*pendingStartSec_, host_.playheadSec().value});
    pendingStartSec_.reset();
    if (!isTooShort(high - low)) {
        pushUndoSnapshot();
        selections_.push_back({.startSec = low, .endSec = high});
    }
    refreshSelectionUI();
}

void Selections::pushUndoSnapshot() {
    undoStack_.push_back(selections_);
    if (undoStack_.size() > kMaxUndoDepth) undoStack_.pop_front();
}

void Selections::undoLastChange() {
    if (undoStack_.empty()) return;
    selections_ = std::move(undoStack_.back());
    undoStack_.pop_back();
    refreshSelectionUI();
}

void Selections::clearAllSelections() {
    if (selections_.empty() && !pendingStartSec_) return;
    pushUndoSnapshot();
    selections_.clear();
    pendingStartSec_.reset();
    refreshSelectionUI();
}

void Selections::refreshSelectionUI() {
    host_.redrawSummaryBar();
    host_.rebuildSummaryBarCursors();
    updateSelectionDisplay();
    host_.showExportSelectionsButton(exportSelectionsTitle(selections_.size()));
}

void Selections::updateSelectionDisplay() {
    host_.showSelectionInfo(selectionInfoText(selections_, pendingStartSec_), !selections_.empty());
}

std::size_t Selections::append(DaySeconds start, DaySeconds end) {
    selections_.push_back({.startSec = start.value, .endSec = end.value});
    refreshSelectionUI();
    return selections_.size() - 1;
}

bool Selections::moveEdge(std::size_t index, Edge edge, DaySeconds to) {
    if (index >= selections_.size()) return false;
    Selection& moved = selections_[index];
    (edge == Edge::start ? moved.startSec : moved.endSec) = to.value;
    refreshSelectionUI();
    return true;
}

bool Selections::settle(std::size_t index) {
    if (index >= selections_.size()) return false;
    Selection& settled = selections_[index];
    if (settled.startSec > settled.endSec) std::swap(settled.startSec, settled.endSec);
    if (isTooShort(settled.durationSec())) return remove(index);
    refreshSelectionUI();
    return true;
}

bool Selections::remove(std::size_t index) {
    if (index >= selections_.size()) return false;
    selections_.erase(selections_.begin() + static_cast<std::ptrdiff_t>(index));
    refreshSelectionUI();
    return true;
}

}  // namespace sonavault
