#include "hub/HubRouter.h"

#include <QJsonArray>
#include <algorithm>
#include <utility>

namespace sonavault::demohub {
namespace {

constexpr std::int64_t kUsualQueryLimitMs = 5000;
constexpr std::int64_t kLongestQueryLimitMs = 3'600'000;

Envelope replyOfTheHub(const Envelope& asked, QJsonObject payload) {
    Envelope reply;
    reply.type = "reply";
    reply.from = kHubName;
    reply.to = QString::fromStdString(asked.from);
    reply.ref = asked.id;
    reply.payload = std::move(payload);
    return reply;
}

QString keyOf(const Envelope& envelope) {
    return envelope.payload ? envelope.payload->value(QLatin1String("key")).toString() : QString();
}

QJsonArray recipientsOf(const Envelope& envelope) {
    if (!envelope.to) return {};
    return envelope.to->isArray() ? envelope.to->toArray() : QJsonArray{*envelope.to};
}

}  // namespace

std::int64_t queryLimitMs(const Envelope& query) {
    return std::clamp<std::int64_t>(query.timeoutMs.value_or(kUsualQueryLimitMs), 0,
                                    kLongestQueryLimitMs);
}

std::vector<Outgoing> HubRouter::received(int connection, const Envelope& envelope) {
    if (envelope.type == "announce") return announce(connection, envelope);
    if (envelope.type == "ping") return {{connection, replyOfTheHub(envelope, {})}};
    if (envelope.type == "notify") return notify(envelope);
    if (envelope.type == "state-get") return stateGet(connection, envelope);
    if (envelope.type == "query") return query(connection, envelope);
    if (envelope.type == "reply") return passReply(envelope);
    if (envelope.type == "state-set") stateSet(envelope);
    if (envelope.type == "subscribe" && envelope.topic) topics_[connection].insert(*envelope.topic);
    if (envelope.type == "unsubscribe" && envelope.topic)
        topics_[connection].erase(*envelope.topic);
    return {};
}

void HubRouter::left(int connection) {
    names_.erase(connection);
    topics_.erase(connection);
    std::erase_if(askers_, [&](const auto& each) { return each.second == connection; });
}

std::vector<Outgoing> HubRouter::publish(const std::string& from, const std::string& topic,
                                         const QJsonObject& payload) const {
    Envelope envelope;
    envelope.type = "notify";
    envelope.from = from;
    envelope.topic = topic;
    if (!payload.isEmpty()) envelope.payload = payload;
    return notify(envelope);
}

std::vector<Outgoing> HubRouter::queryTimedOut(const std::string& id) {
    const auto asker = askers_.extract(id);
    if (!asker) return {};
    Envelope asked;
    asked.id = id;
    const auto name = names_.find(asker.mapped());
    if (name != names_.end()) asked.from = name->second;
    return {{asker.mapped(), replyOfTheHub(asked, {{"error", "timeout"}})}};
}

std::vector<std::string> HubRouter::applications() const {
    std::vector<std::string> names;
    for (const auto& [connection, name] : names_) names.push_back(name);
    return names;
}

std::vector<Outgoing> HubRouter::announce(int connection, const Envelope& envelope) {
    names_[connection] = envelope.from;
    const QString session = "session-" + QString::number(++sessions_);
    return {{connection, replyOfTheHub(envelope, {{"session_id", session}})}};
}

std::vector<Outgoing> HubRouter::notify(const Envelope& envelope) const {
    std::vector<Outgoing> out;
    if (envelope.topic) {
        for (const auto& [connection, topics] : topics_)
            if (topics.contains(*envelope.topic)) out.push_back({connection, envelope});
        return out;
    }
    for (const auto& name : recipientsOf(envelope))
        for (auto& each : toNamed(name.toString().toStdString(), envelope))
            out.push_back(std::move(each));
    return out;
}

std::vector<Outgoing> HubRouter::stateGet(int connection, const Envelope& envelope) const {
    const QString key = keyOf(envelope);
    if (key.isEmpty()) return {{connection, replyOfTheHub(envelope, {{"error", "bad-request"}})}};
    const auto value = state_.find(key);
    if (value == state_.end()) return {{connection, replyOfTheHub(envelope, {{"exists", false}})}};
    return {{connection, replyOfTheHub(envelope, {{"exists", true}, {"value", value.value()}})}};
}

std::vector<Outgoing> HubRouter::query(int connection, const Envelope& envelope) {
    if (!envelope.id) return {};
    const auto recipients = recipientsOf(envelope);
    auto out = recipients.size() == 1
                   ? toNamed(recipients.first().toString().toStdString(), envelope)
                   : std::vector<Outgoing>();
    if (out.empty()) return {{connection, replyOfTheHub(envelope, {{"error", "no-such-app"}})}};
    askers_[*envelope.id] = connection;
    return out;
}

std::vector<Outgoing> HubRouter::passReply(const Envelope& envelope) {
    if (!envelope.ref) return {};
    const auto asker = askers_.extract(*envelope.ref);
    if (!asker) return {};
    return {{asker.mapped(), envelope}};
}

void HubRouter::stateSet(const Envelope& envelope) {
    const QString key = keyOf(envelope);
    if (key.isEmpty()) return;
    const QJsonValue value = envelope.payload->value(QLatin1String("value"));
    if (value.isNull() || value.isUndefined())
        state_.remove(key);
    else
        state_[key] = value;
}

std::vector<Outgoing> HubRouter::toNamed(const std::string& name, const Envelope& envelope) const {
    std::vector<Outgoing> out;
    for (const auto& [connection, known] : names_)
        if (known == name) out.push_back({connection, envelope});
    return out;
}

}  // namespace sonavault::demohub
