#include "hub/Switchboard.h"

#include <utility>

#include "hub/SwitchboardClientImpl.h"

namespace sonavault::Switchboard {
namespace {

SwitchboardClientImpl& client() {
    return SwitchboardClientImpl::shared();
}

}  // namespace

SwitchboardState connectionState() {
    return client().currentState();
}

void onStateChange(std::function<void(const SwitchboardState&)> observer) {
    client().addStateObserver(std::move(observer));
}

void connect(const std::string& asApp, Executor* callbackQueue) {
    client().connect(asApp, callbackQueue);
}

void disconnect() {
    client().disconnect();
}

void subscribe(const std::string& topic, std::function<void(const SwitchboardMessage&)> handler) {
    client().subscribe(topic, std::move(handler));
}

void unsubscribe(const std::string& topic) {
    client().unsubscribe(topic);
}

void notify(const To& to, const QJsonObject& payload) {
    client().notifyRecipients(to.names, payload);
}

void notify(const Topic& topic, const QJsonObject& payload) {
    client().notifyTopic(topic.name, payload);
}

void stateSet(const std::string& key, const QJsonValue& value) {
    client().stateSet(key, value);
}

void stateDelete(const std::string& key) {
    client().stateSet(key, QJsonValue::Null);
}

void stateGet(const std::string& key, std::function<void(StateGetResult)> handler) {
    client().stateGet(key, std::move(handler));
}

void query(const std::string& to, const std::string& topic, const QJsonObject& payload,
           std::int64_t timeoutMs, std::function<void(QueryResult)> reply) {
    client().query(to, topic, payload, timeoutMs, std::move(reply));
}

void query(const std::string& to, const std::string& topic, const QJsonObject& payload,
           std::function<void(QueryResult)> reply) {
    client().query(to, topic, payload, kPublicDefaultQueryTimeoutMs, std::move(reply));
}

void query(const std::string& to, const std::string& topic,
           std::function<void(QueryResult)> reply) {
    query(to, topic, QJsonObject(), std::move(reply));
}

void ping(std::int64_t timeoutMs, std::function<void(PingResult)> completion) {
    client().ping(timeoutMs, std::move(completion));
}

void ping(std::function<void(PingResult)> completion) {
    client().ping(kDefaultPingTimeoutMs, std::move(completion));
}

}  // namespace sonavault::Switchboard
