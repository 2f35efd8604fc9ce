#pragma once

#include <QWidget>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "review/Geometry.h"
#include "review/Lanes.h"

namespace sonavault {

class FlatButton;
class NeutralCheckBox;
class TextView;

/// The lanes' checkboxes above the timeline, and the button of the voicetracks.
///
/// Thread: main.
class FilterBarView final : public QWidget {
  public:
    explicit FilterBarView(QWidget* parent);

    /// The person ticked a lane's checkbox, or took its tick away. The key is the lane's.
    std::function<void(std::string_view key, bool on)> onFilterChanged;
    std::function<void()> onVoicetracksOnlyClicked;

    /// Sets a checkbox without telling anybody.
    void setFilterCheckbox(Lane lane, bool on);

    void showVoicetracksOnly(bool on, const std::optional<std::string>& counter);

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    struct Filter {
        Lane lane;
        QWidget* swatch;
        NeutralCheckBox* checkbox;
        Size natural;  ///< of the checkbox; a text is measured once
    };

    Filter makeFilter(const LaneDescription& description);
    void layOut();

    std::vector<Filter> filters_;
    FlatButton* voicetracksOnlyButton_;
    TextView* vtCounterLabel_;
};

}  // namespace sonavault
