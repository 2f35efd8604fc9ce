#pragma once

#include <QWidget>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "review/Lanes.h"

namespace sonavault {

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
};

}  // namespace sonavault
