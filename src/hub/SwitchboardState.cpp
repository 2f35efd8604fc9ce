#include "hub/SwitchboardState.h"

#include "platform/LocalTime.h"

namespace sonavault {
namespace {

std::string words(const SwitchboardState::Disconnected&) {
    return "disconnected";
}

std::string words(const SwitchboardState::Connecting& state) {
    return "connecting(attempt: " + std::to_string(state.attempt) + ")";
}

std::string words(const SwitchboardState::AwaitingAnnounce&) {
    return "awaitingAnnounce";
}

std::string words(const SwitchboardState::Connected& state) {
    return "connected(sessionId: \"" + state.sessionId +
           "\", since: " + iso8601WithMilliseconds(state.since) + ")";
}

std::string words(const SwitchboardState::Reconnecting& state) {
    return "reconnecting(nextAttemptAt: " + iso8601WithMilliseconds(state.nextAttemptAt) +
           ", attempt: " + std::to_string(state.attempt) + ")";
}

std::string words(const SwitchboardState::Failed& state) {
    return "failed(reason: \"" + state.reason + "\")";
}

}  // namespace

std::string SwitchboardState::description() const {
    return std::visit([](const auto& state) { return words(state); }, value);
}

std::string_view rawValue(DisconnectReason reason) {
    switch (reason) {
        case DisconnectReason::clean:
            return "clean";
        case DisconnectReason::abrupt:
            return "abrupt";
        case DisconnectReason::unknown:
            return "unknown";
    }
    return "";
}

}  // namespace sonavault
