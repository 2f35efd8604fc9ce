#include "shell/RecordingStatus.h"

#include <cmath>

#include "store/RecordingModel.h"
#include "views/Theme.h"

namespace sonavault {
namespace {

bool isOnLink(const RecordingStatus& status) {
    return status.source == SVRecorderSourceMode::cadenzoTCP;
}

}  // namespace

QColor connectionDotColour(const RecordingStatus& status) {
    if (!isOnLink(status)) return whiteLevel(0.35);
    return status.isCadenzoConnected ? kColorSystemGreen : kColorSystemRed;
}

QString recordingStateText(const RecordingStatus& status) {
    if (status.isRecording) return QStringLiteral("Recording");
    if (!status.isWaiting) return QStringLiteral("Not recording");
    if (!isOnLink(status)) return QStringLiteral("Waiting for the line input");
    // With the link up, it is the file that could not be begun.
    return status.isCadenzoConnected ? QStringLiteral("Could not start, trying again")
                                     : QStringLiteral("Waiting for Cadenzo");
}

QColor recordingStateColour(const RecordingStatus& status) {
    if (status.isRecording) return kColorSystemRed;
    return status.isWaiting ? kColorWaiting : whiteLevel(0.65);
}

QString recordingDurationText(const RecordingStatus& status) {
    return QString::fromStdString(formatTime(status.durationSec));
}

QString recordingDurationCaption(const RecordingStatus& status) {
    return status.isRecording ? QStringLiteral("in today’s file")
                              : QStringLiteral("no file is open");
}

QString sourceText(const RecordingStatus& status) {
    if (!status.source) return QStringLiteral("—");
    if (!isOnLink(status)) return QStringLiteral("Line input");
    return status.isCadenzoConnected ? QStringLiteral("Cadenzo TCP, connected")
                                     : QStringLiteral("Cadenzo TCP, not connected");
}

QString inputLevelText(const RecordingStatus& status) {
    if (!std::isfinite(status.inputDb) || status.inputDb <= kSilenceDb)
        return QStringLiteral("No signal");
    const long whole = std::lround(status.inputDb);
    return (whole < 0 ? QStringLiteral("−") : QString()) + QString::number(std::abs(whole)) +
           QStringLiteral(" dBFS");
}

}  // namespace sonavault
