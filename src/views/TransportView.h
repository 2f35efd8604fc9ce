#pragma once

#include <QAbstractButton>
#include <QWidget>
#include <array>
#include <functional>
#include <string>

namespace sonavault {

class ElidedTextView;
class RoundButton;
class TextView;

/// What the buttons of the transport do.
struct TransportActions {
    std::function<void()> prevMarkerClicked;
    std::function<void()> playButtonClicked;
    std::function<void()> nextMarkerClicked;
    std::function<void()> inPointClicked;
    std::function<void()> outPointClicked;
    std::function<void()> exportClicked;
};

/// The clock of the playhead, the buttons below it, what was on the air there, and what is
/// selected.
///
/// Thread: main.
class TransportView final : public QWidget {
  public:
    TransportView(TransportActions actions, QWidget* parent);

    // Each does nothing when it is shown already, so that it may be set at every tick.
    void setTransportTime(const std::string& text);
    void setNowPlaying(const std::string& text);
    void showSelectionInfo(const std::string& text, bool canExport);

    /// "▶" or "⏸".
    void setPlayButtonTitle(const std::string& title);

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    using Action = std::function<void()> TransportActions::*;

    RoundButton* makeRoundButton(const QString& symbol, const QString& name, Action action,
                                 bool primary);
    void makeShuttle();
    void makeTexts();
    void makeExportButton();
    void run(Action action);
    void layOut();

    const TransportActions actions_;

    TextView* transportTimeLabel_ = nullptr;
    std::array<RoundButton*, 5> shuttle_{};
    ElidedTextView* nowPlayingLabel_ = nullptr;
    ElidedTextView* selectionInfoLabel_ = nullptr;
    QAbstractButton* exportButton_ = nullptr;
};

}  // namespace sonavault
