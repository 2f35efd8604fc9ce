#pragma once

#include <QMenu>
#include <QWidget>
#include <functional>

#include "review/DateRow.h"
#include "store/RecordingModel.h"
#include "views/RecordingClusterView.h"

namespace sonavault {

class DateListHost;

/// One day in the list of days.
///
/// Thread: main.
class DateRowView final : public QWidget {
  public:
    /// `host` outlives this view.
    DateRowView(const DailyRecording& recording, DateListHost& host, QWidget* parent);

    const DailyRecording& recording() const { return recording_; }

    /// The person clicked the row. What this leads to may put another row in this one's place, so
    /// the row itself does nothing after it.
    std::function<void(const std::string& date)> onClicked;

    /// The person asked for the row's menu, at that place of the screen.
    std::function<void(QPoint position)> onMenuRequested;

    /// The height that the day's lines need. Units: points
    int rowHeight() const;

    void setSelected(bool selected);
    bool isSelected() const { return isSelected_; }

    /// Shows another length and number of markers; the row's other lines stay as they are.
    void updateLive(const DailyRecording& recording);

    /// Brings the light at the left, and the level of a live row, up to date; draws anew only what
    /// changed, so that it may be called at every tick.
    void updateRecordingIndicator();
    void updateLevels();

    /// What can be done with the day, to be shown once: it goes when it closes, and doesn't need
    /// this row any more. Owns: `parent`, the menu.
    QMenu* makeMenu(QWidget* parent) const;

    /// As if clicked.
    void activate();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void drawIndicator(QPainter& painter) const;
    void drawText(QPainter& painter, const DateRowText& text) const;
    void drawRules(QPainter& painter) const;
    void drawFocus(QPainter& painter) const;

    DateListHost& host_;
    DailyRecording recording_;
    DateRowLook look_;
    DateIndicator indicator_;
    RecordingClusterView* cluster_ = nullptr;  // on a live row only
    bool isSelected_ = false;
};

}  // namespace sonavault
