#pragma once

#include <QWidget>

#include "review/LevelScale.h"

namespace sonavault {

/// A channel's level as a bar.
///
/// Thread: main.
class LevelMeterView final : public QWidget {
  public:
    /// `channel`: its name for a screen reader, as in "left channel".
    LevelMeterView(const QString& channel, QWidget* parent);

    float level() const { return level_; }

    /// Redraws only for a change that can be seen, so that it may be set at every tick. Units: dBFS
    void setLevel(float level);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    float level_ = kSilenceDb;
    float shown_ = kSilenceDb;  // what the whole bar was last drawn for
};

}  // namespace sonavault
