#pragma once

#include <QWidget>

#include "views/TimelineHost.h"

namespace sonavault {

/// The strip across the summary bar's upper edge by which the person makes it higher or lower.
///
/// Thread: main.
class ActionBarResizeHandle final : public QWidget {
  public:
    /// `host` outlives this view.
    ActionBarResizeHandle(TimelineHost& host, QWidget* parent);
};

}  // namespace sonavault
