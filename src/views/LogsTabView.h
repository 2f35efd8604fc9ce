#pragma once

#include <QWidget>
#include <functional>
#include <optional>
#include <string>

#include "views/DateListView.h"
#include "views/FilterBarView.h"
#include "views/LanesScrollView.h"
#include "views/LevelMeterView.h"
#include "views/TimelineHost.h"
#include "views/TransportView.h"
#include "views/ZoomBarView.h"

namespace sonavault {

class ActionBarResizeHandle;
class ExportSelectionsButton;
class LaneLabelsColumnView;
class PassThroughLabel;

/// The tab in which days are heard and cut: the days on the left, the timeline with its bars on the
/// right.
///
/// Thread: main.
class LogsTabView final : public QWidget {
  public:
    /// The hosts outlive this view.
    LogsTabView(TimelineHost& timeline, DateListHost& days, TransportActions transport,
                QWidget* parent);

    /// The person pressed "Export selections to file".
    std::function<void()> onExportSelections;

    /// Computes all frames of the tab anew: on a resize, a zoom step, another choice of lanes or
    /// another height of the summary bar.
    void layOutLogsTab();

    /// Without a title the button is hidden.
    void showExportSelectionsButton(const std::optional<std::string>& title);

    /// What stands over the lanes of a day without events; hidden when there is no text.
    void showEmptyState(const std::string& text);

    DateListView& dateList();
    FilterBarView& filterBar();
    ZoomBarView& zoomBar();
    TransportView& transport();
    LanesScrollView& lanesScroll();
    LevelMeterView& vuMeterL();
    LevelMeterView& vuMeterR();

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void setHints();
    void setNames();
    void stackOverlays();
    void placeRegions();
    void relayoutTimeline();
    void placeOverlays();

    TimelineHost& timeline_;

    // In the order in which the keyboard goes through them. Owns: none, they are children.
    DateListView* dateListScroll_;
    FilterBarView* filterBarView_;
    LaneLabelsColumnView* laneLabelsColumn_;
    LanesScrollView* lanesScrollView_;
    ActionBarResizeHandle* actionBarResizeHandle_;
    LevelMeterView* vuMeterL_;
    LevelMeterView* vuMeterR_;
    PassThroughLabel* emptyStateLabel_;
    ExportSelectionsButton* exportSelectionsButton_;
    ZoomBarView* zoomBarView_;
    TransportView* transportView_;

    bool layingOut_ = false;
};

}  // namespace sonavault
