#include "recorder/MarkerInbox.h"

#include <algorithm>
#include <atomic>
#include <thread>

#include "recorder/RecorderFixture.h"

namespace sonavault {
namespace {

MarkerWire numbered(int number, std::size_t labelBytes = 0) {
    return {.type = "hour",
            .clockTime = std::to_string(number),
            .wallClockIso8601 = "2026-03-02T13:05:09.100Z",
            .label = std::string(labelBytes, 'x')};
}

class Inbox : public ::testing::Test {
  protected:
    void put(std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) inbox_.put(numbered(next_++));
    }
    /// Whether all that was put came, in its order.
    bool allCame() const {
        for (int i = 0; i < next_; ++i)
            if (came_.at(static_cast<std::size_t>(i)) != std::to_string(i)) return false;
        return came_.size() == static_cast<std::size_t>(next_);
    }

    int next_ = 0;
    std::vector<std::string> came_;
    testing::ManualQueue mainQueue_;
    MarkerInbox inbox_{mainQueue_,
                       [this](const MarkerWire& marker) { came_.push_back(marker.clockTime); }};
};

TEST_F(Inbox, hands_over_a_few_a_turn_in_their_order) {
    put(3 * kMarkersATurn + 1);
    EXPECT_EQ(mainQueue_.runAll(), 4);
    EXPECT_TRUE(allCame());
    put(1);
    EXPECT_EQ(mainQueue_.runAll(), 1);
    EXPECT_TRUE(allCame());
}

TEST_F(Inbox, lets_other_work_have_its_turn_in_between) {
    put(kMarkersATurn + 1);
    std::size_t cameBefore = 0;
    mainQueue_.post([&] { cameBefore = came_.size(); });
    mainQueue_.runAll();
    EXPECT_EQ(cameBefore, kMarkersATurn);
    EXPECT_TRUE(allCame());
}

TEST_F(Inbox, has_room_again_once_markers_have_been_taken_and_drops_none) {
    put(kMostWaitingMarkers - 1);
    EXPECT_TRUE(inbox_.hasRoom());
    put(1);
    EXPECT_FALSE(inbox_.hasRoom());
    put(1000);
    mainQueue_.runAll();
    EXPECT_TRUE(inbox_.hasRoom());
    EXPECT_TRUE(allCame());
}

TEST_F(Inbox, counts_what_large_markers_take) {
    constexpr std::size_t kLabelBytes = 65'000;
    std::size_t count = 0;
    for (; inbox_.hasRoom(); ++count) inbox_.put(numbered(next_++, kLabelBytes));
    EXPECT_EQ(count, kMostWaitingMarkerBytes / kLabelBytes + 1);
    mainQueue_.runAll();
    EXPECT_TRUE(inbox_.hasRoom());
    EXPECT_TRUE(allCame());
}

TEST_F(Inbox, takes_from_one_thread_what_another_puts) {
    constexpr int kMarkers = 20'000;
    std::atomic<bool> done{false};
    std::thread link([&] {
        for (int i = 0; i < kMarkers; ++i) {
            while (!inbox_.hasRoom()) std::this_thread::yield();
            inbox_.put(numbered(i));
        }
        done = true;
    });
    while (!done) mainQueue_.runAll();
    link.join();
    mainQueue_.runAll();
    next_ = kMarkers;
    EXPECT_TRUE(allCame());
}

TEST(InboxThatIsGone, does_nothing_more) {
    testing::ManualQueue mainQueue;
    int came = 0;
    {
        MarkerInbox inbox(mainQueue, [&](const MarkerWire&) { ++came; });
        inbox.put(numbered(0));
    }
    EXPECT_EQ(mainQueue.runAll(), 1);
    EXPECT_EQ(came, 0);
}

class ShoutingSender : public testing::RecorderFixture {};

TEST_F(ShoutingSender, is_held_back_and_loses_no_marker) {
    useLink();
    int sent = 0;
    for (int round = 0; round < 3; ++round) {
        for (; markerLink_->hasRoom(); ++sent) markerLink_->onMarker(numbered(sent));
        EXPECT_EQ(sent, (round + 1) * static_cast<int>(kMostWaitingMarkers));
        mainQueue_.runAll();
    }
    const std::string rows = testing::readFile(dayFile("csv"));
    EXPECT_EQ(std::count(rows.begin(), rows.end(), '\n'), sent + 1);
}

}  // namespace
}  // namespace sonavault
