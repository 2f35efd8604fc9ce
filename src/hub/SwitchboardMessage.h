#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <optional>
#include <string>

#include "hub/Envelope.h"

namespace sonavault {

/// What the hub brought to a caller.
struct SwitchboardMessage {
    std::string type;
    std::string from;
    std::optional<QJsonValue> to;
    std::optional<std::string> topic;
    std::optional<std::string> id;
    std::optional<std::string> ref;
    QJsonObject payload;  ///< empty when the envelope had none

    bool operator==(const SwitchboardMessage&) const = default;

    /// Takes the envelope's contents over, so that nothing of them stays with the reader's thread.
    static SwitchboardMessage of(Envelope&& envelope) {
        return {std::move(envelope.type),
                std::move(envelope.from),
                std::move(envelope.to),
                std::move(envelope.topic),
                std::move(envelope.id),
                std::move(envelope.ref),
                envelope.payload ? std::move(*envelope.payload) : QJsonObject()};
    }
};

}  // namespace sonavault
