#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "review/Geometry.h"

namespace sonavault {

// Where the window's regions stand, and what stands in the banner, the tab bar and the status bar.
// Units: points

inline constexpr double kBannerHeight = 132;
inline constexpr double kStatusBarHeight = 40;

inline constexpr double kSVTabBarTabWidth = 140;
inline constexpr double kSVTabBarTabHeight = 38;
inline constexpr double kSVTabBarRightInset = 24;
inline constexpr double kSVTabBarHeight = 40;

struct WindowLayout {
    Box banner;
    Box tabBar;  ///< stands in the banner and reaches one point into the tab below
    Box tab;     ///< of whichever tab is shown
    Box statusBar;
};

/// The regions of a window with `content` inside. A window too low for them has an empty tab.
WindowLayout layOutWindow(Size content);

struct BannerLayout {
    Box logo;
    Box title;
    Box slogan;
    Box helpButton;
    Box stroke;  ///< the line along the bottom
};

BannerLayout layOutBanner(double width);

/// The frames of `count` tabs, the first one leftmost, in a bar of that width.
std::vector<Box> tabFrames(double barWidth, std::size_t count);

/// The tab at `point` of the bar.
std::optional<std::size_t> tabAt(const std::vector<Box>& frames, Point point);

/// The text of the status bar never gets less than this while the keyboard hint has room to give.
inline constexpr double kLeastStatusTextWidth = 200;

struct StatusBarLayout {
    Box speaker;
    Box text;
    Box hint;  ///< the keys; full width but in a narrow window, where it yields to the text
    Box settings;
    Box connectionDot;
};

/// The right half keeps its distance from the right edge; the text takes the room in between.
StatusBarLayout layOutStatusBar(double width);

}  // namespace sonavault
