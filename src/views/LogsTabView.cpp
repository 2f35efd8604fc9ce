#include "views/LogsTabView.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>

#include "review/LogsTabLayout.h"
#include "views/ActionBarResizeHandle.h"
#include "views/BarGround.h"
#include "views/ExportSelectionsButton.h"
#include "views/Hints.h"
#include "views/LaneLabelsColumnView.h"
#include "views/Painting.h"
#include "views/PassThroughLabel.h"
#include "views/Theme.h"

namespace sonavault {
namespace {

Size sizeOf(const QWidget& view) {
    return {static_cast<double>(view.width()), static_cast<double>(view.height())};
}

QFont emptyStateFont() {
    QFont font = interfaceFont(16);
    font.setItalic(true);
    return font;
}

}  // namespace

LogsTabView::LogsTabView(TimelineHost& timeline, DateListHost& days, TransportActions transport,
                         QWidget* parent)
    : QWidget(parent),
      timeline_(timeline),
      dateListScroll_(new DateListView(days, this)),
      filterBarView_(new FilterBarView(this)),
      laneLabelsColumn_(new LaneLabelsColumnView(timeline, this)),
      lanesScrollView_(new LanesScrollView(timeline, this)),
      actionBarResizeHandle_(new ActionBarResizeHandle(timeline, this)),
      vuMeterL_(new LevelMeterView(QStringLiteral("left channel"), this)),
      vuMeterR_(new LevelMeterView(QStringLiteral("right channel"), this)),
      emptyStateLabel_(new PassThroughLabel(emptyStateFont(), whiteLevel(0.45), this)),
      exportSelectionsButton_(new ExportSelectionsButton(this)),
      zoomBarView_(new ZoomBarView(this)),
      transportView_(new TransportView(std::move(transport), this)) {
    setNames();
    setHints();
    stackOverlays();
    connect(exportSelectionsButton_, &QAbstractButton::clicked, this, [this] {
        if (onExportSelections) onExportSelections();
    });
    // The summary bar moves with the lanes, and so does what hangs on it.
    connect(lanesScrollView_->verticalScrollBar(), &QScrollBar::valueChanged, this, [this](int y) {
        laneLabelsColumn_->scrollToY(y);
        if (!layingOut_) placeOverlays();
    });
}

void LogsTabView::setNames() {
    setObjectName(QStringLiteral("logsTabView"));
    dateListScroll_->setObjectName(QStringLiteral("dateListScroll"));
    filterBarView_->setObjectName(QStringLiteral("filterBarView"));
    laneLabelsColumn_->setObjectName(QStringLiteral("laneLabelsColumn"));
    lanesScrollView_->setObjectName(QStringLiteral("lanesScrollView"));
    actionBarResizeHandle_->setObjectName(QStringLiteral("actionBarResizeHandle"));
    vuMeterL_->setObjectName(QStringLiteral("vuMeterL"));
    vuMeterR_->setObjectName(QStringLiteral("vuMeterR"));
    emptyStateLabel_->setObjectName(QStringLiteral("emptyStateLabel"));
    exportSelectionsButton_->setObjectName(QStringLiteral("exportSelectionsButton"));
    zoomBarView_->setObjectName(QStringLiteral("zoomBarView"));
    transportView_->setObjectName(QStringLiteral("transportView"));
}

void LogsTabView::setHints() {
    setSvHint(*vuMeterL_, QStringLiteral("Live VU meter, left channel."));
    setSvHint(*vuMeterR_, QStringLiteral("Live VU meter, right channel."));
    setSvHint(*exportSelectionsButton_,
              QStringLiteral("Export every selection on this day as separate MP3 airchecks."));
}

void LogsTabView::stackOverlays() {
    emptyStateLabel_->raise();
    actionBarResizeHandle_->raise();
    vuMeterL_->raise();
    vuMeterR_->raise();
    exportSelectionsButton_->raiseWithShadow();
}

void LogsTabView::layOutLogsTab() {
    // A view that takes another size may ask for the layout that gave it.
    if (layingOut_) return;
    const QScopedValueRollback<bool> guard(layingOut_, true);
    placeRegions();
    relayoutTimeline();
    placeOverlays();
}

void LogsTabView::placeRegions() {
    const LogsTabFrames frames = logsTabFrames(sizeOf(*this));
    place(*dateListScroll_, toQRect(frames.dateListScroll));
    place(*filterBarView_, toQRect(frames.filterBar));
    place(*transportView_, toQRect(frames.transport));
    place(*zoomBarView_, toQRect(frames.zoomBar));
    place(*lanesScrollView_, toQRect(frames.lanesScroll));
    place(*exportSelectionsButton_, toQRect(frames.exportSelectionsButton));
}

void LogsTabView::relayoutTimeline() {
    const Size clip = lanesScrollView_->clipSize();
    const double actionBarHeight = timeline_.actionBarHeight();
    const Box labels = laneLabelsFrame(sizeOf(*this), clip.height);
    place(*laneLabelsColumn_, toQRect(labels));
    laneLabelsColumn_->relayout(labels.height, actionBarHeight);
    lanesScrollView_->lanesInnerView().relayout(
        {contentWidth(clip.width, timeline_.zoomMult()), clip.height, 0, actionBarHeight});
}

void LogsTabView::placeOverlays() {
    LanesInnerView& inner = lanesScrollView_->lanesInnerView();
    const double top = inner.mapTo(this, QPoint(0, 0)).y() + inner.summaryBarFrame().y;
    const TimelineOverlays overlays = timelineOverlays(sizeOf(*this), top);
    place(*vuMeterL_, toQRect(overlays.vuMeterL));
    place(*vuMeterR_, toQRect(overlays.vuMeterR));
    place(*actionBarResizeHandle_, toQRect(overlays.actionBarResizeHandle));
    place(*emptyStateLabel_, toQRect(overlays.emptyStateLabel));
}

void LogsTabView::showExportSelectionsButton(const std::optional<std::string>& title) {
    if (title) {
        exportSelectionsButton_->setText(toQString(*title));
        exportSelectionsButton_->setAccessibleName(toQString(*title));
    }
    exportSelectionsButton_->setVisible(title.has_value());
}

void LogsTabView::showEmptyState(const std::string& text) {
    emptyStateLabel_->showText(toQString(text));
}

void LogsTabView::resizeEvent(QResizeEvent*) {
    layOutLogsTab();
}

// Views that are not shown yet take their sizes only now.
void LogsTabView::showEvent(QShowEvent*) {
    layOutLogsTab();
}

void LogsTabView::paintEvent(QPaintEvent* event) {
    QPainter(this).fillRect(event->rect(), kColorAppBG);
}

DateListView& LogsTabView::dateList() {
    return *dateListScroll_;
}

FilterBarView& LogsTabView::filterBar() {
    return *filterBarView_;
}

ZoomBarView& LogsTabView::zoomBar() {
    return *zoomBarView_;
}

TransportView& LogsTabView::transport() {
    return *transportView_;
}

LanesScrollView& LogsTabView::lanesScroll() {
    return *lanesScrollView_;
}

LevelMeterView& LogsTabView::vuMeterL() {
    return *vuMeterL_;
}

LevelMeterView& LogsTabView::vuMeterR() {
    return *vuMeterR_;
}

}  // namespace sonavault
