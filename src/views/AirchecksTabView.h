#pragma once

#include <QWidget>

#include "export/AircheckSchedule.h"

namespace sonavault {

/// The tab in which the rules of the weekly airchecks are written, one card each. Every change is
/// stored at once.
///
/// Thread: main.
class AirchecksTabView final : public QWidget {
  public:
    /// Reads the stored cards into `schedule`, which outlives this view; there is always one card.
    AirchecksTabView(AircheckSchedule& schedule, QWidget* parent);
};

}  // namespace sonavault
