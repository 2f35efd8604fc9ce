#include "views/FilterBarView.h"

#include <QPainter>
#include <cmath>

#include "review/LogsTabLayout.h"
#include "views/BarGround.h"
#include "views/FlatButton.h"
#include "views/Hints.h"
#include "views/NeutralCheckBox.h"
#include "views/Painting.h"
#include "views/TextView.h"
#include "views/Theme.h"

namespace sonavault {
namespace {

// The colour by which a lane's markers are known.
class SwatchView final : public QWidget {
  public:
    SwatchView(const QColor& colour, QWidget* parent) : QWidget(parent), colour_(colour) {}

  protected:
    void paintEvent(QPaintEvent*) override {
        constexpr double kRadius = 2;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(colour_);
        painter.drawRoundedRect(rect(), kRadius, kRadius);
    }

  private:
    const QColor colour_;
};

QString checkboxHint(const LaneDescription& lane) {
    if (lane.lane == Lane::hour) return QStringLiteral("Hour ticks are always shown.");
    return QStringLiteral("Show or hide the %1 lane on the timeline.")
        .arg(toQString(lane.laneDisplayName));
}

QFont counterFont() {
    QFont font = interfaceFont(12);
    font.setItalic(true);
    return font;
}

}  // namespace

FilterBarView::FilterBarView(QWidget* parent) : QWidget(parent) {
    filters_.reserve(laneOrder.size());
    for (const LaneDescription& each : laneOrder) filters_.push_back(makeFilter(each));
    vtCounterLabel_ = new TextView(QString(), counterFont(), whiteLevel(0.4), this);
    vtCounterLabel_->setObjectName(QStringLiteral("vtCounterLabel"));
    setSvHint(*vtCounterLabel_, QStringLiteral("Voicetrack count in the visible time range."));
    vtCounterLabel_->hide();
    voicetracksOnlyButton_ =
        new FlatButton(QStringLiteral("Voicetracks Only Mode"), interfaceFont(12), this);
    voicetracksOnlyButton_->setCheckable(true);
    voicetracksOnlyButton_->setObjectName(QStringLiteral("voicetracksOnlyButton"));
    setSvHint(*voicetracksOnlyButton_,
              QStringLiteral("Hide everything but voicetrack rows — for quick talent review."));
    connect(voicetracksOnlyButton_, &QAbstractButton::clicked, this, [this] {
        if (onVoicetracksOnlyClicked) onVoicetracksOnlyClicked();
    });
}

FilterBarView::Filter FilterBarView::makeFilter(const LaneDescription& description) {
    const QString name = toQString(description.laneDisplayName);
    auto* swatch = new SwatchView(toQColor(description.markerColour), this);
    setSvHint(*swatch, QStringLiteral("Color used to draw %1 markers.").arg(name));
    auto* checkbox = new NeutralCheckBox(QStringLiteral(" ") + name, this);
    checkbox->setObjectName(toQString(description.key));
    checkbox->setChecked(true);
    checkbox->setEnabled(description.lane != Lane::hour);
    setSvHint(*checkbox, checkboxHint(description));
    connect(checkbox, &QCheckBox::clicked, this, [this, key = description.key](bool on) {
        if (onFilterChanged) onFilterChanged(key, on);
    });
    const QSizeF natural = checkbox->sizeHint();
    return {description.lane, swatch, checkbox, {natural.width(), natural.height()}};
}

void FilterBarView::setFilterCheckbox(Lane lane, bool on) {
    for (const Filter& each : filters_)
        if (each.lane == lane) each.checkbox->setChecked(on);
}

void FilterBarView::showVoicetracksOnly(bool on, const std::optional<std::string>& counter) {
    voicetracksOnlyButton_->setChecked(on);
    if (counter) vtCounterLabel_->showText(toQString(*counter));
    vtCounterLabel_->setVisible(counter.has_value());
    layOut();
}

void FilterBarView::layOut() {
    FilterBarContent content;
    for (const Filter& each : filters_) content.checkboxes.push_back(each.natural);
    content.counterShown = !vtCounterLabel_->isHidden();
    const FilterBarFrames frames = filterBarFrames(width(), content);
    for (std::size_t i = 0; i < filters_.size(); ++i) {
        place(*filters_[i].swatch, toQRect(frames.swatches[i]));
        place(*filters_[i].checkbox, toQRect(frames.checkboxes[i]));
    }
    place(*voicetracksOnlyButton_, toQRect(frames.voicetracksOnlyButton));
    place(*vtCounterLabel_, toQRect(frames.vtCounterLabel));
    vtCounterLabel_->setAlignment(frames.counterBelowButton ? Qt::AlignCenter
                                                            : Qt::AlignLeft | Qt::AlignVCenter);
}

void FilterBarView::resizeEvent(QResizeEvent*) {
    layOut();
}

void FilterBarView::paintEvent(QPaintEvent*) {
    paintBarGround(*this);
}

}  // namespace sonavault
