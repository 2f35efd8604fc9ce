#pragma once

#include <QColor>
#include <QWidget>
#include <functional>
#include <optional>
#include <string>

namespace sonavault {

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

    /// Does nothing when it has that colour already, so that it may be set at every tick.
    void setConnectionDotColour(const QColor& colour);

    /// Shows a hover text in place of the status text, until restoreStatus().
    void showHint(const std::string& text);
    void restoreStatus();
};

}  // namespace sonavault
