#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "hub/SwitchboardError.h"
#include "platform/Result.h"

namespace sonavault {

/// The `v` of all outgoing envelopes, and of an incoming one that has none.
constexpr std::int64_t kProtocolVersion = 1;

/// The `from` of everything that the hub says in its own name.
constexpr std::string_view kHubName = "HUB";

/// The longest line that is sent. Units: bytes, line feed included
constexpr std::size_t kMaxEnvelopeBytes = 1'048'576;

/// One message between a program and the hub: a flat JSON object on a line of its own.
struct Envelope {
    std::int64_t v = kProtocolVersion;
    std::optional<std::string> id;  ///< of a message that expects a reply
    std::string type;
    std::string from;              ///< the sender's application name
    std::optional<QJsonValue> to;  ///< a text or a list of texts; taken from the wire as it stands
    std::optional<std::string> topic;
    std::optional<std::string> ref;         ///< on a reply: the `id` of what it answers
    std::optional<std::int64_t> timeoutMs;  ///< what the hub may take for a query
    std::optional<QJsonObject> payload;

    bool operator==(const Envelope&) const = default;

    /// The compact JSON text, without the line feed. What is not set is not written.
    ///
    /// Errors: in words, when the envelope holds what JSON can't (a number that is not finite).
    Result<std::string> encode() const;

    /// The envelope that one line holds. A wrong type in a place that may be empty leaves it empty,
    /// and an unknown version is like any other.
    ///
    /// Errors: `malformedReply`, when the line is no JSON, no object, or tells no type or sender.
    static Result<Envelope, SwitchboardError> decode(std::string_view line);
};

/// A fresh correlation id: a UUID in its upper-case text form. Thread: any.
std::string newEnvelopeId();

}  // namespace sonavault
