#include "pastdays/DayFiles.h"

#include "pastdays/Mp3Pieces.h"
#include "platform/AppendFile.h"
#include "platform/AtomicFile.h"
#include "platform/FileQueries.h"
#include "platform/LocalTime.h"
#include "store/MarkerLogWriter.h"
#include "store/RecordingManifest.h"
#include "store/RecordingModel.h"
#include "store/Version.h"

namespace sonavault::pastdays {
namespace {

RecordingManifest manifestOf(WallTime start) {
    const std::string rate = std::to_string(kSampleRate);
    const std::string bitrate = std::to_string(Mp3Pieces::bitrateKbps());
    RecordingManifest manifest;
    manifest.startOffsetSec = clockSecondsSinceMidnight(start);
    manifest.sourceMode = "cadenzo_tcp";
    manifest.startedAtIso8601 = iso8601WithMilliseconds(start);
    manifest.sampleRate = kSampleRate;
    manifest.channels = 1;
    manifest.bitrateKbps = Mp3Pieces::bitrateKbps();
    manifest.deviceName = "Cadenzo TCP @ " + rate + "Hz/1ch";
    manifest.recordedBy = std::string("Sonavault ") + kSonavaultVersion;
    manifest.notes = "MP3 (libmp3lame), CBR " + bitrate + " kbps";
    return manifest;
}

Outcome writeAudio(const std::filesystem::path& file, const DayPlan& plan,
                   const std::vector<Piece>& pieces, DiskFlusher& flusher) {
    const auto opened = AppendFile::open(file, flusher);
    if (!opened) return Outcome::failure(opened.error());
    std::vector<std::uint8_t> block;
    const auto flush = [&] {
        const bool taken = opened.value()->write(block);
        block.clear();
        return taken;
    };
    constexpr std::size_t kBlockBytes = 1 << 20;
    for (const PieceUse& use : plan.uses) {
        const auto bytes = pieces[use.piece].sound.first(use.frames);
        block.insert(block.end(), bytes.begin(), bytes.end());
        if (block.size() >= kBlockBytes && !flush()) return Outcome::failure("The disk is full");
    }
    if (!flush()) return Outcome::failure("The disk is full");
    return Done{};
}

}  // namespace

OutputURLs filesOf(const std::filesystem::path& recordings, const std::string& date) {
    const auto audio = recordings / (kRecordingPrefix + date + ".mp3");
    return {audio, sidecarURL(audio, "json"), sidecarURL(audio, "csv")};
}

bool dayExists(const std::filesystem::path& recordings, const std::string& date) {
    const auto audio = filesOf(recordings, date).audio;
    return pathExists(audio) || pathExists(sidecarURL(audio, "m4a"));
}

Outcome writeMarkerLog(const std::filesystem::path& file, const DayPlan& plan) {
    std::string rows = kMarkerLogHeader;
    for (const LoggedMarker& marker : plan.markers)
        rows += markerRow(formatTime(marker.second), marker.type, marker.label, marker.durationSec);
    return writeFileAtomically(file, rows);
}

Outcome writeDay(const OutputURLs& files, const DayPlan& plan, const std::vector<Piece>& pieces,
                 WallTime start, DiskFlusher& flusher) {
    auto unfinished = files.audio;
    unfinished += ".part";
    std::error_code error;
    std::filesystem::remove(unfinished, error);
    if (auto written = writeAudio(unfinished, plan, pieces, flusher); !written) return written;
    if (auto written = writeFileAtomically(files.json, encodeManifest(manifestOf(start))); !written)
        return written;
    if (auto written = writeMarkerLog(files.csv, plan); !written) return written;
    std::filesystem::rename(unfinished, files.audio, error);
    if (error) return Outcome::failure(error.message());
    return Done{};
}

}  // namespace sonavault::pastdays
