#include "views/SVTabBarView.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>

#include "review/WindowLayout.h"
#include "views/ButtonLook.h"
#include "views/Hints.h"
#include "views/Painting.h"
#include "views/PixelGrid.h"
#include "views/SVTabHotspotView.h"
#include "views/TabAccessibility.h"
#include "views/Theme.h"

namespace sonavault {
namespace {

constexpr double kTabCorner = 8;
constexpr int kTitleSize = 17;
constexpr Colour kColorTabSelected{0.9, 0.91, 0.93};
constexpr Colour kColorTabStroke{0.55, 0.58, 0.62};
constexpr QColor kColorTabInactive{155, 162, 177};

// The upper corners are round, the lower ones square.
QPainterPath tabShape(const QRectF& box, double corner) {
    const QSizeF round(2 * corner, 2 * corner);
    QPainterPath path;
    path.moveTo(box.bottomLeft());
    path.lineTo(box.left(), box.top() + corner);
    path.arcTo(QRectF(box.topLeft(), round), 180, -90);
    path.arcTo(QRectF(QPointF(box.right() - round.width(), box.top()), round), 90, -90);
    path.lineTo(box.bottomRight());
    path.closeSubpath();
    return path;
}

struct TabLook {
    QColor ground;
    QColor title;
    QFont::Weight weight;
};

TabLook tabLook(bool selected) {
    if (selected) return {toQColor(kColorTabSelected), QColor(0, 0, 0, 217), QFont::Bold};
    return {kColorTabInactive, Qt::white, QFont::DemiBold};
}

void drawTab(QPainter& painter, const Box& frame, const QString& title, bool selected) {
    const TabLook look = tabLook(selected);
    // Neighbours share the line between them. It is filled, as a thin pen blunts the lower corners.
    const PixelGrid grid(painter);
    const QRectF box = grid.snapped(toQRectF(frame).adjusted(0, 0, 1, 0));
    const double line = grid.hairline();
    painter.fillPath(tabShape(box, kTabCorner), toQColor(kColorTabStroke));
    painter.fillPath(tabShape(box.adjusted(line, line, -line, -line), kTabCorner - line),
                     look.ground);
    painter.setPen(look.title);
    painter.setFont(interfaceFont(kTitleSize, look.weight));
    painter.drawText(toQRectF(frame), Qt::AlignCenter, title);
}

}  // namespace

SVTabBarView::SVTabBarView(QWidget* parent) : QWidget(parent) {
    installTabAccessibility();
    setAccessibleName(QStringLiteral("Tabs"));
    setFocusPolicy(Qt::TabFocus);
}

void SVTabBarView::setTabs(std::vector<SVTab> tabs) {
    tabs_ = std::move(tabs);
    rebuildTabHotspots();
    update();
}

void SVTabBarView::setSelectedTabId(const std::string& id) {
    selectedTabId_ = id;
    rebuildTabHotspots();
    update();
}

void SVTabBarView::setTabHints(std::map<std::string, std::string> hints) {
    tabHints_ = std::move(hints);
    rebuildTabHotspots();
    update();
}

void SVTabBarView::choose(const std::string& id) {
    if (id == selectedTabId_) return;
    setSelectedTabId(id);
    if (onSelectionChanged) onSelectionChanged(selectedTabId_);
}

void SVTabBarView::rebuildTabHotspots() {
    for (QObject* child : QObjectList(children())) {
        if (dynamic_cast<SVTabHotspotView*>(child)) delete child;
    }
    const std::vector<Box> frames = tabFrames(width(), tabs_.size());
    for (std::size_t i = 0; i < tabs_.size(); ++i) {
        auto* hotspot = new SVTabHotspotView(tabs_[i].id, this);
        hotspot->setGeometry(toQRect(frames[i]));
        hotspot->setAccessibleName(toQString(tabs_[i].title));
        const auto hint = tabHints_.find(tabs_[i].id);
        if (hint != tabHints_.end()) setSvHint(*hotspot, toQString(hint->second));
        hotspot->show();
    }
}

void SVTabBarView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const std::vector<Box> frames = tabFrames(width(), tabs_.size());
    // The selected one last, so that it stands in front of the others.
    for (const bool selected : {false, true}) {
        for (std::size_t i = 0; i < tabs_.size(); ++i) {
            if ((tabs_[i].id == selectedTabId_) != selected) continue;
            drawTab(painter, frames[i], toQString(tabs_[i].title), selected);
            if (selected)
                paintFocusRing(painter, *this, toQRectF(frames[i]).adjusted(4, 4, -3, -4),
                               kTabCorner - 3, QColor(0, 0, 0, 110));
        }
    }
}

void SVTabBarView::resizeEvent(QResizeEvent*) {
    rebuildTabHotspots();
}

void SVTabBarView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    const QPointF place = event->position();
    const auto tab = tabAt(tabFrames(width(), tabs_.size()), {place.x(), place.y()});
    if (tab) choose(tabs_[*tab].id);
}

void SVTabBarView::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Left:
        case Qt::Key_Up:
            return chooseNeighbour(-1);
        case Qt::Key_Right:
        case Qt::Key_Down:
            return chooseNeighbour(1);
        default:
            QWidget::keyPressEvent(event);
    }
}

void SVTabBarView::chooseNeighbour(int step) {
    const auto selected = std::find_if(
        tabs_.begin(), tabs_.end(), [this](const SVTab& tab) { return tab.id == selectedTabId_; });
    if (selected == tabs_.end()) return;
    const auto neighbour = selected - tabs_.begin() + step;
    if (neighbour < 0 || neighbour >= std::ssize(tabs_)) return;
    choose(tabs_[static_cast<std::size_t>(neighbour)].id);
}

}  // namespace sonavault
