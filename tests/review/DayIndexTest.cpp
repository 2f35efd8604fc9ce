#include "review/DayIndex.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <new>
#include <thread>

#include "review/PlaybackFeeder.h"
#include "review/PlaybackFile.h"
#include "support/SyntheticMp3.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

using namespace std::chrono_literals;
using Made = Result<Mp3FrameIndex>;

/// A day whose index is made when the test says so.
class DayIndexTest : public ::testing::Test {
  protected:
    DayIndexTest() { writeFile(file_, SyntheticMp3().frames(1000).bytes()); }
    ~DayIndexTest() override { release(); }

    std::shared_ptr<const DayIndex> heldUp() {
        return std::make_shared<const DayIndex>(
            [file = file_, gate = gate_.get_future().share()](const std::stop_token&) {
                gate.wait();
                return Mp3FrameIndex::of(file);
            });
    }

    void release() {
        if (!std::exchange(released_, true)) gate_.set_value();
    }

    std::shared_ptr<const PlaybackSource> sourceWith(std::shared_ptr<const DayIndex> index) const {
        return std::make_shared<const PlaybackSource>(
            PlaybackSource{.file = OpenFile::open(file_).value(),
                           .stamp = fileStamp(file_),
                           .index = std::move(index),
                           .probed = {575'999, 16000}});
    }

    TempFolder folder_;
    const std::filesystem::path file_ = folder_ / "day.mp3";
    std::promise<void> gate_;
    bool released_ = false;
};

TEST_F(DayIndexTest, is_there_once_it_is_made) {
    const auto index = heldUp();
    EXPECT_EQ(index->ifReady(), nullptr);
    release();
    const auto made = index->await({});
    ASSERT_TRUE(made);
    EXPECT_EQ(made.value()->info().frames, 576'000);
    EXPECT_EQ(index->ifReady(), made.value());
}

TEST_F(DayIndexTest, is_there_at_once_when_it_was_made_before) {
    const DayIndex index(std::move(Mp3FrameIndex::of(file_).value()));
    ASSERT_NE(index.ifReady(), nullptr);
    EXPECT_EQ(index.ifReady()->info().frames, 576'000);
}

TEST_F(DayIndexTest, tells_those_who_wait_why_it_cannot_be_made) {
    const DayIndex index([](const std::stop_token&) { return Made::failure("bad disk"); });
    const auto made = index.await({});
    ASSERT_FALSE(made);
    EXPECT_EQ(made.error(), "bad disk");
    EXPECT_EQ(index.ifReady(), nullptr);
}

TEST_F(DayIndexTest, for_which_there_is_no_memory_is_one_that_cannot_be_made) {
    const DayIndex index([](const std::stop_token&) -> Made { throw std::bad_alloc(); });
    EXPECT_EQ(index.await({}).error(), "std::bad_alloc");
    EXPECT_EQ(index.ifReady(), nullptr);
}

TEST_F(DayIndexTest, is_waited_for_no_longer_than_wanted) {
    const auto index = heldUp();
    std::stop_source stop;
    auto waiter =
        std::async(std::launch::async, [&] { return index->await(stop.get_token()).error(); });
    stop.request_stop();
    EXPECT_EQ(waiter.get(), "Stopped");
}

TEST_F(DayIndexTest, that_nobody_wants_any_more_is_given_up_without_waiting) {
    auto told = std::make_shared<std::promise<void>>();
    auto stopped = told->get_future();
    auto ended = gate_.get_future().share();
    {
        const DayIndex index([told, ended](const std::stop_token& stop) {
            while (!stop.stop_requested()) std::this_thread::yield();
            told->set_value();
            ended.wait();
            return Made::failure("Stopped");
        });
    }
    EXPECT_EQ(stopped.wait_for(30s), std::future_status::ready)
        << "it was told to stop, and the one who let go of it is here though it hangs";
}

TEST_F(DayIndexTest, holds_up_the_feeder_and_nobody_else) {
    const auto source = sourceWith(heldUp());
    EXPECT_EQ(source->info().frames, 575'999) << "what holds until there is an index";
    PlaybackFeeder feeder;
    const auto sound = std::make_shared<AudioOutputSound>(16000.0);
    feeder.feed(source, 1000, sound);
    EXPECT_EQ(sound->ready(), 0);
    release();
    const auto patience = std::chrono::steady_clock::now() + 30s;
    while (sound->ready() == 0 && std::chrono::steady_clock::now() < patience)
        std::this_thread::yield();
    EXPECT_GT(sound->ready(), 0);
    EXPECT_EQ(source->info().frames, 576'000);
}

TEST_F(DayIndexTest, does_not_keep_the_feeder_from_another_day) {
    const auto held = sourceWith(heldUp());
    const auto ready =
        sourceWith(std::make_shared<const DayIndex>(std::move(Mp3FrameIndex::of(file_).value())));
    PlaybackFeeder feeder;
    feeder.feed(held, 0, std::make_shared<AudioOutputSound>(16000.0));
    const auto sound = std::make_shared<AudioOutputSound>(16000.0);
    feeder.feed(ready, 0, sound);
    const auto patience = std::chrono::steady_clock::now() + 30s;
    while (sound->ready() == 0 && std::chrono::steady_clock::now() < patience)
        std::this_thread::yield();
    EXPECT_GT(sound->ready(), 0);
}

}  // namespace
}  // namespace sonavault::testing
