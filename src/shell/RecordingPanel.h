#pragma once

#include <QFrame>

#include "shell/RecordingStatus.h"
#include "views/DotView.h"
#include "views/TextView.h"

class QGridLayout;

namespace sonavault {

/// The recording at a glance: whether it runs, how much of today there is, where it comes from and
/// how loud it is.
class RecordingPanel final : public QWidget {
  public:
    explicit RecordingPanel(QWidget* parent);

    /// Costs next to nothing when nothing changed: meant for every tick.
    void show(const RecordingStatus& status);

    QString stateText() const { return state_->text(); }
    QString durationText() const { return duration_->text(); }
    QString sourceText() const { return source_->text(); }
    QString inputLevelText() const { return level_->text(); }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    TextView* addRow(QGridLayout& rows, const QString& title);

    DotView* dot_;
    TextView* state_;
    TextView* duration_;
    TextView* caption_;
    TextView* source_ = nullptr;
    TextView* level_ = nullptr;
};

}  // namespace sonavault
