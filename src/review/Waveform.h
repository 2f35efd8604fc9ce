#pragma once

#include <vector>

#include "review/Colour.h"
#include "review/Geometry.h"
#include "store/RecordingModel.h"

namespace sonavault {

// The waveform in the summary bar, which shows once a day is zoomed in.

inline constexpr double kWaveformZoomFadeStart = 2;  ///< the factor at which it starts to show
inline constexpr double kWaveformZoomFadeEnd = 4;    ///< the factor at which it is all there
inline constexpr double kWaveformBaseAlpha = 0.55;
inline constexpr Colour kColorWaveform = whiteLevelColour(1);

/// Whether there is a waveform to draw at a zoom factor.
bool showsWaveform(const PeaksData& peaks, double zoomMult);

/// How much of the waveform shows at a zoom factor. Range: 0 to kWaveformBaseAlpha
double waveformAlpha(double zoomMult);

/// What the waveform is drawn on.
struct WaveformTrack {
    double trackW = 0;  ///< width of the day's axis. Units: points
    double height = 0;
    DaySeconds currentRecordingOffset;  ///< the moment of the file's first frame
};

/// One point's width of waveform, as high above the middle as below it. Units: points
struct WaveformColumn {
    double x = 0;
    double halfHeight = 0;
    bool operator==(const WaveformColumn&) const = default;
};

/// The columns in `exposed`, each as high as the average level of the sound under it; none where
/// the file has no sound, or hardly any.
std::vector<WaveformColumn> waveformColumns(const PeaksData& peaks, const WaveformTrack& track,
                                            Extent exposed);

}  // namespace sonavault
