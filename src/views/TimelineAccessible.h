#pragma once

namespace sonavault {

class LanesInnerView;

/// Lets screen readers see a timeline as a slider over the day: they read the playhead's time and
/// the marker under it, and can move it. What they read is made when they ask.
void installTimelineAccessible();

/// Whether a screen reader, or something of its kind, is there at the moment.
bool screenReaderListens();

/// Tells screen readers that the playhead stands elsewhere.
void tellTimelineValue(LanesInnerView& timeline);

}  // namespace sonavault
