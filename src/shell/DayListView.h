#pragma once

#include <QListWidget>
#include <functional>
#include <string>
#include <vector>

#include "store/RecordingModel.h"

namespace sonavault {

/// The recorded days, newest first, a line each.
class DayListView final : public QListWidget {
  public:
    explicit DayListView(QWidget* parent);

    std::function<void(const std::string& date)> onDateChosen;
    std::function<void(const DailyRecording& row)> onDeleteRequested;

    /// Shows these rows instead of all that it showed, and marks the selected date's.
    void render(const std::vector<DailyRecording>& rows, const std::string& selectedDate);

    /// Shows the new values in the row of that date, if it is there.
    void updateRow(const DailyRecording& row);

  protected:
    void contextMenuEvent(QContextMenuEvent* event) override;

  private:
    std::vector<DailyRecording> rows_;
};

}  // namespace sonavault
