#include "platform/LeavableThread.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <array>
#include <future>

namespace sonavault::testing {
namespace {

using namespace std::chrono_literals;

TEST(LeavableThread, works_under_its_name) {
    std::promise<std::string> told;
    LeavableThread thread("disk-flusher", [&told] {
        std::array<char, 16> name{};
        pthread_getname_np(pthread_self(), name.data(), name.size());
        told.set_value(name.data());
    });
    EXPECT_EQ(told.get_future().get(), "disk-flusher");
    thread.endWithin(1min);
    EXPECT_TRUE(thread.hasEnded());
}

TEST(LeavableThread, is_waited_for_and_has_released_what_it_held) {
    auto held = std::make_shared<int>();
    std::promise<void> release;
    LeavableThread thread("job", [held, go = release.get_future().share()] { go.wait(); });
    EXPECT_FALSE(thread.hasEnded());
    release.set_value();
    thread.endWithin(1min);
    EXPECT_TRUE(thread.hasEnded());
    EXPECT_EQ(held.use_count(), 1);
    thread.endWithin(1min);
}

TEST(LeavableThread, that_hangs_is_left_behind_and_ends_by_itself) {
    auto release = std::make_shared<std::promise<void>>();
    auto ended = std::make_shared<std::promise<void>>();
    auto told = ended->get_future();
    {
        LeavableThread thread("job", [ended, go = release->get_future().share()] {
            go.wait();
            ended->set_value();
        });
        thread.endWithin(10ms);
        EXPECT_FALSE(thread.hasEnded());
    }
    EXPECT_EQ(told.wait_for(0s), std::future_status::timeout);
    release->set_value();
    told.wait();
}

TEST(LeavableThread, that_nobody_waits_for_is_left_behind_with_its_owner) {
    auto release = std::make_shared<std::promise<void>>();
    auto ended = std::make_shared<std::promise<void>>();
    auto told = ended->get_future();
    {
        const LeavableThread thread("job", [ended, go = release->get_future().share()] {
            go.wait();
            ended->set_value();
        });
    }
    release->set_value();
    told.wait();
}

}  // namespace
}  // namespace sonavault::testing
