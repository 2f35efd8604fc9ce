#include "store/RecordingLength.h"

#include <algorithm>
#include <atomic>
#include <future>

#include "platform/AudioFileInfo.h"
#include "store/Mp3LengthProbe.h"
#include "store/RecordingModel.h"

namespace sonavault {

namespace {

/// What a probe may be off by. Each run of a day may end in a torn frame, which the probe misses
/// once in a hundred times: two seconds are twenty-seven of the longest frames.
constexpr double kProbeDoubtSec = 2;

/// As many as a disk can put into a good order.
constexpr std::size_t kSideBySide = 8;

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

std::vector<std::optional<double>> recordingLengthsSec(std::span<const StampedFile> files) {
    std::vector<std::optional<double>> lengths(files.size());
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        for (auto i = next++; i < files.size(); i = next++)
            lengths[i] = recordingLengthSec(files[i].file, files[i].stamp);
    };
    // Where no thread can be had, the work is done here.
    std::vector<std::future<void>> helpers;
    for (std::size_t i = 1; i < std::min(kSideBySide, files.size()); ++i)
        helpers.push_back(std::async(work));
    work();
    for (auto& helper : helpers) helper.get();
    return lengths;
}

}  // namespace sonavault
