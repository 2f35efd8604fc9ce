#pragma once

#include <QWidget>

#include "review/LevelScale.h"

namespace sonavault {

class DateListHost;

/// How loud the recorder's input is, as three lights. Clicks fall through to what lies below.
///
/// Thread: main.
class RecordingClusterView final : public QWidget {
  public:
    /// `host` outlives this view.
    RecordingClusterView(const DateListHost& host, QWidget* parent);

    /// Brings the lights up to date; draws anew only when one of them goes on or off, so that it
    /// may be called at every tick.
    void updateLevels();

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    const DateListHost& host_;
    ClusterLights lights_;
};

}  // namespace sonavault
