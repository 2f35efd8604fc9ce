#pragma once

#include <QWidget>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace sonavault {

struct SVTab {
    std::string id;
    std::string title;
};

/// The window's tabs. A click chooses one; so do the arrow keys, of which those up and down work
/// also where the timeline has taken the others.
///
/// Thread: main.
class SVTabBarView final : public QWidget {
  public:
    explicit SVTabBarView(QWidget* parent);

    /// Told when the person chose another tab than the selected one.
    std::function<void(const std::string& id)> onSelectionChanged;

    void setTabs(std::vector<SVTab> tabs);
    const std::vector<SVTab>& tabs() const { return tabs_; }

    /// Setting tells nobody.
    void setSelectedTabId(const std::string& id);
    const std::string& selectedTabId() const { return selectedTabId_; }

    /// The hover text of each tab, by its id.
    void setTabHints(std::map<std::string, std::string> hints);

    /// As if the person had clicked on that tab.
    void choose(const std::string& id);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void rebuildTabHotspots();
    void chooseNeighbour(int step);

    std::vector<SVTab> tabs_;
    std::string selectedTabId_ = "logs";
    std::map<std::string, std::string> tabHints_;
};

}  // namespace sonavault
