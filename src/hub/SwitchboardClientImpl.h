#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hub/CallbackOutbox.h"
#include "hub/Envelope.h"
#include "hub/HubNetwork.h"
#include "hub/LineSplitter.h"
#include "hub/OneShot.h"
#include "hub/PendingRequests.h"
#include "hub/RequestRules.h"
#include "hub/Subscriptions.h"
#include "hub/SwitchboardState.h"
#include "platform/Clock.h"
#include "platform/Executor.h"
#include "platform/SerialQueue.h"

namespace sonavault {

constexpr std::string_view kSwitchboardSocketPath =
    "/Users/Shared/Calderwave/sockets/switchboard.sock";
constexpr double kInitialReconnectDelaySec = 0.5;
constexpr double kReconnectBackoffFactor = 2.0;
constexpr double kMaxReconnectDelaySec = 30.0;

/// Where the hub listens: kSwitchboardSocketPath, unless the environment variable
/// SWITCHBOARD_SOCKET names another path.
std::string switchboardSocketPath();

/// How long to wait before the attempt of that number. Range: `attempt` from 1. Units: seconds
double reconnectDelaySec(int attempt);

/// The process's one connection to the hub, kept up for as long as the process lives: a hub that is
/// not there yet, stops or starts again is waited for, and nobody has to know.
///
/// Thread: any, but for connect() and disconnect(), which must not be called at the same time.
/// Callbacks run on the callback queue, never within a call.
class SwitchboardClientImpl {
  public:
    using StateObserver = std::function<void(const SwitchboardState&)>;
    using MessageHandler = std::function<void(const SwitchboardMessage&)>;

    struct Services {
        const Clock& clock;
        Executor& mainQueue;  ///< runs callbacks while no other queue is known
        std::unique_ptr<HubNetwork> network;
        std::string socketPath = switchboardSocketPath();
    };

    /// What `services` refers to outlives the client.
    explicit SwitchboardClientImpl(Services services);

    /// Requests that still wait are never answered. Not on the callback or the network queue.
    ~SwitchboardClientImpl();
    SwitchboardClientImpl(const SwitchboardClientImpl&) = delete;
    SwitchboardClientImpl& operator=(const SwitchboardClientImpl&) = delete;

    /// The one of the process, made at first use and never destroyed.
    ///
    /// Thread: any, but the first use is on the main thread, with the application object in being.
    static SwitchboardClientImpl& shared();

    /// Joins the hub as `appName`, leaving a former connection. From now on callbacks run on
    /// `callbackQueue`, which outlives the client, or on a queue of the client's own.
    void connect(const std::string& appName, Executor* callbackQueue = nullptr);

    /// Leaves the hub, ends all subscriptions and fails what still waits for a reply.
    void disconnect();

    SwitchboardState currentState() const;

    /// Hears every state from now on, also one that is like the one before.
    void addStateObserver(StateObserver observer);

    /// Kept across reconnections, and also before the hub is there.
    void subscribe(const std::string& topic, MessageHandler handler);

    /// Ends all subscriptions of the topic.
    void unsubscribe(const std::string& topic);

    /// A message to programs by name, or to whoever listens to a topic. Lost without a connection.
    void notifyRecipients(const std::vector<std::string>& recipients, const QJsonObject& payload);
    void notifyTopic(const std::string& topic, const QJsonObject& payload);

    /// Puts `value` under `key` in the hub's store. Lost without a connection.
    void stateSet(const std::string& key, const QJsonValue& value);

    /// No time limit: answered by the hub, or when the connection breaks.
    void stateGet(const std::string& key, std::function<void(StateGetResult)> handler);

    /// `timeoutMs` is the hub's limit; some time later the client gives up by itself.
    void query(const std::string& recipient, const std::string& topic, const QJsonObject& payload,
               std::int64_t timeoutMs, std::function<void(QueryResult)> reply);

    void ping(std::int64_t timeoutMs, std::function<void(PingResult)> completion);

  private:
    using SharedObserver = std::shared_ptr<const StateObserver>;

    // Connection, only on the network queue.
    void letGo();
    void startNWConnection();
    void handleNWStateUpdate(const ConnectionEvent& event);
    void connectionBroke(const std::string& what, const std::string& error);
    void sendAnnounce();
    void completeHandshake(std::string sessionId);
    void scheduleReconnect();
    void performReconnect();
    void cancelReconnectTimer();
    void cancelConnection();
    void transition(SwitchboardState state);
    std::shared_ptr<HubConnection> replaceConnection(std::shared_ptr<HubConnection> connection);

    // What comes in, only on the network queue.
    void receive(std::string_view bytes);
    void drainBuffer();
    void dispatchIncoming(Envelope&& envelope, std::size_t decodedBytes);
    bool dispatchHandshake(const Envelope& envelope);
    void dispatchReply(Envelope&& envelope, std::size_t decodedBytes);
    void dispatchPing(const Envelope& envelope);
    void dispatchNotify(Envelope&& envelope, std::size_t decodedBytes);
    void pauseReceiving();
    void resumeReceiving();
    void forgetReceived();
    void resubscribeAll();
    void failOutstandingRequests(const std::string& reason);

    // What callers hear of it, only on the network queue.
    void postCallback(std::function<void()> callback);
    void waitForCallbacks();
    void deliverMore();

    // What goes out, on any thread.
    std::optional<Envelope> newEnvelope(std::string_view type) const;
    void send(const Envelope& envelope);
    void ask(const Envelope& envelope, PendingRequests::Request request);
    std::optional<std::string> ourAppName() const;
    Executor& callbackQueue() const;

    const Clock& clock_;
    Executor& mainQueue_;
    const std::string socketPath_;

    mutable std::mutex stateLock_;
    SwitchboardState currentState_;               // guarded by stateLock_
    std::vector<SharedObserver> stateObservers_;  // guarded by stateLock_
    std::optional<std::string> ourAppName_;       // guarded by stateLock_; absent before connect()
    Executor* callbackQueue_ = nullptr;           // guarded by stateLock_
    // Guarded by stateLock_ against senders; changed only on the network queue.
    std::shared_ptr<HubConnection> connection_;

    Subscriptions subscriptions_;
    PendingRequests pending_;

    // Only on the network queue.
    LineSplitter readBuffer_;
    bool receivingPaused_ = false;
    CallbackOutbox outbox_;
    std::shared_ptr<HubTimer> deliveryTimer_;  // while something waits in outbox_, or for it
    bool wasIntentionalDisconnect_ = false;
    int reconnectAttempt_ = 0;
    std::shared_ptr<HubTimer> reconnectTimer_;
    std::unique_ptr<SerialQueue> ownCallbackQueue_;

    // Last, so that it ends first: what runs on its queue uses all of the above.
    std::unique_ptr<HubNetwork> network_;
};

}  // namespace sonavault
