#include <QCoreApplication>
#include <QTimer>
#include <csignal>
#include <iostream>

#include "automation/CommandReader.h"
#include "hub/DemoHub.h"
#include "hub/HubOptions.h"

namespace {

using namespace sonavault;
using namespace sonavault::demohub;

constexpr int kBadUsage = 2;
constexpr int kListenMs = 20;
constexpr std::size_t kMostShown = 500;

volatile std::sig_atomic_t endAsked = 0;

extern "C" void askForEnd(int) {
    endAsked = 1;
}

void say(const std::string& line) {
    std::cout << "hub: " << line.substr(0, kMostShown) << (line.size() > kMostShown ? "..." : "")
              << std::endl;
}

void quit(DemoHub& hub) {
    hub.obey({.kind = HubCommand::Kind::quit});
    QCoreApplication::exit(0);
}

void listen(DemoHub& hub, automation::CommandReader& commands) {
    if (endAsked) return quit(hub);
    for (const std::string& line : commands.take()) {
        const auto command = parseHubCommand(line);
        if (!command)
            say("not understood: " + line);
        else if (command->kind == HubCommand::Kind::quit)
            return quit(hub);
        else
            hub.obey(*command);
    }
}

int run(const HubOptions& options) {
    automation::CommandReader commands;
    DemoHub hub(options.socketPath, say);
    if (const auto listening = hub.listen(); !listening) {
        std::cerr << "sonavault-hub: " << listening.error() << "\n";
        return 1;
    }
    QTimer listening;
    QObject::connect(&listening, &QTimer::timeout, [&] { listen(hub, commands); });
    listening.start(kListenMs);
    return QCoreApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    std::signal(SIGTERM, askForEnd);
    std::signal(SIGINT, askForEnd);
    const auto options = parseHubOptions(QCoreApplication::arguments());
    if (!options) {
        std::cerr << "sonavault-hub: " << options.error() << " (see --help)\n";
        return kBadUsage;
    }
    if (options.value().wantsHelp) {
        std::cout << hubHelpText();
        return 0;
    }
    return run(options.value());
}
