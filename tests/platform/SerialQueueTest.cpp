#include "platform/SerialQueue.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "support/Eventually.h"

namespace sonavault::testing {
namespace {

// Done before main() and so before the application object is made.
const bool kWorkedWithoutApplication = [] {
    std::vector<int> ran;
    {
        SerialQueue queue("early");
        queue.post([&] { ran.push_back(1); });
        queue.runAndWait([&] { ran.push_back(2); });
        queue.post([&] { ran.push_back(3); });
    }
    return QCoreApplication::instance() == nullptr && ran == std::vector<int>{1, 2, 3};
}();

std::vector<int> upTo(int count) {
    std::vector<int> numbers;
    for (int i = 0; i < count; ++i) numbers.push_back(i);
    return numbers;
}

std::string nameOfThisThread() {
    char name[64] = "";
    pthread_getname_np(pthread_self(), name, sizeof name);
    return name;
}

TEST(SerialQueue, runs_work_before_there_is_an_application_object) {
    EXPECT_TRUE(kWorkedWithoutApplication);
}

TEST(SerialQueue, runs_work_in_the_order_in_which_it_was_posted) {
    std::vector<int> ran;
    SerialQueue queue("order");
    for (int i = 0; i < 2000; ++i) queue.post([&ran, i] { ran.push_back(i); });
    queue.runAndWait([] {});
    EXPECT_EQ(ran, upTo(2000));
}

TEST(SerialQueue, keeps_the_order_of_each_of_many_producers_and_runs_one_piece_at_a_time) {
    constexpr int kProducers = 4;
    constexpr int kPieces = 500;
    std::vector<std::vector<int>> ran(kProducers);
    int all = 0;  // no lock: the queue is one
    SerialQueue queue("producers");
    std::vector<std::thread> producers;
    for (std::size_t p = 0; p < kProducers; ++p)
        producers.emplace_back([&, p] {
            for (int i = 0; i < kPieces; ++i)
                queue.post([&, p, i] {
                    ran[p].push_back(i);
                    ++all;
                });
        });
    for (auto& each : producers) each.join();
    queue.runAndWait([] {});
    EXPECT_EQ(all, kProducers * kPieces);
    for (const auto& each : ran) EXPECT_EQ(each, upTo(kPieces));
}

TEST(SerialQueue, runs_what_work_posts_after_what_was_posted_before) {
    std::vector<std::string> ran;
    SerialQueue queue("nested");
    queue.runAndWait([&] {
        queue.post([&] {
            ran.push_back("first");
            queue.post([&] { ran.push_back("third"); });
        });
        queue.post([&] { ran.push_back("second"); });
    });
    queue.runAndWait([] {});
    queue.runAndWait([] {});
    EXPECT_EQ(ran, (std::vector<std::string>{"first", "second", "third"}));
}

TEST(SerialQueue, knows_its_own_thread) {
    SerialQueue queue("current");
    SerialQueue other("other");
    EXPECT_FALSE(queue.isCurrent());
    bool current = false;
    bool otherCurrent = true;
    queue.runAndWait([&] {
        current = queue.isCurrent();
        otherCurrent = other.isCurrent();
    });
    EXPECT_TRUE(current);
    EXPECT_FALSE(otherCurrent);
}

TEST(SerialQueue, runs_at_once_what_is_waited_for_on_the_queue_itself) {
    std::vector<int> ran;
    SerialQueue queue("waits");
    queue.runAndWait([&] {
        queue.post([&] { ran.push_back(3); });
        queue.runAndWait([&] { ran.push_back(1); });
        ran.push_back(2);
    });
    queue.runAndWait([] {});
    EXPECT_EQ(ran, (std::vector<int>{1, 2, 3}));
}

TEST(SerialQueue, runs_what_is_posted_before_it_ends) {
    std::vector<int> ran;
    {
        SerialQueue queue("ends");
        for (int i = 0; i < 1000; ++i) queue.post([&ran, i] { ran.push_back(i); });
    }
    EXPECT_EQ(ran, upTo(1000));
}

TEST(SerialQueue, ends_though_its_work_goes_on_posting_itself) {
    struct Endless {
        SerialQueue& queue;
        std::shared_ptr<int> ran;
        std::shared_ptr<void> held;
        void operator()() const {
            ++*ran;
            queue.post(*this);
        }
    };
    const auto ran = std::make_shared<int>(0);
    std::string letGoOn;
    {
        SerialQueue queue("endless");
        const auto letGo = [&letGoOn](int* number) {
            letGoOn = nameOfThisThread();
            delete number;
        };
        queue.post(Endless{queue, ran, std::shared_ptr<int>(new int(0), letGo)});
        queue.runAndWait([] {});
    }
    EXPECT_GE(*ran, 1);
    EXPECT_EQ(letGoOn, "endless");
    EXPECT_EQ(ran.use_count(), 1) << "work that did not run was not let go";
}

TEST(SerialQueue, bears_its_name_as_far_as_the_system_has_room) {
    const auto seen = [](const std::string& name) {
        std::string shown;
        SerialQueue queue(name);
        queue.runAndWait([&] { shown = nameOfThisThread(); });
        return shown;
    };
    EXPECT_EQ(seen("peaks"), "peaks");
    EXPECT_EQ(seen("fifteen.letters"), "fifteen.letters");
    EXPECT_EQ(seen("com.calderwave.sonavault.audiosrv"), "audiosrv");
    EXPECT_EQ(seen("a name without any dots"), "a name without ");
}

TEST(SerialQueue, serves_timers_and_work_side_by_side) {
    std::mutex mutex;
    std::condition_variable changed;
    bool fired = false;
    SerialQueue queue("timer");
    queue.post([&] {
        QTimer::singleShot(1, [&] {
            std::scoped_lock lock(mutex);
            fired = queue.isCurrent();
            changed.notify_all();
        });
    });
    std::unique_lock lock(mutex);
    EXPECT_TRUE(changed.wait_for(lock, std::chrono::seconds(30), [&] { return fired; }));
}

TEST(SerialQueue, serves_network_objects_that_live_on_it) {
    std::mutex mutex;
    std::condition_variable changed;
    std::string heard;
    SerialQueue serving("server");
    SerialQueue calling("client");
    std::unique_ptr<QTcpServer> server;
    std::unique_ptr<QTcpSocket> client;
    quint16 port = 0;

    serving.runAndWait([&] {
        server = std::make_unique<QTcpServer>();
        QObject::connect(server.get(), &QTcpServer::newConnection, server.get(), [&] {
            QTcpSocket* const peer = server->nextPendingConnection();
            QObject::connect(peer, &QTcpSocket::readyRead, peer, [&, peer] {
                const std::string bytes = peer->readAll().toStdString();
                std::scoped_lock lock(mutex);
                heard += bytes;
                changed.notify_all();
            });
        });
        ASSERT_TRUE(server->listen(QHostAddress::LocalHost));
        port = server->serverPort();
    });
    calling.runAndWait([&] {
        client = std::make_unique<QTcpSocket>();
        QObject::connect(client.get(), &QTcpSocket::connected, client.get(),
                         [&] { client->write("on the air"); });
        client->connectToHost(QHostAddress::LocalHost, port);
    });
    {
        std::unique_lock lock(mutex);
        EXPECT_TRUE(changed.wait_for(lock, std::chrono::seconds(30),
                                     [&] { return heard == "on the air"; }));
    }
    calling.runAndWait([&] { client.reset(); });
    serving.runAndWait([&] { server.reset(); });
}

TEST(MainQueue, runs_work_of_other_threads_on_the_main_thread_in_order) {
    const auto mainThread = std::this_thread::get_id();
    std::vector<int> ran;
    MainQueue queue;
    SerialQueue background("background");
    for (int i = 0; i < 1000; ++i)
        background.post([&, i] {
            queue.post([&, i] {
                EXPECT_EQ(std::this_thread::get_id(), mainThread);
                ran.push_back(i);
            });
        });
    EXPECT_TRUE(eventuallyServingEvents([&] { return ran.size() == 1000; }));
    EXPECT_EQ(ran, upTo(1000));
}

TEST(MainQueue, does_not_run_what_is_posted_on_the_main_thread_before_the_caller_is_done) {
    bool ran = false;
    MainQueue queue;
    queue.post([&] { ran = true; });
    EXPECT_FALSE(ran);
    EXPECT_TRUE(eventuallyServingEvents([&] { return ran; }));
}

TEST(MainQueue, is_served_in_a_loop_that_its_own_work_opens) {
    std::vector<std::string> ran;
    MainQueue queue;
    queue.post([&] {
        ran.push_back("dialog opens");
        QEventLoop dialog;
        std::thread([&] { queue.post([&] { dialog.quit(); }); }).join();
        dialog.exec();
        ran.push_back("dialog closes");
    });
    queue.post([&] { ran.push_back("meanwhile"); });
    queue.post([&] { queue.post([&] { ran.push_back("posted meanwhile"); }); });
    EXPECT_TRUE(eventuallyServingEvents([&] { return ran.size() == 4; }));
    EXPECT_EQ(ran.front(), "dialog opens");
    EXPECT_EQ(ran[1], "meanwhile");
}

TEST(MainQueue, lets_timers_fire_though_its_work_goes_on_posting_itself) {
    MainQueue queue;
    bool stop = false;
    int ran = 0;
    std::function<void()> again = [&] {
        ++ran;
        if (!stop) queue.post(again);
    };
    queue.post(again);
    bool fired = false;
    QTimer::singleShot(1, [&] { fired = true; });
    EXPECT_TRUE(eventuallyServingEvents([&] { return fired; }));
    stop = true;
    EXPECT_GE(ran, 1);
}

TEST(MainQueue, drops_what_has_not_run_when_it_ends) {
    const auto held = std::make_shared<int>(0);
    {
        MainQueue queue;
        queue.post([held] { ++*held; });
    }
    EXPECT_TRUE(eventuallyServingEvents([] { return true; }));
    EXPECT_EQ(*held, 0);
    EXPECT_EQ(held.use_count(), 1);
}

TEST(MainQueue, may_be_ended_by_its_own_work) {
    auto queue = std::make_unique<MainQueue>();
    std::vector<int> ran;
    queue->post([&] {
        ran.push_back(1);
        queue.reset();
    });
    queue->post([&] { ran.push_back(2); });
    EXPECT_TRUE(eventuallyServingEvents([&] { return !queue; }));
    EXPECT_EQ(ran, std::vector<int>{1});
}

}  // namespace
}  // namespace sonavault::testing
