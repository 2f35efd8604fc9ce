#include "views/ActionBarResizeHandle.h"

#include <QMouseEvent>

#include "views/Hints.h"

namespace sonavault {

namespace {

/// Of the screen and not of the handle, which moves along with the drag.
double upwards(const QMouseEvent& event) {
    return -event.globalPosition().y();
}

}  // namespace

ActionBarResizeHandle::ActionBarResizeHandle(TimelineHost& host, QWidget* parent)
    : QWidget(parent), host_(host) {
    setCursor(Qt::SizeVerCursor);
    setAccessibleName(QStringLiteral("Height of the summary bar"));
    setSvHint(*this, QStringLiteral("Drag up or down to resize the bottom transport area."));
}

void ActionBarResizeHandle::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    drag_.emplace(upwards(*event), host_.actionBarHeight());
}

void ActionBarResizeHandle::mouseMoveEvent(QMouseEvent* event) {
    if (!drag_) return event->ignore();
    if (const auto height = drag_->heightAt(upwards(*event), host_.actionBarHeight()))
        host_.resizeActionBar(*height);
}

void ActionBarResizeHandle::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !drag_) return event->ignore();
    drag_.reset();
    host_.keepActionBarHeight();
}

}  // namespace sonavault
