#pragma once

#include <QLocalServer>
#include <QLocalSocket>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "hub/DelayedWork.h"
#include "hub/HubCommand.h"
#include "hub/HubRouter.h"
#include "hub/LineSplitter.h"
#include "platform/Result.h"

namespace sonavault::demohub {

/// A hub on a socket of its own, which misbehaves on command.
///
/// Thread: the one that made it, which runs an event loop.
class DemoHub {
  public:
    /// `say` gets a line for everything that passes.
    DemoHub(std::string socketPath, std::function<void(const std::string&)> say);
    ~DemoHub();
    DemoHub(const DemoHub&) = delete;
    DemoHub& operator=(const DemoHub&) = delete;

    /// Takes the place of a hub that ended without removing its socket, and of nothing else.
    /// Errors: in words.
    Outcome listen();

    void obey(const HubCommand& command);

    const HubRouter& router() const { return router_; }

  private:
    struct Connection {
        std::unique_ptr<QLocalSocket> socket;
        LineSplitter lines;
    };

    void takeNewcomers();
    void receive(int number);
    void handleLine(int number, const std::string& line);
    void ended(int number);
    void send(const std::vector<Outgoing>& all);
    void sendBytes(int number, const std::string& bytes);
    void write(int number, const std::string& bytes);
    void closeOne(int number);
    void closeAll();
    void setReading(bool reading);
    void pingAll();
    void show() const;

    const std::string path_;
    const std::function<void(const std::string&)> say_;
    HubRouter router_;
    std::unique_ptr<QLocalServer> server_;
    std::map<int, Connection> connections_;
    int newest_ = 0;
    int delayMs_ = 0;
    bool reading_ = true;
    bool silent_ = false;
    bool closesAfterLine_ = false;
    DelayedWork later_;
    QObject alive_;  // last, so that what is still to come finds it gone first
};

}  // namespace sonavault::demohub
