#include "export/FrameExporter.h"

namespace sonavault {

FrameExporter::FrameExporter(const ExportedDay& day, Executor& mainQueue)
    : day_(day), mainQueue_(std::make_shared<ClosableExecutor>(mainQueue)) {}

FrameExporter::~FrameExporter() {
    mainQueue_->close();
}

void FrameExporter::exportSelectionsToMP3(std::optional<std::vector<Selection>> ranges,
                                          const std::filesystem::path& outputURL,
                                          Completion completion) {
    const auto begun = exports_.insert(exports_.end(), Export{.outputURL = outputURL});
    auto finish = lifetime_.guard(
        [this, begun, completion = std::move(completion)](const Result<Done, ExportError>& result) {
            exports_.erase(begun);
            // Last, for it may ask the person, who may begin another export meanwhile.
            completion(result);
        });
    // Taken here: the job must not look at what the main thread goes on changing.
    ExportSource source{.loadedFileURL = day_.loadedFileURL(),
                        .currentRecordingOffset = day_.currentRecordingOffset(),
                        .selections = ranges ? std::vector<Selection>{} : day_.selections()};
    begun->job = std::make_unique<BackgroundJob>(
        "export", [source = std::move(source), ranges = std::move(ranges), outputURL,
                   progress = begun->progress, finish = std::move(finish),
                   mainQueue = mainQueue_](const std::stop_token& stop) mutable {
            const auto result =
                performFrameWalkExport(source, ranges, outputURL, stop, progress.get());
            mainQueue->post([finish = std::move(finish), result]() mutable { finish(result); });
        });
}

std::vector<ExportProgress> FrameExporter::underWay() const {
    std::vector<ExportProgress> all;
    for (const auto& each : exports_) all.push_back({each.outputURL, *each.progress});
    return all;
}

}  // namespace sonavault
