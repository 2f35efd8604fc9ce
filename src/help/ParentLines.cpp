#include "help/ParentLines.h"

#include <QObject>
#include <iostream>
#include <mutex>
#include <thread>

namespace sonavault {

struct ParentLines::Shared {
    void post(std::function<void()> call) {
        const std::scoped_lock lock(mutex);
        if (receiver) QMetaObject::invokeMethod(receiver.get(), std::move(call));
    }

    std::function<void(const std::string&)> onLine;
    std::function<void()> onEnd;
    std::mutex mutex;
    std::unique_ptr<QObject> receiver = std::make_unique<QObject>();
};

ParentLines::ParentLines(std::function<void(const std::string&)> onLine,
                         std::function<void()> onEnd)
    : shared_(std::make_shared<Shared>()) {
    shared_->onLine = std::move(onLine);
    shared_->onEnd = std::move(onEnd);
    std::thread([shared = shared_] {
        std::string line;
        while (std::getline(std::cin, line))
            shared->post([&heard = shared->onLine, line] { heard(line); });
        shared->post([&ended = shared->onEnd] { ended(); });
    }).detach();
}

ParentLines::~ParentLines() {
    const std::scoped_lock lock(shared_->mutex);
    shared_->receiver.reset();
}

}  // namespace sonavault
