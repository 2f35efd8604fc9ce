#include "hub/RequestRules.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace sonavault {
namespace {

using Code = SwitchboardError::Code;

std::optional<std::string> errorWord(const SwitchboardMessage& reply) {
    const QJsonValue error = reply.payload[QLatin1String("error")];
    if (!error.isString()) return std::nullopt;
    return error.toString().toStdString();
}

// A recipient's "error" is its payload, and the caller's to read.
std::optional<std::string> wordOfTheHub(const SwitchboardMessage& reply) {
    return reply.from == kHubName ? errorWord(reply) : std::nullopt;
}

SwitchboardError plainError(Code code, std::string message) {
    return {code, std::nullopt, std::move(message), std::nullopt};
}

}  // namespace

std::int64_t localFallbackMs(std::int64_t timeoutMs) {
    // A limit of millions of years is as good as none.
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max() / 4;
    const std::int64_t limit = std::clamp(timeoutMs, -kMost, kMost);
    // Whole numbers: half of the limit is cut towards zero, as the product is.
    return std::max(limit + 500, limit * 3 / 2);
}

StateGetResult stateGetResult(const SwitchboardMessage& reply) {
    if (const auto word = errorWord(reply))
        return StateGetResult::error({Code::hubError, word,
                                      "hub returned error \"" + *word + "\" for state-get",
                                      reply.payload});
    const QJsonValue exists = reply.payload[QLatin1String("exists")];
    if (!exists.isBool())
        return StateGetResult::error(
            plainError(Code::malformedReply, "state-get reply missing 'exists' field"));
    if (!exists.toBool()) return StateGetResult::notFound();
    const QJsonValue value = reply.payload[QLatin1String("value")];
    return StateGetResult::found(value.isUndefined() ? QJsonValue() : value);
}

QueryResult queryResult(const SwitchboardMessage& reply) {
    const auto word = wordOfTheHub(reply);
    if (!word) return reply;
    return QueryResult::failure({*word == "timeout" ? Code::timeout : Code::hubError, word,
                                 "hub error reply: \"" + *word + "\"", reply.payload});
}

PingResult pingResult(const SwitchboardMessage& reply) {
    const auto word = wordOfTheHub(reply);
    if (!word) return Done{};
    return PingResult::failure(
        {Code::hubError, word, "ping hub error: \"" + *word + "\"", reply.payload});
}

SwitchboardError queryTimedOut(std::int64_t fallbackMs) {
    return plainError(Code::timeout, "query timed out locally after " + std::to_string(fallbackMs) +
                                         "ms (no reply from hub or recipient)");
}

SwitchboardError pingTimedOut(std::int64_t timeoutMs) {
    return plainError(Code::timeout, "ping timed out after " + std::to_string(timeoutMs) + "ms");
}

SwitchboardError notConnectedError() {
    return plainError(Code::notConnected, "client not connected");
}

SwitchboardMessage connectionLostReply(const std::string& reason) {
    SwitchboardMessage reply;
    reply.type = "reply";
    reply.from = kHubName;
    reply.payload = {{"error", "connection_lost"}, {"detail", QString::fromStdString(reason)}};
    return reply;
}

}  // namespace sonavault
