#pragma once

#include <QJsonObject>
#include <optional>
#include <string>
#include <string_view>

namespace sonavault {

/// Why a request to the hub came to nothing.
struct SwitchboardError {
    enum class Code {
        notConnected,    ///< the client was never connected
        timeout,         ///< no answer in time
        hubError,        ///< the hub refused; `hubErrorCode` holds its word
        wireError,       ///< a wire failure
        malformedReply,  ///< an envelope or reply of the wrong form
    };

    Code code = Code::wireError;
    std::optional<std::string> hubErrorCode;
    std::string message;
    std::optional<QJsonObject> detail;  ///< the payload of the reply that refused

    bool operator==(const SwitchboardError&) const = default;

    /// For a log: "SwitchboardError(hubError, hub=no-such-app: hub error reply: ...)".
    std::string description() const;
};

/// The code's own name, as in "notConnected".
std::string_view rawValue(SwitchboardError::Code code);

}  // namespace sonavault
