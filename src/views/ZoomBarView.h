#pragma once

#include <QWidget>
#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace sonavault {

class FlatButton;
class TextView;

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

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void makePreset(std::size_t preset);

    TextView* zoomBarLabel_;
    std::vector<FlatButton*> zoomPresetButtons_;
};

}  // namespace sonavault
