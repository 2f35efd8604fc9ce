#include "review/WindowLayout.h"

#include <algorithm>

namespace sonavault {
namespace {

constexpr std::size_t kTabs = 2;
constexpr double kTabBarOverlap = 1;

constexpr double kStatusTextLeft = 48;
constexpr double kStatusTextToHint = 12;
constexpr double kStatusHintWidth = 600;
constexpr double kStatusHintToSettings = 16;

// The regions are measured from their lower left corner.
Box fromBottom(Box box, double height) {
    box.y = height - box.bottom();
    return box;
}

}  // namespace

WindowLayout layOutWindow(Size content) {
    const double width = content.width;
    const double height = content.height;
    const double tabHeight = std::max(0.0, height - kBannerHeight - kStatusBarHeight);
    const double barWidth = kTabs * kSVTabBarTabWidth + kSVTabBarRightInset;
    const Box tabBar{width - barWidth, kStatusBarHeight + tabHeight - kTabBarOverlap, barWidth,
                     kSVTabBarHeight};
    return {
        .banner = fromBottom({0, height - kBannerHeight, width, kBannerHeight}, height),
        .tabBar = fromBottom(tabBar, height),
        .tab = fromBottom({0, kStatusBarHeight, width, tabHeight}, height),
        .statusBar = fromBottom({0, 0, width, kStatusBarHeight}, height),
    };
}

BannerLayout layOutBanner(double width) {
    return {
        .logo = fromBottom({28, 26, 84, 84}, kBannerHeight),
        .title = fromBottom({130, 58, 400, 44}, kBannerHeight),
        .slogan = fromBottom({130, 32, 400, 22}, kBannerHeight),
        .helpButton = fromBottom({width - 50, 94, 30, 28}, kBannerHeight),
        .stroke = fromBottom({0, 0, width, 1}, kBannerHeight),
    };
}

std::vector<Box> tabFrames(double barWidth, std::size_t count) {
    std::vector<Box> frames;
    const double right = barWidth - kSVTabBarRightInset;
    for (std::size_t i = 0; i < count; ++i) {
        const double x = right - static_cast<double>(count - i) * kSVTabBarTabWidth;
        frames.push_back(
            fromBottom({x, 1, kSVTabBarTabWidth, kSVTabBarTabHeight}, kSVTabBarHeight));
    }
    return frames;
}

std::optional<std::size_t> tabAt(const std::vector<Box>& frames, Point point) {
    const auto found = std::find_if(frames.begin(), frames.end(),
                                    [&](const Box& frame) { return frame.contains(point); });
    if (found == frames.end()) return std::nullopt;
    return static_cast<std::size_t>(found - frames.begin());
}

StatusBarLayout layOutStatusBar(double width) {
    const double settingsLeft = width - 12 - 12 - 10 - 30;
    const double hintRight = settingsLeft - kStatusHintToSettings;
    const double room = std::max(0.0, hintRight - kStatusTextToHint - kStatusTextLeft);
    const double hintWidth = std::clamp(room - kLeastStatusTextWidth, 0.0, kStatusHintWidth);
    return {
        .speaker = fromBottom({10, 5, 30, 30}, kStatusBarHeight),
        .text = fromBottom({kStatusTextLeft, 10, room - hintWidth, 20}, kStatusBarHeight),
        .hint = fromBottom({hintRight - hintWidth, 10, hintWidth, 20}, kStatusBarHeight),
        .settings = fromBottom({settingsLeft, 5, 30, 30}, kStatusBarHeight),
        .connectionDot = fromBottom({width - 24, 14, 12, 12}, kStatusBarHeight),
    };
}

}  // namespace sonavault
