#include "platform/BackgroundJob.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>

#include <array>
#include <future>

namespace sonavault::testing {
namespace {

TEST(BackgroundJob, works_on_a_named_thread_that_yields_to_others) {
    std::promise<std::pair<std::string, int>> told;
    BackgroundJob job("waveform", [&told](const std::stop_token&) {
        std::array<char, 16> name{};
        pthread_getname_np(pthread_self(), name.data(), name.size());
        told.set_value({name.data(), getpriority(PRIO_PROCESS, 0)});
    });
    const auto [name, nice] = told.get_future().get();
    EXPECT_EQ(name, "waveform");
    EXPECT_EQ(nice, 10);
    EXPECT_LT(getpriority(PRIO_PROCESS, 0), 10);
}

TEST(BackgroundJob, yields_to_nobody_when_a_person_waits_for_it) {
    std::promise<int> told;
    const BackgroundJob job(
        "export", [&told](const std::stop_token&) { told.set_value(getpriority(PRIO_PROCESS, 0)); },
        BackgroundJob::Priority::asAnyOther);
    EXPECT_EQ(told.get_future().get(), getpriority(PRIO_PROCESS, 0));
}

TEST(BackgroundJob, that_is_left_is_told_to_stop_and_waited_for_by_nobody) {
    auto stopped = std::make_shared<std::promise<void>>();
    auto told = stopped->get_future();
    auto release = std::make_shared<std::promise<void>>();
    {
        BackgroundJob job(
            "job", [stopped, held = release->get_future().share()](const std::stop_token& stop) {
                while (!stop.stop_requested()) std::this_thread::yield();
                stopped->set_value();
                held.wait();
            });
        job.leave();
    }
    told.wait();
    release->set_value();
}

TEST(BackgroundJob, is_told_to_stop_when_its_owner_is_gone) {
    std::promise<void> begun;
    std::promise<bool> told;
    {
        BackgroundJob job("job", [&](const std::stop_token& stop) {
            begun.set_value();
            while (!stop.stop_requested()) std::this_thread::yield();
            told.set_value(true);
        });
        begun.get_future().wait();
        EXPECT_FALSE(job.hasEnded());
    }
    EXPECT_TRUE(told.get_future().get());
}

TEST(BackgroundJob, that_hangs_is_left_behind_after_a_second) {
    const auto release = std::make_shared<std::promise<void>>();
    const auto ended = std::make_shared<std::promise<void>>();
    const auto begun = std::chrono::steady_clock::now();
    {
        const BackgroundJob job("job", [release, ended](const std::stop_token&) {
            release->get_future().wait();
            ended->set_value();
        });
    }
    const auto waited = std::chrono::steady_clock::now() - begun;
    EXPECT_GE(waited, std::chrono::milliseconds(900));
    EXPECT_LT(waited, std::chrono::seconds(30));
    release->set_value();
    ended->get_future().wait();
}

TEST(BackgroundJob, lets_go_of_what_it_held_before_it_has_ended) {
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> left = held;
    const BackgroundJob job("job", [held = std::move(held)](const std::stop_token&) {});
    while (!job.hasEnded()) std::this_thread::yield();
    EXPECT_TRUE(left.expired());
}

}  // namespace
}  // namespace sonavault::testing
