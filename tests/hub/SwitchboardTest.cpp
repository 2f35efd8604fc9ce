#include "hub/Switchboard.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>

#include "hub/HubThread.h"
#include "support/Eventually.h"
#include "support/ScopedEnvironment.h"

namespace sonavault::testing {
namespace {

/// What callbacks on another thread said.
class Heard {
  public:
    void note(const std::string& line) {
        std::scoped_lock lock(mutex_);
        lines_.push_back(line);
    }
    std::vector<std::string> lines() const {
        std::scoped_lock lock(mutex_);
        return lines_;
    }
    bool eventuallyHas(const std::string& line) const {
        return eventually([&] {
            const auto all = lines();
            return std::find(all.begin(), all.end(), line) != all.end();
        });
    }

  private:
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
};

// One test for all of it, because the client is one for the whole process.
TEST(Switchboard, is_the_way_in_to_the_client_of_the_process) {
    HubThread hub;
    const ScopedEnvironment named("SWITCHBOARD_SOCKET", hub.path());
    // Never destroyed, as the client that calls back isn't.
    static Heard& heard = *new Heard;
    EXPECT_EQ(Switchboard::connectionState(), SwitchboardState{});
    Switchboard::onStateChange(
        [](const SwitchboardState& state) { heard.note(state.description()); });
    Switchboard::subscribe("t", [](const SwitchboardMessage& message) {
        heard.note("message " + message.payload["n"].toString().toStdString());
    });
    Switchboard::connect("Sonavault");
    EXPECT_TRUE(heard.eventuallyHas("connecting(attempt: 1)"));
    EXPECT_TRUE(heard.eventuallyHas("awaitingAnnounce"));
    ASSERT_TRUE(eventually(
        [] { return Switchboard::connectionState().is<SwitchboardState::Connected>(); }));
    ASSERT_TRUE(eventually([&] { return hub.heard(R"("type":"subscribe")"); }));

    Switchboard::notify(Switchboard::Topic("t"), {{"n", "one"}});
    EXPECT_TRUE(heard.eventuallyHas("message one"));
    Switchboard::notify("Sonavault", {{"n", "direct"}});
    EXPECT_TRUE(eventually([&] { return hub.heard(R"("to":"Sonavault","type":"notify")"); }));
    Switchboard::notify(std::vector<std::string>{"Sonavault", "B"});
    EXPECT_TRUE(eventually([&] { return hub.heard(R"("to":["Sonavault","B"])"); }));

    Switchboard::stateSet("k", 7);
    Switchboard::stateGet("k", [](const StateGetResult& result) {
        const auto* found = std::get_if<StateGetResult::Found>(&result.outcome);
        heard.note("value " + std::to_string(found ? found->value.toInt() : -1));
    });
    EXPECT_TRUE(heard.eventuallyHas("value 7"));
    Switchboard::stateDelete("k");
    EXPECT_TRUE(eventually([&] { return hub.heard(R"({"key":"k","value":null})"); }));
    Switchboard::stateGet("k", [](const StateGetResult& result) {
        if (result == StateGetResult::notFound()) heard.note("value gone");
    });
    EXPECT_TRUE(heard.eventuallyHas("value gone"));

    const auto tellRefusal = [](const QueryResult& result) {
        heard.note(result ? "answered" : "refused " + *result.error().hubErrorCode);
    };
    Switchboard::query("Nobody", "t", tellRefusal);
    EXPECT_TRUE(heard.eventuallyHas("refused no-such-app"));
    EXPECT_TRUE(hub.heard(R"("timeout_ms":5000)"));
    Switchboard::query("Nobody", "t", {{"b", 2}}, tellRefusal);
    EXPECT_TRUE(eventually([&] { return hub.heard(R"("payload":{"b":2},"timeout_ms":5000)"); }));
    Switchboard::query("Nobody", "t", {{"a", 1}}, 1234, tellRefusal);
    EXPECT_TRUE(eventually([&] { return hub.heard(R"("timeout_ms":1234)"); }));
    Switchboard::ping([](const PingResult& result) { heard.note(result ? "pong" : "no pong"); });
    EXPECT_TRUE(heard.eventuallyHas("pong"));

    Switchboard::unsubscribe("t");
    EXPECT_TRUE(eventually([&] { return hub.heard(R"("type":"unsubscribe")"); }));
    Switchboard::disconnect();
    EXPECT_EQ(Switchboard::connectionState(), SwitchboardState{});
    EXPECT_TRUE(heard.eventuallyHas("disconnected"));
}

}  // namespace
}  // namespace sonavault::testing
