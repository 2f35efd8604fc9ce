#pragma once

#include <QAbstractButton>
#include <QWidget>
#include <functional>
#include <optional>
#include <string>

#include "views/DotView.h"
#include "views/ElidedTextView.h"

namespace sonavault {

/// The automation's audio link, as the light at the window's foot shows it.
enum class LinkState {
    notInUse,      ///< grey: the line input is recorded, or nothing
    connected,     ///< green
    notConnected,  ///< red
};

/// The black line at the window's foot: one sentence for the person at the desk, the keys, the
/// settings, and whether the automation is connected.
///
/// Thread: main.
class StatusBarView final : public QWidget {
  public:
    static constexpr int kStatusBarHeight = 40;

    explicit StatusBarView(QWidget* parent);

    std::function<void()> onSettingsClicked;

    /// Stands until the next one.
    void setStatusBarText(const std::string& text);
    std::string statusBarText() const;

    /// How far long work has come, as a thin line that moves nothing. Range: 0 to 1; nothing when
    /// there is none
    void showProgress(std::optional<double> fraction);

    /// Does nothing when it is shown already, so that it may be set at every tick.
    void showLinkState(LinkState state);

    /// Shows a hover text in place of the status text, until restoreStatus().
    void showHint(const std::string& text);
    void restoreStatus();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void setHints();
    QRectF progressFrame() const;

    LinkState linkState_ = LinkState::notConnected;
    QWidget* speaker_;
    ElidedTextView* text_;
    ElidedTextView* hint_;
    QAbstractButton* settings_;
    DotView* connectionDot_;

    /// The status text, while a hover text stands in its place.
    std::optional<QString> hintSnapshot_;
    std::optional<double> progress_;
};

}  // namespace sonavault
