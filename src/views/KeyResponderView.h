#pragma once

#include <QWidget>
#include <functional>
#include <string>

#include "views/LogsTabView.h"
#include "views/StatusBarView.h"

namespace sonavault {

/// The window's content: banner, tabs, status bar. It takes the keys that no other widget wants,
/// and shows the hover text of whatever is under the pointer in the status line.
///
/// Thread: main.
class KeyResponderView final : public QWidget {
  public:
    /// As the window is opened first, and the least that the person can make of it. Units: pixels,
    /// without the menu bar
    static constexpr QSize kContentSize{1480, 920};
    static constexpr QSize kLeastContentSize{1100, 600};

    KeyResponderView();

    std::function<void()> onHelpClicked;
    std::function<void()> onSettingsClicked;

    /// Gives the tabs their contents, once. Owns: both from here on.
    void setTabs(LogsTabView* logs, QWidget* airchecks);

    LogsTabView& logsTab();
    StatusBarView& statusBar();

    /// The tab that is shown: "logs" or "airchecks".
    const std::string& activeTab() const;
};

}  // namespace sonavault
