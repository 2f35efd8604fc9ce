#include "review/TimeAxis.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "review/TimelineMapping.h"

namespace sonavault {

namespace {

constexpr double kMinuteSec = 60;
constexpr double kLabelGap = 8;
constexpr double kFromTickToLabel = 5;

/// Decides which ticks have room for a label, from left to right.
class LabelRoom {
  public:
    LabelRoom(double labelWidth, double axisWidth)
        : labelWidth_(labelWidth), axisWidth_(axisWidth) {}

    bool take(double x) {
        constexpr double kRightMargin = 2;
        if (!(x >= lastEnd_ + kLabelGap && x + labelWidth_ <= axisWidth_ - kRightMargin))
            return false;
        lastEnd_ = x + labelWidth_;
        return true;
    }

  private:
    double labelWidth_;
    double axisWidth_;
    double lastEnd_ = -1000;
};

}  // namespace

double tickStep(double zoomMult) {
    struct Rule {
        double below;
        double step;
    };
    constexpr std::array<Rule, 4> kRules{{{1.5, 3600}, {6, 1800}, {48, 600}, {288, 60}}};
    for (const Rule& rule : kRules)
        if (zoomMult < rule.below) return rule.step;
    return 10;
}

double axisFontSize(double zoomMult) {
    return 12 + std::min(5.0, std::log2(std::max(1.0, zoomMult)) * 0.85);
}

std::string axisLabelText(double second, double zoomMult) {
    return formatTime(second, tickStep(zoomMult) < kMinuteSec);
}

std::vector<AxisTick> timeAxisTicks(double zoomMult, Size size, double labelWidth, Extent exposed) {
    const double step = tickStep(zoomMult);
    const double labelY = size.height - axisFontSize(zoomMult) - 6;
    LabelRoom room(labelWidth, size.width);
    std::vector<AxisTick> ticks;
    // From the first tick on, also where only the evening is exposed: whether a label has room
    // depends on the one before it, and scrolling must not change which are shown.
    const int count = static_cast<int>(kSecondsInDay / step);
    for (int i = 0; i <= count; ++i) {
        const double t = i * step;
        const double x = xAt({t}, size.width);
        if (x > size.width || x > exposed.right) break;
        const double labelX = x + kFromTickToLabel;
        const bool labelled = room.take(labelX);
        if (std::max(x + 1, labelled ? labelX + labelWidth : 0) < exposed.left) continue;
        AxisTick& tick = ticks.emplace_back(AxisTick{{x, 0, 1, size.height}, std::nullopt});
        if (labelled) tick.label = AxisLabel{axisLabelText(t, zoomMult), {labelX, labelY}};
    }
    return ticks;
}

}  // namespace sonavault
