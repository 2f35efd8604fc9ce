#include "store/StalePeaks.h"

#include <chrono>
#include <cstdint>

#include "platform/FileStamp.h"
#include "store/PeaksFile.h"
#include "store/RecordingFiles.h"

namespace sonavault {
namespace {

/// Some disks tell the time of a change to two seconds only; and what a waveform lacks of two
/// seconds of a day nobody sees.
constexpr std::int64_t kToleranceNs = std::chrono::nanoseconds(std::chrono::seconds(2)).count();

bool isOlder(const std::filesystem::path& sidecar, const std::filesystem::path& audio) {
    const auto measured = fileStamp(sidecar);
    const auto changed = fileStamp(audio);
    return measured && changed && measured->modifiedNs < changed->modifiedNs - kToleranceNs;
}

}  // namespace

void removeStalePeaks(const StationFolder& station) {
    const auto folder = station.recordingsFolder();
    if (!folder) return;
    for (const auto& audio : entriesOf(*folder).value_or(std::vector<std::filesystem::path>{})) {
        if (!recordingDate(audio) || !isOlder(peaksURL(audio), audio)) continue;
        std::error_code ignored;
        std::filesystem::remove(peaksURL(audio), ignored);
    }
}

}  // namespace sonavault
