#include "views/RecordingClusterView.h"

#include <QPainter>
#include <array>

#include "views/DateListView.h"
#include "views/Painting.h"

namespace sonavault {
namespace {

constexpr double kDotSize = 7;
constexpr double kDotSpacing = 12;
constexpr std::array kLit{kColorLEDLow, kColorLEDMed, kColorLEDHot};

}  // namespace

RecordingClusterView::RecordingClusterView(const DateListHost& host, QWidget* parent)
    : QWidget(parent), host_(host), lights_(clusterLights(host.recordingInputDb())) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAccessibleName(QStringLiteral("Input level"));
}

void RecordingClusterView::updateLevels() {
    const ClusterLights lights = clusterLights(host_.recordingInputDb());
    if (lights == lights_) return;
    lights_ = lights;
    update();
}

void RecordingClusterView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const double y = height() / 2.0 - kDotSize / 2;
    for (std::size_t i = 0; i < lights_.size(); ++i) {
        painter.setBrush(toQColor(lights_.at(i) ? kLit.at(i) : kColorLEDOff));
        painter.drawEllipse(QRectF(static_cast<double>(i) * kDotSpacing, y, kDotSize, kDotSize));
    }
}

}  // namespace sonavault
