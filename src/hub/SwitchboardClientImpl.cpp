#include "hub/SwitchboardClientImpl.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "hub/SystemHubNetwork.h"

namespace sonavault {

std::string switchboardSocketPath() {
    const char* named = std::getenv("SWITCHBOARD_SOCKET");
    return named != nullptr && *named != '\0' ? named : std::string(kSwitchboardSocketPath);
}

double reconnectDelaySec(int attempt) {
    return std::min(kInitialReconnectDelaySec * std::pow(kReconnectBackoffFactor, attempt - 1),
                    kMaxReconnectDelaySec);
}

SwitchboardClientImpl::SwitchboardClientImpl(Services services)
    : clock_(services.clock),
      mainQueue_(services.mainQueue),
      socketPath_(std::move(services.socketPath)),
      network_(std::move(services.network)) {}

// Callbacks on the client's own queue run to their end, and may still have asked for something.
SwitchboardClientImpl::~SwitchboardClientImpl() {
    network_->runAndWait([this] {
        letGo();
        // What the old connection may still say must not look for a queue that is gone.
        const std::scoped_lock lock(stateLock_);
        callbackQueue_ = nullptr;
    });
    ownCallbackQueue_.reset();
    network_->runAndWait([this] { letGo(); });
    network_.reset();
}

void SwitchboardClientImpl::letGo() {
    cancelReconnectTimer();
    forgetReceived();
    outbox_.clear();
    if (deliveryTimer_) deliveryTimer_->cancel();
    deliveryTimer_.reset();
    for (const auto& request : pending_.takeAll())
        if (request.timer) request.timer->cancel();
    replaceConnection(nullptr);
}

// The process ends without taking anything apart, and so the client is never destroyed: it would
// have to outlive whoever still calls it.
SwitchboardClientImpl& SwitchboardClientImpl::shared() {
    static const SystemClock clock;
    static auto* const mainQueue = new MainQueue;
    static auto* const client = new SwitchboardClientImpl(
        {.clock = clock, .mainQueue = *mainQueue, .network = std::make_unique<SystemHubNetwork>()});
    return *client;
}

void SwitchboardClientImpl::connect(const std::string& appName, Executor* callbackQueue) {
    network_->runAndWait([&] {
        cancelConnection();
        cancelReconnectTimer();
        if (!callbackQueue && !ownCallbackQueue_)
            ownCallbackQueue_ =
                std::make_unique<SerialQueue>("com.calderwave.switchboard.callbacks");
        {
            std::scoped_lock lock(stateLock_);
            ourAppName_ = appName;
            callbackQueue_ = callbackQueue ? callbackQueue : ownCallbackQueue_.get();
        }
        wasIntentionalDisconnect_ = false;
        reconnectAttempt_ = 0;
        transition({SwitchboardState::Connecting{1}});
        startNWConnection();
    });
}

void SwitchboardClientImpl::disconnect() {
    network_->runAndWait([this] {
        wasIntentionalDisconnect_ = true;
        cancelReconnectTimer();
        cancelConnection();
        subscriptions_.removeAll();
        failOutstandingRequests("client disconnected intentionally");
        transition({SwitchboardState::Disconnected{}});
    });
}

SwitchboardState SwitchboardClientImpl::currentState() const {
    std::scoped_lock lock(stateLock_);
    return currentState_;
}

void SwitchboardClientImpl::addStateObserver(StateObserver observer) {
    auto shared = std::make_shared<const StateObserver>(std::move(observer));
    std::scoped_lock lock(stateLock_);
    stateObservers_.push_back(std::move(shared));
}

void SwitchboardClientImpl::startNWConnection() {
    forgetReceived();
    auto connection = network_->makeConnection(
        socketPath_, {.event = [this](const ConnectionEvent& event) { handleNWStateUpdate(event); },
                      .received = [this](std::string_view bytes) { receive(bytes); }});
    replaceConnection(connection);
    connection->start();
}

void SwitchboardClientImpl::handleNWStateUpdate(const ConnectionEvent& event) {
    switch (event.kind) {
        case ConnectionEvent::Kind::setup:
        case ConnectionEvent::Kind::preparing:
            break;
        case ConnectionEvent::Kind::ready:
            transition({SwitchboardState::AwaitingAnnounce{}});
            sendAnnounce();
            break;
        case ConnectionEvent::Kind::failed:
            connectionBroke("failed", event.error);
            break;
        case ConnectionEvent::Kind::waiting:
            cancelConnection();
            connectionBroke("waiting", event.error);
            break;
        case ConnectionEvent::Kind::cancelled:
            if (wasIntentionalDisconnect_) transition({SwitchboardState::Disconnected{}});
            break;
    }
}

void SwitchboardClientImpl::connectionBroke(const std::string& what, const std::string& error) {
    failOutstandingRequests("NWConnection " + what + ": " + error);
    if (wasIntentionalDisconnect_)
        transition({SwitchboardState::Disconnected{}});
    else
        scheduleReconnect();
}

void SwitchboardClientImpl::sendAnnounce() {
    auto announce = newEnvelope("announce");
    if (!announce) return;
    announce->id = newEnvelopeId();
    send(*announce);
}

void SwitchboardClientImpl::completeHandshake(std::string sessionId) {
    transition({SwitchboardState::Connected{std::move(sessionId), clock_.now()}});
    reconnectAttempt_ = 0;
    resubscribeAll();
}

void SwitchboardClientImpl::scheduleReconnect() {
    if (wasIntentionalDisconnect_) return;
    ++reconnectAttempt_;
    const double delay = reconnectDelaySec(reconnectAttempt_);
    transition({SwitchboardState::Reconnecting{after(clock_.now(), delay), reconnectAttempt_}});
    cancelReconnectTimer();
    reconnectTimer_ =
        network_->makeTimer(std::chrono::milliseconds(static_cast<std::int64_t>(delay * 1000)),
                            [this] { performReconnect(); });
    reconnectTimer_->resume();
}

void SwitchboardClientImpl::performReconnect() {
    reconnectTimer_.reset();
    if (wasIntentionalDisconnect_) return;
    transition({SwitchboardState::Connecting{reconnectAttempt_}});
    startNWConnection();
}

void SwitchboardClientImpl::cancelReconnectTimer() {
    if (reconnectTimer_) reconnectTimer_->cancel();
    reconnectTimer_.reset();
}

/// Whatever is left of the former connection, half a line included.
void SwitchboardClientImpl::forgetReceived() {
    receivingPaused_ = false;
    readBuffer_.clear();
}

void SwitchboardClientImpl::cancelConnection() {
    forgetReceived();
    if (const auto former = replaceConnection(nullptr)) former->cancel();
}

void SwitchboardClientImpl::transition(SwitchboardState state) {
    std::vector<SharedObserver> observers;
    {
        std::scoped_lock lock(stateLock_);
        currentState_ = state;
        observers = stateObservers_;
    }
    if (observers.empty()) return;
    postCallback([observers = std::move(observers), state = std::move(state)] {
        for (const auto& observer : observers) (*observer)(state);
    });
}

/// Gives the former one, which must be let go without the lock.
std::shared_ptr<HubConnection> SwitchboardClientImpl::replaceConnection(
    std::shared_ptr<HubConnection> connection) {
    std::scoped_lock lock(stateLock_);
    connection_.swap(connection);
    return connection;
}

}  // namespace sonavault
