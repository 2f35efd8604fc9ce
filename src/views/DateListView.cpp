#include "views/DateListView.h"

#include <QPainter>
#include <QScrollBar>
#include <algorithm>

#include "review/LogsTabLayout.h"
#include "views/DateListAccessible.h"
#include "views/DateRowView.h"
#include "views/Hints.h"
#include "views/OverlayScrollBar.h"
#include "views/Painting.h"
#include "views/TextView.h"
#include "views/Theme.h"

namespace sonavault {
namespace {

constexpr int kWidth = static_cast<int>(kDateListWidth);
constexpr int kHeaderHeight = static_cast<int>(kDateListHeaderHeight);

/// The list's heading.
class HeaderView final : public QWidget {
  public:
    explicit HeaderView(QWidget* parent) : QWidget(parent) {
        setGeometry(0, 0, kWidth, kHeaderHeight);
        auto* title = new TextView(QStringLiteral("DAILY RECORDINGS"),
                                   interfaceFont(13, QFont::Bold), whiteLevel(0.4), this);
        title->setGeometry(14, 10, 250, 20);
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), toQColor(kColorDateListHeaderBG));
        painter.fillRect(0, height() - 1, width(), 1, toQColor(kColorDateListSep));
    }
};

QPalette groundPalette() {
    QPalette palette;
    palette.setColor(QPalette::Window, toQColor(kColorDateListBG));
    return palette;
}

}  // namespace

DateListView::DateListView(DateListHost& host, QWidget* parent)
    : QScrollArea(parent),
      host_(host),
      content_(new QWidget),
      rowsBox_(new DateRowsView(content_)) {
    installDateListAccessibility();
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);  // its rows take the keys, and only by Tab
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setPalette(groundPalette());
    setAccessibleName(QStringLiteral("Daily recordings"));
    setSvHint(*this,
              QStringLiteral("Days Sonavault has recorded — click any date to load that day."));
    new HeaderView(content_);
    setWidget(content_);
    new OverlayScrollBar(*this, Qt::Vertical);
    fitContent();
}

void DateListView::renderDateList(const std::vector<DailyRecording>& days,
                                  const std::string& selectedDate) {
    const auto focused = std::find_if(rows_.begin(), rows_.end(),
                                      [](const DateRowView* each) { return each->hasFocus(); });
    const std::string focusedDate = focused == rows_.end() ? "" : (*focused)->recording().date;

    // A row may be in the midst of its event, so the old ones go when that is over.
    QWidget* const before = rowsBox_;
    rows_.clear();
    rowsBox_ = new DateRowsView(content_);
    rowsBox_->setGeometry(0, kHeaderHeight, kWidth, buildRows(days, selectedDate));
    rowsBox_->show();
    chainRowsForTab(before);
    for (DateRowView* each : rows_)
        if (each->recording().date == focusedDate) each->setFocus(Qt::OtherFocusReason);
    before->hide();
    before->deleteLater();
    fitContent();
}

/// Gives the height of all rows.
int DateListView::buildRows(const std::vector<DailyRecording>& days,
                            const std::string& selectedDate) {
    const std::string today = host_.todayDateString();
    rows_.reserve(days.size());
    int y = 0;
    for (const DailyRecording& each : days) {
        auto* row = new DateRowView(each, host_, rowsBox_);
        row->setSelected(each.date == selectedDate);
        row->setGeometry(0, y, kWidth, row->rowHeight());
        setSvHint(*row, toQString(dateRowHint(each.date, today)));
        row->onClicked = [this](const std::string& date) { dateRowClicked(date); };
        row->onMenuRequested = [this, row](QPoint at) { showRowMenu(*row, at); };
        rows_.push_back(row);
        y += row->rowHeight();
    }
    return y;
}

/// New widgets come last in the order of Tab; these belong where those before them were.
void DateListView::chainRowsForTab(QWidget* first) {
    QWidget* previous = first;
    for (DateRowView* each : rows_) {
        setTabOrder(previous, each);
        previous = each;
    }
}

void DateListView::updateLive(const DailyRecording& row) {
    for (DateRowView* each : rows_)
        if (each->recording().date == row.date) each->updateLive(row);
}

void DateListView::refreshLiveRows() {
    for (DateRowView* each : rows_) {
        if (!each->recording().live) continue;
        each->updateRecordingIndicator();
        each->updateLevels();
    }
}

void DateListView::dateRowClicked(const std::string& date) {
    for (DateRowView* each : rows_) each->setSelected(each->recording().date == date);
    host_.selectAndLoadRecording(date);
}

void DateListView::showRowMenu(const DateRowView& row, QPoint position) {
    // It belongs to the list and returns at once: the rows may be rebuilt while it is open.
    row.makeMenu(this)->popup(position);
}

void DateListView::fitContent() {
    const int rowsEnd = kHeaderHeight + rowsBox_->height();
    content_->resize(kWidth, std::max(rowsEnd, viewport()->height()));
}

void DateListView::resizeEvent(QResizeEvent* event) {
    fitContent();
    QScrollArea::resizeEvent(event);
}

void DateListView::wheelEvent(QWheelEvent* event) {
    const int points = wheel_.take(wheelPoints(*event).y());
    verticalScrollBar()->setValue(verticalScrollBar()->value() - points);
    event->accept();
}

}  // namespace sonavault
