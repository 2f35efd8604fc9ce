#pragma once

#include "export/ExportFolder.h"
#include "export/ExportHost.h"
#include "export/FrameExporter.h"
#include "platform/Executor.h"

namespace sonavault {

/// What is asked before `selections` are saved: each one's place and length, in order of time.
ExportAlert selectionSummary(const std::vector<Selection>& selections);

/// The conversation in which the reviewer saves the selections as one MP3 file.
///
/// Thread: main.
class SelectionExport {
  public:
    /// All outlive this object.
    SelectionExport(ExportHost& host, const ExportedDay& day, ExportFolder& folder,
                    FrameExporter& exporter)
        : host_(host), day_(day), folder_(folder), exporter_(exporter) {}

    /// Asks, then exports in the background and tells how that went. Does nothing without
    /// selections.
    void exportSelections();

  private:
    void tell(const Result<Done, ExportError>& result, std::size_t count, double total,
              const std::filesystem::path& output);

    ExportHost& host_;
    const ExportedDay& day_;
    ExportFolder& folder_;
    FrameExporter& exporter_;
    Lifetime lifetime_;
};

}  // namespace sonavault
