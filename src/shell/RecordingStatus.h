#pragma once

#include <QColor>
#include <QString>
#include <optional>

#include "platform/SampleMath.h"
#include "recorder/SVRecorderSourceMode.h"

namespace sonavault {

/// What there is to know about the recording at one moment.
struct RecordingStatus {
    std::optional<SVRecorderSourceMode> source;  ///< absent while there is no recorder
    bool isRecording = false;
    bool isWaiting = false;  ///< recording begins by itself as soon as it can
    bool isCadenzoConnected = false;
    double durationSec = 0;  ///< the length of the day's file, while one is open
    float inputDb = kSilenceDb;
};

/// Grey unless the source is the automation's link, which is green while it is up and red while it
/// is not.
QColor connectionDotColour(const RecordingStatus& status);

/// Whether the air is being kept, in words: "Recording", "Not recording" or what is being waited
/// for.
QString recordingStateText(const RecordingStatus& status);

/// Red while recording, amber while waiting, else grey.
QColor recordingStateColour(const RecordingStatus& status);

/// "HH:MM:SS", zeros while nothing is open.
QString recordingDurationText(const RecordingStatus& status);

/// What the duration is that of.
QString recordingDurationCaption(const RecordingStatus& status);

/// "Line input" or "Cadenzo TCP", and for the latter whether it is connected.
QString sourceText(const RecordingStatus& status);

/// Whole dBFS, as in "−23 dBFS", or that there is no signal.
QString inputLevelText(const RecordingStatus& status);

}  // namespace sonavault
