#pragma once

#include <QScrollArea>
#include <string>
#include <vector>

#include "store/RecordingModel.h"
#include "views/WheelPoints.h"

namespace sonavault {

class DateRowView;

/// What the list of days asks of the program around it.
///
/// Thread: main.
class DateListHost {
  public:
    virtual ~DateListHost() = default;

    virtual bool isRecording() const = 0;

    /// What the recorder hears. Units: dBFS
    virtual float recordingInputDb() const = 0;

    virtual std::string todayDateString() const = 0;

    virtual void selectAndLoadRecording(const std::string& date) = 0;
    virtual void toggleRecordingFromMenu() = 0;

    /// Asks first.
    virtual void deleteRecording(const DailyRecording& recording) = 0;
};

/// The days on disk, one row each. A click loads the day.
///
/// Thread: main.
class DateListView final : public QScrollArea {
  public:
    /// `host` outlives this view.
    DateListView(DateListHost& host, QWidget* parent);

    /// Builds all rows anew.
    void renderDateList(const std::vector<DailyRecording>& days, const std::string& selectedDate);

    /// Shows the new length and number of markers of a day that is listed.
    void updateLive(const DailyRecording& row);

    /// Brings the indicator and the input level of the live row up to date; costs next to nothing
    /// when nothing changed.
    void refreshLiveRows();

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    void dateRowClicked(const std::string& date);
    void showRowMenu(const DateRowView& row, QPoint position);
    int buildRows(const std::vector<DailyRecording>& days, const std::string& selectedDate);
    void chainRowsForTab(QWidget* first);
    void fitContent();

    DateListHost& host_;
    QWidget* content_;
    QWidget* rowsBox_;                // all rows; another one with each renderDateList()
    std::vector<DateRowView*> rows_;  // from the top
    WholePoints wheel_;
};

}  // namespace sonavault
