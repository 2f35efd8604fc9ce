#include "review/SummaryBarGesture.h"

#include <cmath>
#include <utility>

#include "review/TimelineMapping.h"

namespace sonavault {

namespace {

bool hasMoved(double downX, double x) {
    return std::abs(x - downX) > kLongPressMoveCancelPx;
}

}  // namespace

SummaryBarGesture::SummaryBarGesture(SummaryBarGestureHost& host, Selections& selections,
                                     std::unique_ptr<MainTimer> timer)
    : host_(host), selections_(selections), timer_(std::move(timer)) {}

DaySeconds SummaryBarGesture::secAtX(double x) const {
    return secAt(x, host_.trackW());
}

void SummaryBarGesture::mouseDown(double x) {
    timer_->stop();
    if (const auto hit = hitEdge(selections_.selections(), x, host_.trackW())) {
        selections_.pushUndoSnapshot();
        dragMode_ = Resizing{hit->index, hit->edge};
    } else if (const auto index = hitBody(selections_.selections(), x, host_.trackW())) {
        timer_->start(kLongPress, [this] { commitLongPressDelete(); });
        dragMode_ = LongPressing{*index, x};
    } else {
        const DaySeconds position = secAtX(x);
        host_.jumpTo(position);
        dragMode_ = CreatingPending{x, position.value};
    }
}

void SummaryBarGesture::mouseDragged(double x) {
    // By value: the mode changes while it is looked at.
    std::visit([this, x](auto mode) { drag(mode, x); }, DragMode(dragMode_));
}

void SummaryBarGesture::drag(CreatingPending mode, double x) {
    if (!hasMoved(mode.downX, x)) return;
    selections_.pushUndoSnapshot();
    dragMode_ = Creating{selections_.append({mode.startSec}, secAtX(x))};
}

void SummaryBarGesture::drag(Creating mode, double x) {
    if (!selections_.moveEdge(mode.idx, Edge::end, secAtX(x))) dragMode_ = None{};
}

void SummaryBarGesture::drag(Resizing mode, double x) {
    if (!selections_.moveEdge(mode.idx, mode.edge, secAtX(x))) dragMode_ = None{};
}

void SummaryBarGesture::drag(LongPressing mode, double x) {
    if (!hasMoved(mode.downX, x)) return;
    timer_->stop();
    dragMode_ = None{};
}

void SummaryBarGesture::mouseUp() {
    timer_->stop();
    const DragMode released = std::exchange(dragMode_, None{});
    if (const auto* creating = std::get_if<Creating>(&released)) selections_.settle(creating->idx);
    if (const auto* resizing = std::get_if<Resizing>(&released)) selections_.settle(resizing->idx);
}

void SummaryBarGesture::commitLongPressDelete() {
    const auto* pressed = std::get_if<LongPressing>(&dragMode_);
    if (!pressed) return;
    const std::size_t index = pressed->idx;
    dragMode_ = None{};
    if (index >= selections_.selections().size()) return;
    selections_.pushUndoSnapshot();
    selections_.remove(index);
}

}  // namespace sonavault
