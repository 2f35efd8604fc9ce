#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "review/SelectionsHost.h"
#include "store/RecordingModel.h"

namespace sonavault {

/// How many changes can be undone.
inline constexpr std::size_t kMaxUndoDepth = 20;

/// A shorter range is a slip of the hand and not kept. Units: seconds
inline constexpr double kShortestSelectionSec = 0.05;

/// One of a selection's two ends: the field of the record, not the side on the screen.
enum class Edge : std::uint8_t { start, end };

/// Whether a range is shorter than kShortestSelectionSec.
bool isTooShort(double durationSec);

/// The report of what is selected; a start that waits for its end comes before everything else.
std::string selectionInfoText(const std::vector<Selection>& selections,
                              std::optional<double> pendingStartSec);

/// The title of the button that exports `count` selections; nothing for none.
std::optional<std::string> exportSelectionsTitle(std::size_t count);

/// The ranges that the reviewer marked, the start of one that waits for its end, and the way back.
/// They belong to the clock and not to a day: another day keeps them. Ranges stay in the order in
/// which they were made and may overlap.
///
/// Thread: main.
class Selections {
  public:
    /// `host` outlives this object.
    explicit Selections(SelectionsHost& host) : host_(host) {}

    const std::vector<Selection>& selections() const { return selections_; }
    std::optional<double> pendingStartSec() const { return pendingStartSec_; }

    /// The states that can be brought back, oldest first.
    const std::deque<std::vector<Selection>>& undoStack() const { return undoStack_; }

    /// A range begins at the playhead; an earlier start that waits is forgotten.
    void markSelectionStart();

    /// The waiting range ends at the playhead, which may stand on either side of the start.
    void markSelectionEnd();

    /// Keeps the selections as they are for undoLastChange(); to be called before a change.
    void pushUndoSnapshot();

    void undoLastChange();

    void clearAllSelections();

    /// Shows the selections as they are now.
    void refreshSelectionUI();

    /// The steps of a drag, shown at once. None of them makes an undo step: a gesture makes one
    /// when it begins. Each is false, and does nothing, when there is no selection `index` any
    /// more.

    /// Gives the index of the new selection.
    std::size_t append(DaySeconds start, DaySeconds end);
    bool moveEdge(std::size_t index, Edge edge, DaySeconds to);
    /// Brings the ends in order, and takes the selection away if it is too short to keep.
    bool settle(std::size_t index);
    bool remove(std::size_t index);

  private:
    void updateSelectionDisplay();

    SelectionsHost& host_;
    std::vector<Selection> selections_;
    std::optional<double> pendingStartSec_;
    std::deque<std::vector<Selection>> undoStack_;
};

}  // namespace sonavault
