#pragma once

#include <QWidget>
#include <optional>

#include "review/TimelineRows.h"
#include "views/TimelineHost.h"

namespace sonavault {

/// The strip across the summary bar's upper edge by which the person makes it higher or lower.
///
/// Thread: main.
class ActionBarResizeHandle final : public QWidget {
  public:
    /// `host` outlives this view.
    ActionBarResizeHandle(TimelineHost& host, QWidget* parent);

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    TimelineHost& host_;
    std::optional<ActionBarResize> drag_;
};

}  // namespace sonavault
