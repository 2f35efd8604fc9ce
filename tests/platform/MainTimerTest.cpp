#include "platform/MainTimer.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QEventLoop>

#include "support/Eventually.h"

namespace sonavault::testing {
namespace {

using namespace std::chrono_literals;

TEST(MainTimer, calls_once_and_not_before_its_time) {
    QtMainTimer timer;
    QtMainTimer later;
    int calls = 0;
    bool laterCame = false;
    QElapsedTimer waited;
    waited.start();
    qint64 cameAfter = 0;
    timer.start(20ms, [&] {
        ++calls;
        cameAfter = waited.elapsed();
    });
    later.start(60ms, [&] { laterCame = true; });
    ASSERT_TRUE(eventuallyServingEvents([&] { return laterCame; }));
    EXPECT_EQ(calls, 1);
    EXPECT_GE(cameAfter, 19) << "a precise timer may be a millisecond early";
}

TEST(MainTimer, may_be_started_again_by_what_it_calls) {
    QtMainTimer timer;
    int calls = 0;
    std::function<void()> again = [&] {
        if (++calls < 3) timer.start(1ms, again);
    };
    timer.start(1ms, again);
    EXPECT_TRUE(eventuallyServingEvents([&] { return calls == 3; }));
}

TEST(MainTimer, calls_the_latest_action_only_and_none_after_a_stop) {
    QtMainTimer timer;
    QtMainTimer later;
    int first = 0;
    int second = 0;
    bool laterCame = false;
    timer.start(1ms, [&] { ++first; });
    timer.start(2ms, [&] { ++second; });
    ASSERT_TRUE(eventuallyServingEvents([&] { return second == 1; }));
    timer.start(1ms, [&] { ++first; });
    timer.stop();
    later.start(20ms, [&] { laterCame = true; });
    ASSERT_TRUE(eventuallyServingEvents([&] { return laterCame; }));
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
}

TEST(MainTimer, goes_off_while_a_modal_loop_runs) {
    QtMainTimer timer;
    QtMainTimer opensDialog;
    bool wentOffInside = false;
    opensDialog.start(0ms, [&] {
        QEventLoop modal;
        timer.start(5ms, [&] {
            wentOffInside = true;
            modal.quit();
        });
        modal.exec(QEventLoop::DialogExec);
    });
    EXPECT_TRUE(eventuallyServingEvents([&] { return wentOffInside; }));
}

TEST(MainTimer, calls_nobody_once_it_is_gone) {
    int calls = 0;
    bool laterCame = false;
    QtMainTimer later;
    {
        QtMainTimer timer;
        timer.start(1ms, [&] { ++calls; });
    }
    later.start(20ms, [&] { laterCame = true; });
    ASSERT_TRUE(eventuallyServingEvents([&] { return laterCame; }));
    EXPECT_EQ(calls, 0);
}

}  // namespace
}  // namespace sonavault::testing
