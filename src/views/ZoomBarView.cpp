#include "views/ZoomBarView.h"

#include "review/LogsTabLayout.h"
#include "review/TimelineZoom.h"
#include "views/BarGround.h"
#include "views/FlatButton.h"
#include "views/Hints.h"
#include "views/Painting.h"
#include "views/TextView.h"
#include "views/Theme.h"

namespace sonavault {

ZoomBarView::ZoomBarView(QWidget* parent)
    : QWidget(parent),
      zoomBarLabel_(new TextView(QStringLiteral("ZOOM"), interfaceFont(12, QFont::DemiBold),
                                 whiteLevel(0.5), this)) {
    // On one line with the titles of the buttons.
    zoomBarLabel_->setAlignment(Qt::AlignLeft | Qt::AlignBottom);
    zoomBarLabel_->setObjectName(QStringLiteral("zoomBarLabel"));
    setSvHint(*zoomBarLabel_,
              QStringLiteral("Zoom presets — choose how much of the day is visible at once."));
    for (std::size_t i = 0; i < kZoomPresets.size(); ++i) makePreset(i);
    showZoomPreset(presetAt(kZoomMultMin));
}

void ZoomBarView::makePreset(std::size_t preset) {
    const ZoomPreset& described = kZoomPresets.at(preset);
    auto* button =
        new FlatButton(toQString(described.title), interfaceFont(13, QFont::Medium), this);
    button->setCheckable(true);
    button->setObjectName(toQString(described.identifier));
    setSvHint(*button, toQString(described.hint));
    connect(button, &QAbstractButton::clicked, this, [this, preset] {
        if (onPresetClicked) onPresetClicked(preset);
    });
    zoomPresetButtons_.push_back(button);
}

void ZoomBarView::showZoomPreset(std::optional<std::size_t> preset) {
    for (std::size_t i = 0; i < zoomPresetButtons_.size(); ++i)
        zoomPresetButtons_[i]->setChecked(preset == i);
}

void ZoomBarView::resizeEvent(QResizeEvent*) {
    const ZoomBarFrames frames = zoomBarFrames(width(), zoomPresetButtons_.size());
    place(*zoomBarLabel_, toQRect(frames.label));
    for (std::size_t i = 0; i < zoomPresetButtons_.size(); ++i)
        place(*zoomPresetButtons_[i], toQRect(frames.presets[i]));
}

void ZoomBarView::paintEvent(QPaintEvent*) {
    paintBarGround(*this, whiteLevel(0.88));
}

}  // namespace sonavault
