#pragma once

#include <cstddef>

#include "review/Geometry.h"
#include "review/Lanes.h"
#include "review/TimelineRows.h"

namespace sonavault::testing {

/// Where a person finds things in the main window, with all lanes shown, as the window lays itself
/// out. Units: pixels of the screen
class DeskPlaces {
  public:
    /// `content`: the window's inside below its menu bar, on the screen.
    explicit DeskPlaces(const Box& content, double actionBarHeight = kSummaryBarHeight)
        : content_(content), actionBarHeight_(actionBarHeight) {}

    const Box& content() const { return content_; }

    Point helpButton() const;
    Point tab(std::size_t index) const;

    Box statusText() const;
    Point settingsButton() const;
    Box connectionDot() const;

    Box dateList() const;

    /// A row of the list of days, from the top.
    Point dateRow(std::size_t index) const;
    Box dateRowLight(std::size_t index) const;
    Box dateRowBox(std::size_t index) const;

    Point zoomPreset(std::size_t index) const;
    /// What of a preset's button tells whether it is on.
    Point zoomPresetGround(std::size_t index) const;

    /// Previous, play, next, in, out.
    Point shuttle(std::size_t index) const;
    Point exportButton() const;
    Point resizeHandle() const;
    Box axis() const;
    Box summaryBar() const;

    /// The lanes and the bars below them, as far as they are seen.
    Box lanes() const;

    // The whole day is seen.

    Point onLane(Lane lane, double second) const;
    Point onSummaryBar(double second) const;
    /// Where the playhead's line is seen best, just above the summary bar's foot.
    Point onPlayhead(double second) const;

    /// The tab of the airchecks: a place in a card, from the card's lower left corner as its
    /// controls are laid out.
    Point inCard(std::size_t index, double x, double y) const;

  private:
    Point onScreen(Point inContent) const;
    Box onScreen(const Box& inContent) const;
    Box tabBox() const;
    Box inLogsTab(const Box& box) const;
    TimelineRows rows() const;

    Box content_;
    double actionBarHeight_;
};

Point middleOf(const Box& box);

}  // namespace sonavault::testing
