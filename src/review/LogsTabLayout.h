#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "review/Geometry.h"

namespace sonavault {

// Where the regions of the logs tab stand, and what stands in its bars, for any size of the tab.
// All frames count from the upper left corner of the region that holds them.

inline constexpr double kDateListWidth = 280;
inline constexpr double kLaneLabelsColumnWidth = 76;
inline constexpr double kFilterBarHeight = 46;
inline constexpr double kZoomBarHeight = 44;
inline constexpr double kTransportHeight = 120;
inline constexpr double kExportButtonWidth = 240;
inline constexpr double kExportButtonHeight = 38;
inline constexpr double kVUMeterWidth = 30;  ///< of the strip in which both meters stand

/// What depends on nothing but the tab's size.
struct LogsTabFrames {
    Box dateListScroll;
    Box filterBar;
    Box transport;
    Box zoomBar;
    Box lanesScroll;  ///< never less than 60 either way, even where the room is less
    Box exportSelectionsButton;
};

LogsTabFrames logsTabFrames(Size tab);

/// The column of the lanes' names. `clipHeight`: of the part of the timeline that is seen; 0 as
/// long as that is not known.
Box laneLabelsFrame(Size tab, double clipHeight);

/// What stands over the lanes or beside them and follows the summary bar.
struct TimelineOverlays {
    Box vuMeterL;
    Box vuMeterR;
    Box actionBarResizeHandle;
    Box emptyStateLabel;
};

/// `summaryBarTop`: the summary bar's upper edge in the tab.
TimelineOverlays timelineOverlays(Size tab, double summaryBarTop);

struct ZoomBarFrames {
    Box label;
    std::vector<Box> presets;
};

/// The label and `presets` buttons as one row, centred.
ZoomBarFrames zoomBarFrames(double width, std::size_t presets);

struct TransportFrames {
    Box transportTimeLabel;
    std::array<Box, 5> shuttle;  ///< previous, play, next, in, out
    Box nowPlayingLabel;
    Box selectionInfoLabel;
};

/// `selectionTextWidth`: of the report of the selections. One that is wider than its usual place
/// takes room from the now-playing text, for a cut-off time would be a wrong one.
TransportFrames transportFrames(double width, double selectionTextWidth);

struct FilterBarFrames {
    std::vector<Box> swatches;
    std::vector<Box> checkboxes;
    Box voicetracksOnlyButton;
    Box vtCounterLabel;
    bool counterBelowButton = false;
};

/// What the filter bar is filled with.
struct FilterBarContent {
    std::vector<Size> checkboxes;  ///< their natural sizes
    bool counterShown = false;
};

/// In a window too narrow for all in one row, the filters stand closer together, and the counter
/// below its button.
FilterBarFrames filterBarFrames(double width, const FilterBarContent& content);

}  // namespace sonavault
