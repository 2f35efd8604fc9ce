#include "export/FrameExporter.h"

#include <system_error>
#include <utility>

namespace sonavault {

namespace {

using Exported = Result<Done, ExportError>;

Exported notWritten(const std::string& words) {
    return Exported::failure(ExportError(ExportError::Kind::writeFailed, words));
}

}  // namespace

FrameExporter::FrameExporter(const ExportedDay& day, Executor& mainQueue, Walk walk)
    : day_(day),
      walk_(std::move(walk)),
      mainQueue_(std::make_shared<ClosableExecutor>(mainQueue)) {}

FrameExporter::~FrameExporter() {
    mainQueue_->close();
}

void FrameExporter::exportSelectionsToMP3(std::optional<std::vector<Selection>> ranges,
                                          const std::filesystem::path& outputURL,
                                          Completion completion) {
    const auto begun = exports_.insert(exports_.end(), Export{.outputURL = outputURL});
    Finish finish = lifetime_.guard(
        [this, begun, completion = std::move(completion)](const Result<Done, ExportError>& result) {
            exports_.erase(begun);
            // Last, for it may ask the person, who may begin another export meanwhile.
            completion(result);
        });
    try {
        begun->job = begin(*begun, std::move(ranges), finish);
    } catch (const std::system_error& error) {
        giveUp(error.code().message(), std::move(finish));
    }
}

/// Taken here: the job must not look at what the main thread goes on changing.
ExportSource FrameExporter::sourceFor(const std::optional<std::vector<Selection>>& ranges) const {
    return {.loadedFileURL = day_.loadedFileURL(),
            .currentRecordingOffset = day_.currentRecordingOffset(),
            .selections = ranges ? std::vector<Selection>{} : day_.selections(),
            .recordingsFolders = day_.recordingsFolders()};
}

std::unique_ptr<BackgroundJob> FrameExporter::begin(const Export& order,
                                                    std::optional<std::vector<Selection>> ranges,
                                                    const Finish& finish) const {
    auto source = sourceFor(ranges);
    auto work = [source = std::move(source), wanted = std::move(ranges), output = order.outputURL,
                 progress = order.progress, walk = walk_, finish,
                 mainQueue = mainQueue_](const std::stop_token& stop) {
        const auto tell = [&progress](double share) { *progress = share; };
        const auto result = [&] {
            try {
                return walk(source, wanted, output, stop, tell);
            } catch (const std::exception& error) {
                // Without memory for it, a cut fails like any other.
                return notWritten(error.what());
            }
        }();
        mainQueue->post([finish, result] { finish(result); });
    };
    return std::make_unique<BackgroundJob>("export", std::move(work),
                                           BackgroundJob::Priority::asAnyOther);
}

void FrameExporter::giveUp(const std::string& words, Finish finish) const {
    mainQueue_->post([finish = std::move(finish), result = notWritten(words)] { finish(result); });
}

std::vector<ExportProgress> FrameExporter::underWay() const {
    std::vector<ExportProgress> all;
    for (const auto& each : exports_) all.push_back({each.outputURL, *each.progress});
    return all;
}

}  // namespace sonavault
