#pragma once

#include <QWidget>
#include <functional>
#include <optional>
#include <string>

#include "views/BannerView.h"
#include "views/HintFinder.h"
#include "views/SVTabBarView.h"
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
    void setTabs(QWidget* logs, QWidget* airchecks);

    StatusBarView& statusBar() { return *statusBarView_; }

    /// The tab that is shown: "logs" or "airchecks".
    const std::string& activeTab() const { return activeTab_; }

  protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool focusNextPrevChild(bool next) override;

  private:
    void buildTabBar();
    void layOut();
    void tabSelected(const std::string& id);
    void showActiveTab();

    bool isOfThisWindow(const QObject* receiver) const;
    void pointerMoved(QPoint globalPoint);
    void pointerLeft();
    void updateHint();

    int readingPlace(const QWidget& view) const;
    QWidgetList tabStops() const;

    BannerView* bannerView_;
    SVTabBarView* tabBar_;
    QWidget* logsPage_ = nullptr;
    QWidget* airchecksPage_ = nullptr;
    StatusBarView* statusBarView_;
    std::string activeTab_ = "logs";

    std::optional<QPoint> pointer_;  ///< while it is over this view
    HintedView lastHinted_;          ///< only to be compared: the view may be gone
};

}  // namespace sonavault
