#include "store/RecordingLength.h"

#include "platform/AudioFileInfo.h"
#include "store/Mp3LengthProbe.h"
#include "store/RecordingModel.h"

namespace sonavault {

namespace {

/// What a probe may be off by. Each run of a day may end in a torn frame, which the probe misses
/// once in a hundred times: two seconds are twenty-seven of the longest frames.
constexpr double kProbeDoubtSec = 2;

bool isSureOfLabel(double probedSec) {
    return durationLabel(probedSec - kProbeDoubtSec) == durationLabel(probedSec + kProbeDoubtSec);
}

}  // namespace

std::string durationLabel(double seconds) {
    return seconds >= kFullDaySec ? "24:00" : liveLabel(seconds);
}

std::string liveLabel(double seconds) {
    return formatTime(seconds, false);
}

std::optional<double> recordingLengthSec(const std::filesystem::path& file,
                                         const FileStamp& stamp) {
    if (const auto probed = probeMp3Duration(file, stamp.size); probed && isSureOfLabel(*probed))
        return probed;
    const auto info = readAudioFileInfo(file);
    if (!info) return std::nullopt;
    return info.value().durationSec();
}

}  // namespace sonavault
