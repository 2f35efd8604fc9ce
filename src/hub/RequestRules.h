#pragma once

#include <cstdint>

#include "hub/StateGetResult.h"
#include "hub/SwitchboardError.h"
#include "hub/SwitchboardMessage.h"
#include "platform/Result.h"

namespace sonavault {

using QueryResult = Result<SwitchboardMessage, SwitchboardError>;
using PingResult = Result<Done, SwitchboardError>;

constexpr std::int64_t kDefaultQueryTimeoutMs = 5000;
constexpr std::int64_t kDefaultPingTimeoutMs = 1000;

/// How long a query waits for its reply by itself: longer than the hub's own limit, so that what
/// the caller normally sees is the hub's word. Units: milliseconds
std::int64_t localFallbackMs(std::int64_t timeoutMs);

/// What a reply means to the one who asked.
StateGetResult stateGetResult(const SwitchboardMessage& reply);
QueryResult queryResult(const SwitchboardMessage& reply);
PingResult pingResult(const SwitchboardMessage& reply);

/// What the caller hears when nothing answered.
SwitchboardError queryTimedOut(std::int64_t fallbackMs);
SwitchboardError pingTimedOut(std::int64_t timeoutMs);
SwitchboardError notConnectedError();

/// The reply that a broken connection stands for, so that every request ends by its ordinary rules.
SwitchboardMessage connectionLostReply(const std::string& reason);

}  // namespace sonavault
