#pragma once

#include <atomic>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <vector>

#include "export/ExportHost.h"
#include "export/FrameWalkExport.h"
#include "platform/BackgroundJob.h"
#include "platform/ClosableExecutor.h"

namespace sonavault {

/// How far an export has come.
struct ExportProgress {
    std::filesystem::path outputURL;
    double fraction = 0;  ///< of the day, 0 to 1
};

/// Exports in the background, several at a time if need be. All exports go through here.
///
/// Destruction gives up those under way: their files are not written and their callbacks not
/// called.
///
/// Thread: main.
class FrameExporter {
  public:
    /// How a job makes its cut, on the job's thread.
    using Walk = std::function<Result<Done, ExportError>(
        const ExportSource&, const std::optional<std::vector<Selection>>&,
        const std::filesystem::path&, const std::stop_token&, const std::function<void(double)>&)>;

    using Completion = std::function<void(const Result<Done, ExportError>&)>;

    /// `mainQueue` brings the results to the main thread. Both outlive this object.
    FrameExporter(const ExportedDay& day, Executor& mainQueue, Walk walk = performFrameWalkExport);
    ~FrameExporter();
    FrameExporter(const FrameExporter&) = delete;
    FrameExporter& operator=(const FrameExporter&) = delete;

    /// Exports `ranges`, or the reviewer's selections when absent, from the day as it is at this
    /// call, and returns at once. `completion` is called later, also when no thread can be had.
    void exportSelectionsToMP3(std::optional<std::vector<Selection>> ranges,
                               const std::filesystem::path& outputURL, Completion completion);

    /// The exports whose results are not yet told, in the order in which they were begun.
    std::vector<ExportProgress> underWay() const;

  private:
    using Finish = std::function<void(const Result<Done, ExportError>&)>;

    struct Export {
        std::filesystem::path outputURL;
        std::shared_ptr<std::atomic<double>> progress = std::make_shared<std::atomic<double>>(0);
        std::unique_ptr<BackgroundJob> job;
    };

    ExportSource sourceFor(const std::optional<std::vector<Selection>>& ranges) const;
    std::unique_ptr<BackgroundJob> begin(const Export& order,
                                         std::optional<std::vector<Selection>> ranges,
                                         const Finish& finish) const;
    void giveUp(const std::string& words, Finish finish) const;

    const ExportedDay& day_;
    const Walk walk_;
    // Shared with the jobs, one of which may hang in a frozen disk and outlive all else.
    std::shared_ptr<ClosableExecutor> mainQueue_;
    std::list<Export> exports_;
    Lifetime lifetime_;
};

}  // namespace sonavault
