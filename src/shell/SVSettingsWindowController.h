#pragma once

#include <QWidget>
#include <memory>

#include "platform/Preferences.h"
#include "recorder/SVQualityLevel.h"
#include "shell/QualitySlider.h"
#include "views/TextView.h"

namespace sonavault {

/// The window in which the recording quality is chosen. Made once and kept; closing hides it.
///
/// Thread: main.
class SVSettingsWindowController {
  public:
    /// `preferences`: the program's own domain; outlives this object.
    explicit SVSettingsWindowController(Preferences& preferences);
    ~SVSettingsWindowController();
    SVSettingsWindowController(const SVSettingsWindowController&) = delete;
    SVSettingsWindowController& operator=(const SVSettingsWindowController&) = delete;

    /// Shows the window and brings it to the front.
    void showWindow();

    QWidget& window();

    QualitySlider& slider() { return *slider_; }

  private:
    void buildContents();
    void buildLevelLabels();
    TextView* addText(const QString& text, const QFont& font, const QColor& colour,
                      const QRect& frame, const QString& tip);
    void centre();

    void sliderChanged(int value);
    void refreshLabels();
    SVQualityLevel chosenLevel() const;

    Preferences& preferences_;
    std::unique_ptr<QWidget> window_;
    // Owned by the window.
    QualitySlider* slider_ = nullptr;
    TextView* qualityHeadline_ = nullptr;
    TextView* detailLabel_ = nullptr;
    TextView* sizeLabel_ = nullptr;
    TextView* dayLabel_ = nullptr;
};

}  // namespace sonavault
