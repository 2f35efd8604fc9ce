#pragma once

#include <QJsonObject>
#include <functional>
#include <string>

#include "hub/Switchboard.h"
#include "platform/Executor.h"

namespace sonavault {

/// The station's message hub as this program uses it. What is said while there is no connection is
/// lost, without a word.
///
/// Thread: main, callbacks included.
class StationHub {
  public:
    virtual ~StationHub() = default;

    /// Joins the hub under that name and stays joined; `onState` hears how that goes, in words.
    virtual void join(const std::string& name,
                      std::function<void(const std::string& state)> onState) = 0;

    virtual void subscribe(const std::string& topic,
                           std::function<void(const QJsonObject& payload)> handler) = 0;

    /// Tells those who listen to the topic at this moment.
    virtual void notify(const std::string& topic, const QJsonObject& payload) = 0;

    /// Leaves the value with the hub, for whoever asks for it.
    virtual void stateSet(const std::string& key, const QJsonObject& value) = 0;
};

/// The process's own connection to the hub.
class SwitchboardHub final : public StationHub {
  public:
    /// `mainQueue` lives as long as the process.
    explicit SwitchboardHub(Executor& mainQueue) : mainQueue_(mainQueue) {}

    void join(const std::string& name,
              std::function<void(const std::string& state)> onState) override {
        Switchboard::onStateChange([onState = std::move(onState)](const SwitchboardState& state) {
            onState(state.description());
        });
        Switchboard::connect(name, &mainQueue_);
    }
    void subscribe(const std::string& topic,
                   std::function<void(const QJsonObject& payload)> handler) override {
        Switchboard::subscribe(topic,
                               [handler = std::move(handler)](const SwitchboardMessage& message) {
                                   handler(message.payload);
                               });
    }
    void notify(const std::string& topic, const QJsonObject& payload) override {
        Switchboard::notify(Switchboard::Topic(topic), payload);
    }
    void stateSet(const std::string& key, const QJsonObject& value) override {
        Switchboard::stateSet(key, value);
    }

  private:
    Executor& mainQueue_;
};

}  // namespace sonavault
