#include "export/FrameWalkExport.h"

#include <QString>

#include "export/DaysRecording.h"
#include "export/Mp3FrameWalk.h"
#include "platform/SourceFile.h"

namespace sonavault {
namespace {

using Kind = ExportError::Kind;
using Exported = Result<Done, ExportError>;

Exported failed(Kind kind, std::string detail = {}) {
    return Exported::failure(ExportError(kind, std::move(detail)));
}

constexpr auto kDaysRecording = "it is a day's recording";

/// A cut that took the place of a day's recording would be the loss of that day.
bool wouldBeRecording(const std::filesystem::path& output, const ExportSource& source) {
    auto folders = source.recordingsFolders;
    folders.push_back(source.loadedFileURL->parent_path());
    return isSameFile(output, *source.loadedFileURL) || isDaysRecording(output, folders);
}

/// In lower case and without the dot.
std::string suffixOf(const std::filesystem::path& file) {
    const auto suffix = QString::fromStdString(file.extension().string()).toLower();
    return suffix.mid(1).toStdString();
}

/// Nothing when `stop` was asked for.
std::optional<std::vector<ByteRange>> walk(const SourceFile& source,
                                           const std::vector<FileSpan>& spans,
                                           const std::stop_token& stop,
                                           const std::function<void(double)>& onProgress) {
    const auto tell = [&onProgress](double share) {
        if (onProgress) onProgress(share);
    };
    Mp3FrameWalk walk(source.bytes(), spans);
    while (walk.walkOn()) {
        if (stop.stop_requested()) return std::nullopt;
        source.letGoBefore(walk.position());
        // A file with holes of many gigabytes must not be read through zero by zero.
        if (walk.isAmongJunk()) walk.skipTo(source.nextData(walk.position()));
        tell(static_cast<double>(walk.position()) / static_cast<double>(walk.end()));
    }
    tell(1);
    return walk.found();
}

}  // namespace

Exported performFrameWalkExport(const ExportSource& source,
                                const std::optional<std::vector<Selection>>& ranges,
                                const std::filesystem::path& outputURL, const std::stop_token& stop,
                                const std::function<void(double)>& onProgress) {
    if (!source.loadedFileURL) return failed(Kind::noSource);
    const auto suffix = suffixOf(*source.loadedFileURL);
    if (suffix != "mp3") return failed(Kind::unsupportedSourceFormat, suffix);
    const auto& wanted = ranges ? *ranges : source.selections;
    if (wanted.empty()) return failed(Kind::noSelections);
    const auto file = SourceFile::open(*source.loadedFileURL);
    if (!file) return failed(Kind::readFailed, file.error());
    const auto spans = mergedSpans(wanted, source.currentRecordingOffset);
    if (spans.empty()) return failed(Kind::noSelections);

    const auto kept = walk(file.value(), spans, stop, onProgress);
    if (!kept) return failed(Kind::writeFailed, "Operation canceled");
    if (kept->empty()) return failed(Kind::noValidFrames);
    if (wouldBeRecording(outputURL, source)) return failed(Kind::writeFailed, kDaysRecording);
    const auto written = file.value().writeRanges(*kept, outputURL, stop);
    if (written) return Done{};
    const auto& failure = written.error();
    return failed(failure.ofSource ? Kind::readFailed : Kind::writeFailed, failure.words);
}

}  // namespace sonavault
