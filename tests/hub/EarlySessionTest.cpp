#include "hub/ClientFixture.h"

namespace sonavault::testing {
namespace {

using ::testing::ElementsAre;

/// A session that is told while the socket is still being opened, or between two attempts.
class HubEarlySessionTest : public ClientFixture, public ::testing::WithParamInterface<bool> {
  protected:
    void goToMoment() {
        connect();
        ASSERT_EQ(client_->currentState(), State{State::Connecting{1}});
        if (!GetParam()) return;
        // A break that the reader has not met yet: the socket's last line is still under way.
        hub().tell(Kind::failed, "broken");
        ASSERT_TRUE(client_->currentState().is<State::Reconnecting>());
    }
};

TEST_P(HubEarlySessionTest, is_no_handshake_when_it_answers_nothing) {
    goToMoment();
    const State before = client_->currentState();
    states();
    hubSays(R"({"type":"reply","from":"HUB","ref":"unknown","payload":{"session_id":"early"}})");
    hubSays(R"({"type":"reply","from":"HUB","payload":{"session_id":"early"}})");
    EXPECT_EQ(client_->currentState(), before);
    EXPECT_THAT(states(), ElementsAre());
}

TEST_P(HubEarlySessionTest, is_an_ordinary_reply_when_it_answers_a_request) {
    goToMoment();
    const State before = client_->currentState();
    std::vector<QJsonObject> answers;
    hub().sent.clear();
    client_->query("A", "t", {}, 5000, [&](const QueryResult& result) {
        answers.push_back(result ? result.value().payload : QJsonObject());
    });
    const auto id = sentOne()["id"].toString().toStdString();
    hubSays(R"({"type":"reply","from":"HUB","ref":")" + id +
            R"(","payload":{"session_id":"early"}})");
    EXPECT_EQ(client_->currentState(), before);
    callbacks_.runAll();
    EXPECT_THAT(answers, ElementsAre(QJsonObject{{"session_id", "early"}}));
}

INSTANTIATE_TEST_SUITE_P(While, HubEarlySessionTest, ::testing::Bool(), [](const auto& moment) {
    return moment.param ? "reconnecting" : "connecting";
});

}  // namespace
}  // namespace sonavault::testing
