#include "shell/StationHub.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "hub/HubThread.h"
#include "support/Eventually.h"
#include "support/ManualQueue.h"
#include "support/ScopedEnvironment.h"

namespace sonavault::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;

int countOf(const HubThread& hub, const std::string& part) {
    return static_cast<int>(hub.containing(part).size());
}

// One test for all of it, because the client is one for the whole process. What it calls back is
// never destroyed, as the client isn't.
TEST(SwitchboardHub, is_the_stations_way_to_the_hub) {
    static ManualQueue& mainQueue = *new ManualQueue;
    static std::vector<std::string>& heard = *new std::vector<std::string>;
    HubThread hub;
    hub.obey("refuse");
    const ScopedEnvironment named("SWITCHBOARD_SOCKET", hub.path());
    SwitchboardHub station(mainQueue);
    const auto eventuallyHears = [&](std::size_t count) {
        return eventually([&] {
            mainQueue.runAll();
            return heard.size() >= count;
        });
    };

    // Observed before it connects: the first state is not missed.
    station.join("Sonavault", [](const std::string& state) { heard.push_back(state); });
    EXPECT_TRUE(heard.empty()) << "never within the call";
    ASSERT_TRUE(eventuallyHears(2));
    EXPECT_THAT(heard, ElementsAre("connecting(attempt: 1)", StartsWith("reconnecting(")));

    // Without a hub: no effect, then or later, but for the subscriptions.
    for (int i = 0; i < 100; ++i) {
        station.stateSet("lost", {{"n", i}});
        station.notify("lost", {{"n", i}});
    }
    const auto listenAs = [&](const std::string& name) {
        station.subscribe("t", [name](const QJsonObject& payload) {
            heard.push_back(name + " " + payload["n"].toString().toStdString());
        });
    };
    listenAs("first");
    heard.clear();
    hub.obey("accept");
    ASSERT_TRUE(eventually([&] { return hub.heard(R"("type":"subscribe")"); }));
    EXPECT_FALSE(hub.heard("lost"));
    EXPECT_EQ(countOf(hub, R"("type":"announce")"), 1);
    EXPECT_EQ(countOf(hub, R"("type":"subscribe")"), 1);
    EXPECT_TRUE(hub.heard(R"(> {"from":"Sonavault","topic":"t","type":"subscribe","v":1})"));

    // A second subscription goes to the hub as well, and both hear, in their order.
    listenAs("second");
    ASSERT_TRUE(eventually([&] { return countOf(hub, R"("type":"subscribe")") == 2; }));
    mainQueue.runAll();
    heard.clear();
    hub.obey(R"(publish Cadenzo t {"n":"1"})");
    ASSERT_TRUE(eventuallyHears(2));
    // The demonstration hub keeps one subscription for each program and topic.
    EXPECT_THAT(heard, ElementsAre("first 1", "second 1"));

    station.notify("t", {{"n", "2"}});
    ASSERT_TRUE(eventuallyHears(4));
    EXPECT_THAT(heard, ElementsAre("first 1", "second 1", "first 2", "second 2"));
    station.stateSet("k", {{"a", 5}});
    EXPECT_TRUE(eventually(
        [&] { return hub.heard(R"("payload":{"key":"k","value":{"a":5}},"type":"state-set")"); }));
    Switchboard::disconnect();
}

}  // namespace
}  // namespace sonavault::testing
