#pragma once

#include <QString>
#include <QStringList>

namespace sonavault {

/// A message that the person has to read, or a question they have to answer, before going on.
struct Alert {
    enum Style { informational, warning };

    Style style = informational;
    QString message;                            ///< the bold line
    QString information;                        ///< what stands below it
    QStringList buttons{QStringLiteral("OK")};  ///< the first is the default
    bool showsApplicationIcon = false;
};

/// Where alerts are shown.
///
/// Thread: main.
class Alerts {
  public:
    virtual ~Alerts() = default;

    /// Returns when the person has answered; everything that hangs on timers goes on meanwhile.
    /// Gives the index of the button chosen; the last one when the alert was closed without a
    /// choice.
    virtual int showModally(const Alert& alert) = 0;
};

/// Alerts in front of the window that is in use.
class MessageBoxAlerts final : public Alerts {
  public:
    int showModally(const Alert& alert) override;
};

}  // namespace sonavault
