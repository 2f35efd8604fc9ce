#pragma once

#include <QWidget>

namespace sonavault {

/// All rows of the list of days.
class DateRowsView final : public QWidget {
  public:
    explicit DateRowsView(QWidget* parent);
};

/// From now on a screen reader finds the list of days to be a list, whose items can be selected by
/// pressing them. May be called again.
///
/// Thread: main.
void installDateListAccessibility();

}  // namespace sonavault
