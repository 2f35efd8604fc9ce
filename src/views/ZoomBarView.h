#pragma once

#include <QWidget>
#include <cstddef>
#include <functional>
#include <optional>

namespace sonavault {

/// The buttons that set the zoom, centred in the bar.
///
/// Thread: main.
class ZoomBarView final : public QWidget {
  public:
    explicit ZoomBarView(QWidget* parent);

    /// The index of the preset in kZoomPresets.
    std::function<void(std::size_t preset)> onPresetClicked;

    /// Sets one preset's button on and all others off.
    void showZoomPreset(std::optional<std::size_t> preset);
};

}  // namespace sonavault
