#include "views/LanesInnerView.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <chrono>

#include "review/MarkerLook.h"
#include "review/TimelineMapping.h"
#include "views/Painting.h"
#include "views/TimelineAccessible.h"

namespace sonavault {

namespace {

Point toPoint(const QPointF& place) {
    return {place.x(), place.y()};
}

bool reaches(const Box& frame, const QRect& part) {
    // A row's edge may lie on the pixel beside it.
    return frame.y < part.bottom() + 2.0 && frame.bottom() > part.top() - 1.0;
}

}  // namespace

LanesInnerView::LanesInnerView(TimelineHost& host, QWidget* parent)
    : QWidget(parent), host_(host), summaryBar_(host), standsStill_(host.makeMainTimer()) {
    installTimelineAccessible();
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setFocusPolicy(Qt::TabFocus);
    setAccessibleName(QStringLiteral("Timeline"));
    setSvHint(*this, QStringLiteral("Click to seek. Hover any marker for its label. Two-finger "
                                    "swipe to zoom."));
}

void LanesInnerView::relayout(const RowRoom& room) {
    rows_ = layOutRows(host_.visibleLanes(), room);
    lanes_.clear();
    for (const LaneRow& each : rows_.lanes) lanes_.emplace_back(host_, markers_, each);
    summaryBar_.setFrame(rows_.summaryBar, rows_.timelineWidth);
    timeAxis_.setFrame(rows_.timeAxis);
    playhead_.setFrame(
        sonavault::playheadFrame(host_.playheadSec(), rows_.timelineWidth, rows_.content.height));
    resize(qRound(rows_.content.width), qRound(rows_.content.height));
    update();
    rebuildSummaryBarCursors();
}

double LanesInnerView::timelineWidth() const {
    return rows_.timelineWidth;
}

Box LanesInnerView::summaryBarFrame() const {
    return summaryBar_.frame();
}

void LanesInnerView::setPlayheadFrame(const Box& frame) {
    const double scale = devicePixelRatioF();
    const Box& before = playhead_.frame();
    const bool seen = qRound64(frame.x * scale) != qRound64(before.x * scale) ||
                      frame.width != before.width || frame.height != before.height;
    if (seen) update(playhead_.covered());
    playhead_.setFrame(frame);
    if (seen) update(playhead_.covered());
    tellScreenReader();
}

void LanesInnerView::redrawSummaryBar() {
    update(toQRectF(summaryBar_.frame()).toAlignedRect());
}

void LanesInnerView::rebuildSummaryBarCursors() {
    const bool resizes = pointer_ && summaryBar_.resizesAt(toPoint(mapFromGlobal(*pointer_)));
    const Qt::CursorShape shape = resizes ? Qt::SizeHorCursor : Qt::ArrowCursor;
    if (cursor().shape() != shape) setCursor(shape);
}

const Marker* LanesInnerView::markerAt(Point place) const {
    for (const LaneView& each : lanes_)
        if (const Marker* marker = each.markerAt(place)) return marker;
    return nullptr;
}

QString LanesInnerView::hintAt(QPoint point) const {
    const Marker* marker = markerAt(toPoint(point));
    return marker ? toQString(markerReadout(*marker)) : QString();
}

QString LanesInnerView::playheadReadout() const {
    const DaySeconds playhead = host_.playheadSec();
    std::string text = formatTime(playhead.value);
    const double x = xAt(playhead, mappingWidth(rows_.timelineWidth, width()));
    for (const LaneView& each : lanes_)
        if (const Marker* marker = each.markerAt({x, each.frame().y + each.frame().height / 2}))
            text += "; " + markerReadout(*marker);
    return toQString(text);
}

void LanesInnerView::tellScreenReader() {
    if (!screenReaderListens()) return;
    // Twenty values a second are no news to anybody: the one at which it comes to rest is.
    constexpr std::chrono::milliseconds kRest{500};
    standsStill_->start(kRest, [this] { tellTimelineValue(*this); });
}

void LanesInnerView::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    for (const QRect& part : event->region()) {
        // Each alone: what is half transparent must not be drawn twice where two come near.
        painter.setClipRect(part);
        paintPart(painter, part);
    }
}

void LanesInnerView::paintPart(QPainter& painter, const QRect& part) {
    const Extent exposed{static_cast<double>(part.left()) - 1,
                         static_cast<double>(part.left() + part.width()) + 1};
    paintBesideRows(painter, part);
    for (const LaneView& each : lanes_)
        if (reaches(each.frame(), part)) each.paint(painter, exposed);
    if (reaches(summaryBar_.frame(), part)) summaryBar_.paint(painter, exposed);
    if (reaches(timeAxis_.frame(), part)) timeAxis_.paint(painter, host_.zoomMult(), exposed);
    if (playhead_.covered().intersects(part)) playhead_.paint(painter);
}

void LanesInnerView::paintBesideRows(QPainter& painter, const QRect& part) const {
    const int rowsEnd = static_cast<int>(rows_.timelineWidth) - 1;
    const int lastRow = static_cast<int>(rows_.content.height) - 1;
    if (part.right() >= rowsEnd)
        painter.fillRect(part.intersected(QRect(rowsEnd, 0, width() - rowsEnd, height())),
                         Qt::white);
    if (part.bottom() >= lastRow)
        painter.fillRect(part.intersected(QRect(0, lastRow, width(), height() - lastRow)),
                         Qt::white);
}

void LanesInnerView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    const Point place = toPoint(event->position());
    if (summaryBar_.frame().contains(place)) {
        draggingBar_ = true;
        window()->installEventFilter(this);
        summaryBar_.mouseDown(place.x);
    } else {
        clickBareTimeline(place);
    }
}

void LanesInnerView::clickBareTimeline(Point place) {
    const Marker* marker = markerAt(place);
    host_.jumpTo(marker ? DaySeconds{marker->timeSec}
                        : secAt(place.x, mappingWidth(rows_.timelineWidth, width())));
}

void LanesInnerView::mouseMoveEvent(QMouseEvent* event) {
    pointer_ = event->globalPosition();
    // A dialog may have taken the release.
    if (draggingBar_ && !(event->buttons() & Qt::LeftButton)) endGesture();
    if (draggingBar_) summaryBar_.mouseDragged(event->position().x());
    rebuildSummaryBarCursors();
}

void LanesInnerView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    endGesture();
}

bool LanesInnerView::eventFilter(QObject* watched, QEvent* event) {
    // The dialog takes the release, and what is no longer held must not be deleted.
    if (event->type() == QEvent::WindowBlocked) endGesture();
    return QWidget::eventFilter(watched, event);
}

void LanesInnerView::endGesture() {
    if (!draggingBar_) return;
    draggingBar_ = false;
    window()->removeEventFilter(this);
    summaryBar_.mouseUp();
}

void LanesInnerView::leaveEvent(QEvent* event) {
    pointer_.reset();
    rebuildSummaryBarCursors();
    QWidget::leaveEvent(event);
}

}  // namespace sonavault
