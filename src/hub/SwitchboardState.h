#pragma once

#include <string>
#include <string_view>
#include <variant>

#include "platform/Clock.h"

namespace sonavault {

/// How the connection to the hub stands.
struct SwitchboardState {
    /// Nobody asked for a connection yet, or it was given up on purpose.
    struct Disconnected {
        bool operator==(const Disconnected&) const = default;
    };
    /// A socket is being opened.
    struct Connecting {
        int attempt = 1;  ///< 1 on a first connect, the number of the retry afterwards
        bool operator==(const Connecting&) const = default;
    };
    /// The socket is up and the hub has not answered the announce.
    struct AwaitingAnnounce {
        bool operator==(const AwaitingAnnounce&) const = default;
    };
    struct Connected {
        std::string sessionId;  ///< the hub's name for this connection
        WallTime since;
        bool operator==(const Connected&) const = default;
    };
    /// Waiting for the next attempt.
    struct Reconnecting {
        WallTime nextAttemptAt;
        int attempt = 1;
        bool operator==(const Reconnecting&) const = default;
    };
    /// Part of the vocabulary; the client never gives up, so it never enters it.
    struct Failed {
        std::string reason;
        bool operator==(const Failed&) const = default;
    };

    std::variant<Disconnected, Connecting, AwaitingAnnounce, Connected, Reconnecting, Failed> value;

    bool operator==(const SwitchboardState&) const = default;

    template <class Case>
    bool is() const {
        return std::holds_alternative<Case>(value);
    }

    /// For a log: "connecting(attempt: 1)", "awaitingAnnounce".
    std::string description() const;
};

/// How a connection ended, in the words of those who report it.
enum class DisconnectReason { clean, abrupt, unknown };

/// "clean", "abrupt" or "unknown".
std::string_view rawValue(DisconnectReason reason);

}  // namespace sonavault
