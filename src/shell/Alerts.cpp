#include "shell/Alerts.h"

#include "shell/AlertBox.h"

namespace sonavault {

int MessageBoxAlerts::showModally(const Alert& alert) {
    return AlertBox(alert).showModally();
}

}  // namespace sonavault
