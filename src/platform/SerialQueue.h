#pragma once

#include <memory>
#include <string>

#include "platform/Executor.h"

namespace sonavault {

/// A named thread with an event loop: network objects live on it, and posted work runs on it in
/// order. Network objects need the application object, which then must exist before the queue is
/// made; posted work does not.
///
/// Destruction runs what is already posted, ends the loop and joins the thread; it must not happen
/// on the queue itself.
class SerialQueue final : public Executor {
  public:
    /// `name` is what a debugger shows for the thread (the part behind the last dot, where the
    /// system has no room for the whole).
    explicit SerialQueue(const std::string& name);
    ~SerialQueue() override;

    void post(std::function<void()> task) override;

    /// Runs `task` on the queue and waits for its end; at once when already on the queue.
    void runAndWait(const std::function<void()>& task);

    bool isCurrent() const;

  private:
    struct Thread;
    std::unique_ptr<Thread> thread_;
};

/// The main thread's event loop as an Executor: also serves posted work while menus and modal
/// dialogs are open.
///
/// Made and destroyed on the main thread while the application object exists. What has not run by
/// then never does.
class MainQueue final : public Executor {
  public:
    MainQueue();
    ~MainQueue() override;

    void post(std::function<void()> task) override;

  private:
    struct Inbox;
    std::shared_ptr<Inbox> inbox_;
};

}  // namespace sonavault
