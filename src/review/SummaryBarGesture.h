#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <variant>

#include "platform/MainTimer.h"
#include "review/Selections.h"
#include "review/SummaryBar.h"
#include "store/RecordingModel.h"

namespace sonavault {

/// How long a selection is pressed until it is deleted.
inline constexpr std::chrono::milliseconds kLongPress{600};

/// Movement that makes a press more than a press. Units: points
inline constexpr double kLongPressMoveCancelPx = 3;

/// What the mouse on the summary bar asks of the program around it.
///
/// Thread: main.
class SummaryBarGestureHost {
  public:
    virtual ~SummaryBarGestureHost() = default;

    /// The width of the day's axis. Units: points
    virtual double trackW() const = 0;

    /// Moves the playhead, limited to the day.
    virtual void jumpTo(DaySeconds position) = 0;
};

/// The mouse on the summary bar: it seeks, makes selections, moves their edges, and deletes them
/// after a long press. A selection may go away at any time under the gesture, as keys work the
/// while; the gesture then ends.
///
/// Thread: main.
class SummaryBarGesture {
  public:
    struct None {};
    /// Pressed on empty ground, and not moved yet.
    struct CreatingPending {
        double downX;
        double startSec;
    };
    /// Dragging out a new selection.
    struct Creating {
        std::size_t idx;
    };
    /// Dragging one end of a selection.
    struct Resizing {
        std::size_t idx;
        Edge edge;
    };
    /// Pressed on the body of a selection, which is deleted when the time is up.
    struct LongPressing {
        std::size_t idx;
        double downX;
    };
    using DragMode = std::variant<None, CreatingPending, Creating, Resizing, LongPressing>;

    /// `host` and `selections` outlive this object. `timer` measures the long press.
    SummaryBarGesture(SummaryBarGestureHost& host, Selections& selections,
                      std::unique_ptr<MainTimer> timer);

    const DragMode& dragMode() const { return dragMode_; }

    /// `x` is the pointer's place on the bar. Units: points
    void mouseDown(double x);
    void mouseDragged(double x);
    void mouseUp();

  private:
    void drag(None, double) {}
    void drag(CreatingPending mode, double x);
    void drag(Creating mode, double x);
    void drag(Resizing mode, double x);
    void drag(LongPressing mode, double x);

    void commitLongPressDelete();
    DaySeconds secAtX(double x) const;

    SummaryBarGestureHost& host_;
    Selections& selections_;
    std::unique_ptr<MainTimer> timer_;
    DragMode dragMode_;
};

}  // namespace sonavault
