#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <vector>

#include "review/Colour.h"
#include "review/Geometry.h"
#include "review/Selections.h"
#include "store/RecordingModel.h"

namespace sonavault {

// The strip that shows which part of the day has audio, its waveform, and the selections. Units:
// points

inline constexpr double kSelectionEdgeHitTolerance = 5;

inline constexpr Colour kColorSummaryTop = rgb(106, 143, 168);  ///< the ground, from the top ...
inline constexpr Colour kColorSummaryBot = rgb(84, 123, 150);   ///< ... to the bottom
inline constexpr Colour kColorSelectionBand = {1.0, 0.86, 0.31, 0.45};
inline constexpr Colour kColorSelectionEdge = {0.78, 0.55, 0.1, 0.85};
inline constexpr Colour kColorPendingStart = {0.95, 0.7, 0.1, 0.95};
inline constexpr Colour kColorNoAudio = whiteLevelColour(0.62);
inline constexpr Colour kColorSummaryRule = {0, 0, 0, 0.18};

/// One end of one selection.
struct EdgeHit {
    std::size_t index;
    Edge edge;
    bool operator==(const EdgeHit&) const = default;
};

/// The selection's edge within reach of `x`, on an axis of `trackW`. The earlier selection wins,
/// and of one too narrow to tell, its lower edge.
std::optional<EdgeHit> hitEdge(const std::vector<Selection>& selections, double x, double trackW);

/// The first selection in whose inner part `x` lies. The outermost points belong to the edges.
std::optional<std::size_t> hitBody(const std::vector<Selection>& selections, double x,
                                   double trackW);

/// Where the pointer shows that an edge can be dragged.
std::vector<Box> resizeZones(const std::vector<Selection>& selections, double trackW,
                             double height);

/// The part of the day that has audio.
struct AudioExtent {
    DaySeconds start;
    double durationSec = 0;
};

/// What is being recorded at the moment.
struct RecordingNow {
    std::optional<std::filesystem::path> lastRecordingURL;
    double currentRecordingDurationSec = 0;
};

/// How much audio the loaded file holds: what the recorder tells, if it is recording just this
/// file, which grows, else the length that the file had when it was opened. `recording`: nothing
/// when none is under way. Units: seconds
double audioDurationSec(const std::filesystem::path& loadedFileURL, double fileDurationSec,
                        const std::optional<RecordingNow>& recording);

struct FilledBox {
    Box box;
    Colour colour;
    bool operator==(const FilledBox&) const = default;
};

/// What the summary bar is drawn from. What is pointed at outlives the scene.
struct SummaryScene {
    Size size;                         ///< of the bar
    double trackW = 0;                 ///< width of the day's axis
    std::optional<AudioExtent> audio;  ///< of the loaded day; nothing without one
    const PeaksData* peaksData = nullptr;
    DaySeconds currentRecordingOffset;
    double zoomMult = 1;
    const std::vector<Selection>* selections = nullptr;
    std::optional<double> pendingStartSec;
};

/// All that is filled over the bar's ground, in the order of drawing. Of the waveform only what
/// lies in `exposed`.
std::vector<FilledBox> summaryBarFills(const SummaryScene& scene, Extent exposed);

}  // namespace sonavault
