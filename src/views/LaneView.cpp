#include "views/LaneView.h"

#include <algorithm>

#include "review/Lanes.h"
#include "review/MarkerLook.h"
#include "views/Painting.h"
#include "views/PixelGrid.h"

namespace sonavault {

void LaneView::paint(QPainter& painter, Extent exposed) const {
    const Box& frame = row_.frame;
    const double left = std::max(frame.x, exposed.left);
    const double width = std::min(frame.right(), exposed.right) - left;
    if (!(width > 0)) return;
    const PixelGrid grid(painter);
    const QRectF ground = grid.area({left, frame.y, width, frame.height});
    painter.fillRect(ground, toQColor(descriptionOf(row_.lane).tint));
    QRectF separator = grid.line({left, frame.bottom() - 1, width, 1});
    separator.moveBottom(ground.bottom());
    separator.setRight(ground.right());
    painter.fillRect(separator, toQColor(kColorLaneSep));

    // Markers stand on whole pixels, up to half a point beside the place that was asked for.
    const Extent reach{exposed.left - 1, exposed.right + 1};
    MarkerPainter::Session session(*markers_, painter);
    for (const Marker* each : host_->laneMarkers().exposed(row_.lane, size(), reach)) {
        Box box = markerFrame(*each, size());
        box.x += frame.x;
        box.y += frame.y;
        session.paint(*each, box, reach);
    }
}

const Marker* LaneView::markerAt(Point place) const {
    const Box& frame = row_.frame;
    if (!frame.contains(place)) return nullptr;
    return host_->laneMarkers().at(row_.lane, size(), {place.x - frame.x, place.y - frame.y});
}

}  // namespace sonavault
