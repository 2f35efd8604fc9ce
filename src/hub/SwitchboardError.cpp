#include "hub/SwitchboardError.h"

namespace sonavault {

std::string_view rawValue(SwitchboardError::Code code) {
    switch (code) {
        case SwitchboardError::Code::notConnected:
            return "notConnected";
        case SwitchboardError::Code::timeout:
            return "timeout";
        case SwitchboardError::Code::hubError:
            return "hubError";
        case SwitchboardError::Code::wireError:
            return "wireError";
        case SwitchboardError::Code::malformedReply:
            return "malformedReply";
    }
    return "";
}

std::string SwitchboardError::description() const {
    std::string text = "SwitchboardError(";
    text += rawValue(code);
    if (hubErrorCode) text += ", hub=" + *hubErrorCode;
    return text + ": " + message + ")";
}

}  // namespace sonavault
