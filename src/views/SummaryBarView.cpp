#include "views/SummaryBarView.h"

#include <QLinearGradient>
#include <algorithm>

#include "review/TimelineMapping.h"
#include "views/Painting.h"
#include "views/PixelGrid.h"

namespace sonavault {

SummaryBarView::SummaryBarView(TimelineHost& host)
    : host_(host), gesture_(*this, host.selections(), host.makeMainTimer()) {}

void SummaryBarView::setFrame(const Box& frame, double timelineWidth) {
    frame_ = frame;
    timelineWidth_ = timelineWidth;
}

double SummaryBarView::trackW() const {
    return mappingWidth(timelineWidth_, frame_.width);
}

void SummaryBarView::paint(QPainter& painter, Extent exposed) const {
    const PixelGrid grid(painter);
    const QRectF bounds = grid.area(frame_);
    const QRectF part(QPointF(std::max(bounds.left(), grid.x(exposed.left)), bounds.top()),
                      QPointF(std::min(bounds.right(), grid.x(exposed.right)), bounds.bottom()));
    QLinearGradient ground(bounds.topLeft(), bounds.bottomLeft());
    ground.setColorAt(0, toQColor(kColorSummaryTop));
    ground.setColorAt(1, toQColor(kColorSummaryBot));
    painter.fillRect(part, ground);

    SummaryScene scene = host_.summaryScene();
    scene.size = {frame_.width, frame_.height};
    scene.trackW = trackW();
    const Extent inBar{exposed.left - frame_.x, exposed.right - frame_.x};
    for (const FilledBox& each : summaryBarFills(scene, inBar)) {
        const Box& box = each.box;
        const QRectF fill = grid.area({box.x + frame_.x, box.y + frame_.y, box.width, box.height});
        // The whole day is too long to be filled at a high zoom.
        const QRectF shown = fill.intersected(part);
        if (!shown.isEmpty()) painter.fillRect(shown, toQColor(each.colour));
    }
}

bool SummaryBarView::resizesAt(Point place) const {
    const auto zones = resizeZones(host_.selections().selections(), trackW(), frame_.height);
    const Point inBar{place.x - frame_.x, place.y - frame_.y};
    return std::any_of(zones.begin(), zones.end(),
                       [&](const Box& each) { return each.contains(inBar); });
}

}  // namespace sonavault
