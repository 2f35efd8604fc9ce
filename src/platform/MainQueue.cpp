#include <QSocketNotifier>

#include "platform/SerialQueue.h"
#include "platform/TaskInbox.h"

namespace sonavault {

struct MainQueue::Inbox {
    TaskInbox tasks;
    QSocketNotifier bell{tasks.descriptor(), QSocketNotifier::Read};
};

MainQueue::MainQueue() : inbox_(std::make_shared<Inbox>()) {
    // Held while work runs, for a piece of work may destroy this queue.
    QObject::connect(&inbox_->bell, &QSocketNotifier::activated, &inbox_->bell,
                     [inbox = std::weak_ptr(inbox_)] {
                         if (const auto held = inbox.lock()) held->tasks.runWaiting();
                     });
}

MainQueue::~MainQueue() {
    inbox_->bell.setEnabled(false);
    inbox_->tasks.clear();
}

void MainQueue::post(std::function<void()> task) {
    inbox_->tasks.put(std::move(task));
}

}  // namespace sonavault
