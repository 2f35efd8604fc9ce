#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "hub/ManualHubNetwork.h"
#include "hub/SwitchboardClientImpl.h"
#include "support/ManualClock.h"
#include "support/ManualQueue.h"

namespace sonavault::testing {

inline QJsonObject json(const std::string& text) {
    return QJsonDocument::fromJson(QByteArray::fromStdString(text)).object();
}

/// A client between a hub that the test plays and callbacks that run when the test says so.
class ClientFixture : public ::testing::Test {
  protected:
    using State = SwitchboardState;
    using Kind = ConnectionEvent::Kind;

    ClientFixture() {
        client_->addStateObserver([this](const State& state) { heard_.push_back(state); });
    }

    void connect() { client_->connect("Sonavault", &callbacks_); }

    /// As far as the hub's answer to the announce.
    void join(const std::string& sessionId = "s1") {
        connect();
        acceptConnection(sessionId);
    }

    void acceptConnection(const std::string& sessionId = "s1") {
        hub().tell(Kind::ready);
        hubSays(R"({"type":"reply","from":"HUB","payload":{"session_id":")" + sessionId + R"("}})");
    }

    ManualConnection& hub() { return world_->newest(); }
    void hubSays(const std::string& line) { hub().deliver(line + "\n"); }

    /// What the client sent on the newest connection since the last call.
    std::vector<QJsonObject> takeSent() {
        std::vector<QJsonObject> objects;
        for (const auto& line : hub().sent) {
            EXPECT_EQ(line.find('\n'), line.size() - 1);
            objects.push_back(json(line));
        }
        hub().sent.clear();
        return objects;
    }

    /// The one envelope that was sent since the last look.
    QJsonObject sentOne() {
        const auto sent = takeSent();
        EXPECT_EQ(sent.size(), 1U);
        return sent.empty() ? QJsonObject() : sent.front();
    }

    std::vector<std::string> states() {
        callbacks_.runAll();
        std::vector<std::string> texts;
        for (const auto& state : std::exchange(heard_, {})) texts.push_back(state.description());
        return texts;
    }

    WallTime start_ = WallTime(std::chrono::seconds(1'778'248'987));
    ManualClock clock_{start_};
    ManualQueue mainQueue_;
    ManualQueue callbacks_;
    std::shared_ptr<ManualHubWorld> world_ = std::make_shared<ManualHubWorld>();
    std::vector<State> heard_;
    std::unique_ptr<SwitchboardClientImpl> client_ = std::make_unique<SwitchboardClientImpl>(
        SwitchboardClientImpl::Services{.clock = clock_,
                                        .mainQueue = mainQueue_,
                                        .network = std::make_unique<ManualHubNetwork>(world_),
                                        .socketPath = "/the/hub.sock"});
};

}  // namespace sonavault::testing
