#include "help/ParentLines.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <iostream>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace sonavault {

// Between the two threads. An event only wakes the main thread; what it is about lies here.
struct ParentLines::Shared {
    void put(std::string line) {
        const std::scoped_lock lock(mutex);
        lines.push_back(std::move(line));
        wake();
    }

    void end() {
        const std::scoped_lock lock(mutex);
        ended = true;
        wake();
    }

    void wake() {
        if (receiver) QCoreApplication::postEvent(receiver, new QEvent(QEvent::User));
    }

    std::mutex mutex;
    std::vector<std::string> lines;
    bool ended = false;
    QObject* receiver = nullptr;
};

class ParentLines::Receiver final : public QObject {
  public:
    Receiver(std::shared_ptr<Shared> shared, std::function<void(const std::string&)> onLine,
             std::function<void()> onEnd)
        : shared_(std::move(shared)), onLine_(std::move(onLine)), onEnd_(std::move(onEnd)) {
        const std::scoped_lock lock(shared_->mutex);
        shared_->receiver = this;
    }
    ~Receiver() override {
        const std::scoped_lock lock(shared_->mutex);
        shared_->receiver = nullptr;
    }
    Receiver(const Receiver&) = delete;
    Receiver& operator=(const Receiver&) = delete;

    bool event(QEvent* event) override {
        if (event->type() != QEvent::User) return QObject::event(event);
        std::unique_lock lock(shared_->mutex);
        const auto lines = std::exchange(shared_->lines, {});
        const bool ended = std::exchange(shared_->ended, false);
        lock.unlock();
        for (const auto& each : lines) onLine_(each);
        if (ended) onEnd_();
        return true;
    }

  private:
    const std::shared_ptr<Shared> shared_;
    const std::function<void(const std::string&)> onLine_;
    const std::function<void()> onEnd_;
};

ParentLines::ParentLines(std::function<void(const std::string&)> onLine,
                         std::function<void()> onEnd) {
    const auto shared = std::make_shared<Shared>();
    receiver_ = std::make_unique<Receiver>(shared, std::move(onLine), std::move(onEnd));
    std::thread([shared] {
        for (std::string line; std::getline(std::cin, line);) shared->put(line);
        shared->end();
    }).detach();
}

ParentLines::~ParentLines() = default;

}  // namespace sonavault
