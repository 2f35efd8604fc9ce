#pragma once

#include "export/AircheckCompiler.h"
#include "export/ExportFolder.h"
#include "export/ExportHost.h"
#include "export/FrameExporter.h"
#include "platform/Executor.h"

namespace sonavault {

/// The question with which a hand-made aircheck begins; the whole day is chosen at first.
AircheckQuestion aircheckQuestion();

/// The name offered for an aircheck of that day.
std::string suggestedAircheckName(AircheckMode mode, const std::string& date, HourWindow window);

/// The conversation in which the reviewer builds an aircheck of the day under review.
///
/// Thread: main.
class AircheckExport {
  public:
    /// All outlive this object.
    AircheckExport(ExportHost& host, const ExportedDay& day, ExportFolder& folder,
                   FrameExporter& exporter)
        : host_(host), day_(day), folder_(folder), exporter_(exporter) {}

    /// Asks, then exports in the background and tells how that went.
    void exportAircheck();

  private:
    struct Order;

    void saveSegments(AircheckMode mode, HourWindow window, std::vector<Selection> segments);
    void tell(const Result<Done, ExportError>& result, const Order& order);

    ExportHost& host_;
    const ExportedDay& day_;
    ExportFolder& folder_;
    FrameExporter& exporter_;
    Lifetime lifetime_;
};

}  // namespace sonavault
