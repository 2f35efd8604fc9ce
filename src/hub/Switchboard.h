#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "hub/RequestRules.h"
#include "hub/StateGetResult.h"
#include "hub/SwitchboardMessage.h"
#include "hub/SwitchboardState.h"
#include "platform/Executor.h"

namespace sonavault {

/// What a query takes when its caller names no limit.
constexpr std::int64_t kPublicDefaultQueryTimeoutMs = kDefaultQueryTimeoutMs;

/// The only way in to the process's hub client: functions over the one client of the process, with
/// nothing of their own. What each does stands with SwitchboardClientImpl.
///
/// Each returns at once, connect() and disconnect() as soon as the network thread has come to the
/// end of what it is at, which never waits itself; results come on the callback queue. The first
/// use in the process is on the main thread. Texts are UTF-8.
namespace Switchboard {

/// To whom a direct message goes: one program or several, by name.
struct To {
    To(const char* recipient) : names{recipient} {}                            // NOLINT: meant
    To(std::string recipient) : names{std::move(recipient)} {}                 // NOLINT: meant
    To(std::vector<std::string> recipients) : names(std::move(recipients)) {}  // NOLINT: meant
    std::vector<std::string> names;
};

/// What a publication is about.
struct Topic {
    explicit Topic(std::string topic) : name(std::move(topic)) {}
    std::string name;
};

SwitchboardState connectionState();
void onStateChange(std::function<void(const SwitchboardState&)> observer);

/// `callbackQueue` lives as long as the process; without one the client makes its own.
void connect(const std::string& asApp, Executor* callbackQueue = nullptr);
void disconnect();

void subscribe(const std::string& topic, std::function<void(const SwitchboardMessage&)> handler);
void unsubscribe(const std::string& topic);

void notify(const To& to, const QJsonObject& payload = {});
void notify(const Topic& topic, const QJsonObject& payload = {});

void stateSet(const std::string& key, const QJsonValue& value);

/// Puts null under the key, which the hub takes for nothing.
void stateDelete(const std::string& key);
void stateGet(const std::string& key, std::function<void(StateGetResult)> handler);

void query(const std::string& to, const std::string& topic, const QJsonObject& payload,
           std::int64_t timeoutMs, std::function<void(QueryResult)> reply);

/// With a limit of kPublicDefaultQueryTimeoutMs, and with no payload besides.
void query(const std::string& to, const std::string& topic, const QJsonObject& payload,
           std::function<void(QueryResult)> reply);
void query(const std::string& to, const std::string& topic, std::function<void(QueryResult)> reply);

void ping(std::int64_t timeoutMs, std::function<void(PingResult)> completion);

/// With a limit of kDefaultPingTimeoutMs.
void ping(std::function<void(PingResult)> completion);

}  // namespace Switchboard
}  // namespace sonavault
