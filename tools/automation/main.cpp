#include <QCoreApplication>
#include <QTimer>
#include <csignal>
#include <iostream>

#include "automation/AirSender.h"
#include "automation/CommandReader.h"

namespace {

using namespace sonavault;
using namespace sonavault::automation;

constexpr int kBadUsage = 2;
constexpr int kListenMs = 50;

volatile std::sig_atomic_t endAsked = 0;

extern "C" void askForEnd(int) {
    endAsked = 1;
}

void say(const std::string& line) {
    std::cout << "automation: " << line << std::endl;
}

void listen(AirSender& sender, CommandReader& commands) {
    if (endAsked) return sender.obey({Command::Kind::quit});
    for (const std::string& line : commands.take()) {
        if (const auto command = parseCommand(line))
            sender.obey(*command);
        else
            say("not understood: " + line);
    }
}

int run(const Options& options) {
    const SystemClock clock;
    CommandReader commands;
    AirSender sender(options, clock, say);
    QTimer listening;
    QObject::connect(&listening, &QTimer::timeout, [&] { listen(sender, commands); });
    listening.start(kListenMs);
    sender.start([](int exitCode) { QCoreApplication::exit(exitCode); });
    return QCoreApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    std::signal(SIGTERM, askForEnd);
    std::signal(SIGINT, askForEnd);
    const auto options = parseOptions(QCoreApplication::arguments());
    if (!options) {
        std::cerr << "sonavault-automation: " << options.error() << " (see --help)\n";
        return kBadUsage;
    }
    if (options.value().wantsHelp) {
        std::cout << helpText();
        return 0;
    }
    return run(options.value());
}
