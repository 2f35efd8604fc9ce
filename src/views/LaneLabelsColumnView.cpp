#include "views/LaneLabelsColumnView.h"

#include <QPainter>

#include "review/Lanes.h"
#include "views/Painting.h"
#include "views/PixelGrid.h"
#include "views/Theme.h"

namespace sonavault {

namespace {

TextView* makeLabel(const LaneDescription& lane, QWidget* parent) {
    auto* label = new TextView(toQString(lane.displayName), interfaceFont(11, QFont::DemiBold),
                               whiteLevel(0.4), parent);
    label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    label->setWordWrap(true);
    label->setAccessibleName(label->text().replace(QLatin1Char('\n'), QLatin1Char(' ')));
    setSvHint(*label, toQString(laneHint(lane.key)));
    label->hide();
    return label;
}

}  // namespace

LaneLabelsColumnView::LaneLabelsColumnView(TimelineHost& host, QWidget* parent)
    : QWidget(parent), host_(host) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setLayoutDirection(Qt::LeftToRight);
    for (const LaneDescription& each : laneOrder) labels_[each.lane] = makeLabel(each, this);
}

void LaneLabelsColumnView::relayout(double totalH, double actionBarH) {
    cells_ = layOutLaneLabels(host_.visibleLanes(), width(), totalH, actionBarH);
    placeLabels();
    update();
}

void LaneLabelsColumnView::scrollToY(int y) {
    if (y == scrollY_) return;
    scrollY_ = y;
    placeLabels();
    update();
}

void LaneLabelsColumnView::placeLabels() {
    for (const auto& [lane, label] : labels_)
        label->setVisible(host_.visibleLanes().contains(lane));
    for (const LaneLabelCell& each : cells_)
        labels_.at(each.lane)->setGeometry(toQRect(each.label).translated(0, -scrollY_));
}

QString LaneLabelsColumnView::hintAt(QPoint point) const {
    const Point place{static_cast<double>(point.x()), static_cast<double>(point.y()) + scrollY_};
    for (const LaneLabelCell& each : cells_)
        if (each.backing.contains(place)) return toQString(descriptionOf(each.lane).hint);
    return {};
}

void LaneLabelsColumnView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::white);
    const PixelGrid grid(painter);
    for (const LaneLabelCell& each : cells_) {
        Box backing = each.backing;
        backing.y -= scrollY_;
        painter.fillRect(grid.area(backing), toQColor(descriptionOf(each.lane).tint));
    }
}

}  // namespace sonavault
