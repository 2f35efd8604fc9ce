#pragma once

#include <QWidget>

#include "shell/DayListView.h"
#include "shell/RecordingPanel.h"
#include "shell/StatusBarView.h"

namespace sonavault {

/// The window's content, which takes the keys that no other widget wants.
class KeyResponderView final : public QWidget {
  public:
    /// As the window is opened first, and the least that the person can make of it. Units: pixels,
    /// without the menu bar
    static constexpr QSize kContentSize{1480, 920};
    static constexpr QSize kLeastContentSize{1100, 600};

    KeyResponderView();

    DayListView& dayList() { return *dayList_; }
    TextView& emptyState() { return *emptyState_; }
    RecordingPanel& recordingPanel() { return *recordingPanel_; }
    StatusBarView& statusBar() { return *statusBar_; }

  private:
    DayListView* dayList_;
    TextView* emptyState_;
    RecordingPanel* recordingPanel_;
    StatusBarView* statusBar_;
};

}  // namespace sonavault
