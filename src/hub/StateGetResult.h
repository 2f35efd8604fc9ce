#pragma once

#include <QJsonValue>
#include <variant>

#include "hub/SwitchboardError.h"

namespace sonavault {

/// What the hub holds under a key.
struct StateGetResult {
    struct Found {
        QJsonValue value;  ///< of any JSON type; null when the hub named none
        bool operator==(const Found&) const = default;
    };
    struct NotFound {
        bool operator==(const NotFound&) const = default;
    };

    std::variant<NotFound, Found, SwitchboardError> outcome;

    bool operator==(const StateGetResult&) const = default;

    static StateGetResult found(QJsonValue value) { return {Found{std::move(value)}}; }
    static StateGetResult notFound() { return {NotFound{}}; }
    static StateGetResult error(SwitchboardError error) { return {std::move(error)}; }
};

}  // namespace sonavault
