#include <QCoreApplication>
#include <QTimer>
#include <csignal>
#include <iostream>

#include "automation/AirSender.h"
#include "automation/CommandReader.h"
#include "automation/MarkerSender.h"

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

/// The two links of a station.
struct Links {
    AirSender air;
    MarkerSender markers;
};

void obey(const std::string& line, Links& links) {
    if (const auto command = parseCommand(line))
        links.air.obey(*command);
    else if (const auto order = parseMarkerOrder(line))
        links.markers.obey(*order);
    else
        say("not understood: " + line);
}

void listen(Links& links, CommandReader& commands) {
    if (endAsked) return links.air.obey({Command::Kind::quit});
    for (const std::string& line : commands.take()) obey(line, links);
}

int run(const Options& options) {
    const SystemClock clock;
    CommandReader commands;
    Links links{{options, clock, say}, {options.markers, clock, say}};
    QTimer listening;
    QObject::connect(&listening, &QTimer::timeout, [&] { listen(links, commands); });
    listening.start(kListenMs);
    links.markers.start();
    links.air.start([&links](int exitCode) {
        links.markers.end();
        QCoreApplication::exit(exitCode);
    });
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
