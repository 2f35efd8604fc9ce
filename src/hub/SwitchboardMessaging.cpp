#include <QJsonArray>
#include <utility>

#include "hub/DecodedSize.h"
#include "hub/SwitchboardClientImpl.h"

namespace sonavault {
namespace {

/// How often it is looked whether callbacks have run.
constexpr std::chrono::milliseconds kDeliveryPause{10};

QString text(const std::string& utf8) {
    return QString::fromStdString(utf8);
}

/// A message on its way to its callbacks.
struct Delivery {
    SwitchboardMessage message;
    std::shared_ptr<const CallbackOutbox::Load> load;
};

}  // namespace

void SwitchboardClientImpl::subscribe(const std::string& topic, MessageHandler handler) {
    subscriptions_.add(topic, std::make_shared<const MessageHandler>(std::move(handler)));
    auto envelope = newEnvelope("subscribe");
    if (!envelope) return;
    envelope->topic = topic;
    send(*envelope);
}

void SwitchboardClientImpl::unsubscribe(const std::string& topic) {
    subscriptions_.remove(topic);
    auto envelope = newEnvelope("unsubscribe");
    if (!envelope) return;
    envelope->topic = topic;
    send(*envelope);
}

void SwitchboardClientImpl::notifyRecipients(const std::vector<std::string>& recipients,
                                             const QJsonObject& payload) {
    auto envelope = newEnvelope("notify");
    if (!envelope) return;
    QJsonArray names;
    for (const auto& each : recipients) names.append(text(each));
    envelope->to = names.size() == 1 ? names.first() : QJsonValue(names);
    if (!payload.isEmpty()) envelope->payload = payload;
    send(*envelope);
}

void SwitchboardClientImpl::notifyTopic(const std::string& topic, const QJsonObject& payload) {
    auto envelope = newEnvelope("notify");
    if (!envelope) return;
    envelope->topic = topic;
    if (!payload.isEmpty()) envelope->payload = payload;
    send(*envelope);
}

void SwitchboardClientImpl::stateSet(const std::string& key, const QJsonValue& value) {
    auto envelope = newEnvelope("state-set");
    if (!envelope) return;
    envelope->payload = {{"key", text(key)}, {"value", value.isUndefined() ? QJsonValue() : value}};
    send(*envelope);
}

void SwitchboardClientImpl::stateGet(const std::string& key,
                                     std::function<void(StateGetResult)> handler) {
    auto envelope = newEnvelope("state-get");
    if (!envelope)
        return callbackQueue().post([handler = std::move(handler)] {
            handler(StateGetResult::error(notConnectedError()));
        });
    envelope->id = newEnvelopeId();
    envelope->payload = {{"key", text(key)}};
    ask(*envelope, {[handler = std::move(handler)](const SwitchboardMessage& reply) {
                        handler(stateGetResult(reply));
                    },
                    nullptr});
}

void SwitchboardClientImpl::query(const std::string& recipient, const std::string& topic,
                                  const QJsonObject& payload, std::int64_t timeoutMs,
                                  std::function<void(QueryResult)> reply) {
    const auto once = std::make_shared<OneShot<QueryResult>>(std::move(reply), callbackQueue());
    auto envelope = newEnvelope("query");
    if (!envelope) return once->fire(QueryResult::failure(notConnectedError()));
    const std::string id = newEnvelopeId();
    envelope->id = id;
    envelope->to = text(recipient);
    envelope->topic = topic;
    envelope->timeoutMs = timeoutMs;
    if (!payload.isEmpty()) envelope->payload = payload;
    const std::int64_t fallbackMs = localFallbackMs(timeoutMs);
    auto timer =
        network_->makeTimer(std::chrono::milliseconds(fallbackMs), [this, id, once, fallbackMs] {
            pending_.take(id);
            once->fire(QueryResult::failure(queryTimedOut(fallbackMs)));
        });
    ask(*envelope,
        {[once](const SwitchboardMessage& answer) { once->fire(queryResult(answer)); }, timer});
}

void SwitchboardClientImpl::ping(std::int64_t timeoutMs,
                                 std::function<void(PingResult)> completion) {
    const auto once = std::make_shared<OneShot<PingResult>>(std::move(completion), callbackQueue());
    auto envelope = newEnvelope("ping");
    if (!envelope) return once->fire(PingResult::failure(notConnectedError()));
    const std::string id = newEnvelopeId();
    envelope->id = id;
    auto timer =
        network_->makeTimer(std::chrono::milliseconds(timeoutMs), [this, id, once, timeoutMs] {
            pending_.take(id);
            once->fire(PingResult::failure(pingTimedOut(timeoutMs)));
        });
    ask(*envelope,
        {[once](const SwitchboardMessage& answer) { once->fire(pingResult(answer)); }, timer});
}

// In this order: a reply or a time limit that comes at once must find the request.
void SwitchboardClientImpl::ask(const Envelope& envelope, PendingRequests::Request request) {
    const auto timer = request.timer;
    pending_.add(*envelope.id, std::move(request));
    if (timer) timer->resume();
    send(envelope);
}

void SwitchboardClientImpl::receive(std::string_view bytes) {
    readBuffer_.append(bytes);
    if (!receivingPaused_) drainBuffer();
}

// Stops between two lines when too much waits for its callbacks: the rest has its turn when they
// ran.
void SwitchboardClientImpl::drainBuffer() {
    while (const auto line = readBuffer_.next()) {
        const std::size_t size = decodedSize(*line);
        if (!isWorthDecoding(*line, size)) continue;
        if (auto envelope = Envelope::decode(*line))
            dispatchIncoming(std::move(envelope.value()), size);
        if (outbox_.isFull()) return pauseReceiving();
    }
}

void SwitchboardClientImpl::pauseReceiving() {
    receivingPaused_ = true;
    if (connection_) connection_->pauseReceiving(true);
    waitForCallbacks();
}

void SwitchboardClientImpl::resumeReceiving() {
    receivingPaused_ = false;
    drainBuffer();
    if (!receivingPaused_ && connection_) connection_->pauseReceiving(false);
}

// The order of the rules is part of the wire: the answer to the announce bears a `ref` too.
void SwitchboardClientImpl::dispatchIncoming(Envelope&& envelope, std::size_t decodedBytes) {
    if (envelope.type == "reply") {
        if (!dispatchHandshake(envelope)) dispatchReply(std::move(envelope), decodedBytes);
    } else if (envelope.type == "ping") {
        dispatchPing(envelope);
    } else if (envelope.type == "notify") {
        dispatchNotify(std::move(envelope), decodedBytes);
    }
}

bool SwitchboardClientImpl::dispatchHandshake(const Envelope& envelope) {
    if (envelope.from != kHubName || !envelope.payload) return false;
    const QJsonValue sessionId = envelope.payload->value(QLatin1String("session_id"));
    if (!sessionId.isString() || !currentState().is<SwitchboardState::AwaitingAnnounce>())
        return false;
    completeHandshake(sessionId.toString().toStdString());
    return true;
}

void SwitchboardClientImpl::dispatchReply(Envelope&& envelope, std::size_t decodedBytes) {
    if (!envelope.ref) return;
    auto request = pending_.take(*envelope.ref);
    if (request.timer) request.timer->cancel();
    if (!request.replied) return;
    const auto delivery = std::make_shared<const Delivery>(
        Delivery{SwitchboardMessage::of(std::move(envelope)), outbox_.add(decodedBytes)});
    postCallback([replied = std::move(request.replied), delivery] { replied(delivery->message); });
}

void SwitchboardClientImpl::dispatchPing(const Envelope& envelope) {
    auto reply = newEnvelope("reply");
    if (!reply || !envelope.id) return;
    reply->ref = envelope.id;
    reply->to = text(envelope.from);
    send(*reply);
}

void SwitchboardClientImpl::dispatchNotify(Envelope&& envelope, std::size_t decodedBytes) {
    if (!envelope.topic) return;
    const auto handlers = subscriptions_.handlers(*envelope.topic);
    if (handlers.empty()) return;
    const auto delivery = std::make_shared<const Delivery>(
        Delivery{SwitchboardMessage::of(std::move(envelope)), outbox_.add(decodedBytes)});
    for (const auto& handler : handlers)
        postCallback([handler, delivery] { (*handler)(delivery->message); });
}

// Whatever the hub or the end of its connection makes us tell goes this one way, so that nothing
// overtakes what came before it.
void SwitchboardClientImpl::postCallback(std::function<void()> callback) {
    outbox_.post(callbackQueue(), std::move(callback));
    waitForCallbacks();
}

// A hub that speaks faster than its listeners listen has to wait, or it would fill the memory and
// take their whole time. Asked again by the clock, for the callbacks may end on a thread that
// outlives us.
void SwitchboardClientImpl::waitForCallbacks() {
    if (deliveryTimer_ || (outbox_.isEmpty() && !receivingPaused_)) return;
    deliveryTimer_ = network_->makeTimer(kDeliveryPause, [this] { deliverMore(); });
    deliveryTimer_->resume();
}

void SwitchboardClientImpl::deliverMore() {
    deliveryTimer_.reset();
    outbox_.handOver();
    if (receivingPaused_ && !outbox_.isFull()) resumeReceiving();
    waitForCallbacks();
}

void SwitchboardClientImpl::resubscribeAll() {
    auto envelope = newEnvelope("subscribe");
    if (!envelope) return;
    for (const auto& topic : subscriptions_.topics()) {
        envelope->topic = topic;
        send(*envelope);
    }
}

void SwitchboardClientImpl::failOutstandingRequests(const std::string& reason) {
    auto requests = pending_.takeAll();
    for (const auto& request : requests)
        if (request.timer) request.timer->cancel();
    if (requests.empty()) return;
    const auto reply = std::make_shared<const SwitchboardMessage>(connectionLostReply(reason));
    for (auto& request : requests)
        postCallback([replied = std::move(request.replied), reply] { replied(*reply); });
}

/// Absent before the first connect().
std::optional<Envelope> SwitchboardClientImpl::newEnvelope(std::string_view type) const {
    const auto name = ourAppName();
    if (!name) return std::nullopt;
    Envelope envelope;
    envelope.type = type;
    envelope.from = *name;
    return envelope;
}

// Written out on the caller's thread: nothing of the caller's values crosses to another.
void SwitchboardClientImpl::send(const Envelope& envelope) {
    std::shared_ptr<HubConnection> connection;
    {
        std::scoped_lock lock(stateLock_);
        connection = connection_;
    }
    if (!connection) return;
    auto line = envelope.encode();
    if (!line || line.value().size() + 1 > kMaxEnvelopeBytes) return;
    line.value() += '\n';
    connection->send(std::move(line.value()));
}

std::optional<std::string> SwitchboardClientImpl::ourAppName() const {
    std::scoped_lock lock(stateLock_);
    return ourAppName_;
}

Executor& SwitchboardClientImpl::callbackQueue() const {
    std::scoped_lock lock(stateLock_);
    return callbackQueue_ ? *callbackQueue_ : mainQueue_;
}

}  // namespace sonavault
