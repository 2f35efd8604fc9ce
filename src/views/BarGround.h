#pragma once

#include <QPainter>
#include <QWidget>
#include <optional>

#include "views/Theme.h"

namespace sonavault {

/// The ground of a bar of the logs tab, with a line of one point along its upper edge if `rule` is
/// given.
inline void paintBarGround(QWidget& bar, const std::optional<QColor>& rule = std::nullopt) {
    QPainter painter(&bar);
    painter.fillRect(bar.rect(), kColorPanelBG);
    if (rule) painter.fillRect(QRect(0, 0, bar.width(), 1), *rule);
}

/// Moves and resizes only what does not stand there already.
inline void place(QWidget& view, const QRect& frame) {
    if (view.geometry() != frame) view.setGeometry(frame);
}

}  // namespace sonavault
