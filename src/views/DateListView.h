#pragma once

#include <QScrollArea>
#include <string>
#include <vector>

#include "store/RecordingModel.h"

namespace sonavault {

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
};

}  // namespace sonavault
