#include <QApplication>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "platform/BrokenPipes.h"
#include "platform/SingleInstance.h"
#include "shell/AppDelegate.h"
#include "shell/CommandLine.h"
#include "shell/DisplayChoice.h"
#include "shell/StationServices.h"
#include "views/Theme.h"

namespace {

using namespace sonavault;

/// The first lines of a log that somebody captures must not wait for a full buffer.
void makeOutputLineBuffered() {
    for (std::FILE* stream : {stdout, stderr}) std::setvbuf(stream, nullptr, _IOLBF, BUFSIZ);
}

void say(std::FILE* stream, const std::string& text) {
    std::fputs(text.c_str(), stream);
    std::fputc('\n', stream);
}

/// The exit code, when the command line asks for something else than running.
std::optional<int> answerCommandLine(const CommandLine& line) {
    switch (line.request) {
        case CommandLine::run:
            return std::nullopt;
        case CommandLine::version:
            say(stdout, versionText());
            return 0;
        case CommandLine::help:
            say(stdout, helpText());
            return 0;
        case CommandLine::unknown:
            say(stderr, unknownOptionText(line.word));
            return 2;
    }
    return 2;
}

void doWithoutDisplay() {
    const auto platform =
        platformWithoutDisplay([](const char* name) -> const char* { return std::getenv(name); });
    if (!platform) return;
    qputenv("QT_QPA_PLATFORM", QByteArray::fromStdString(*platform));
    StandardOutputLog().line("Sonavault: there is no display; running without a window");
}

[[noreturn]] void run(int argc, char** argv) {
    SingleInstance(SingleInstance::defaultRegistry()).takeOver();
    doWithoutDisplay();
    QApplication application(argc, argv);
    // The application object takes over the person's locale, whose decimal comma must reach no
    // number of ours.
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setDesktopFileName(QStringLiteral("sonavault"));
    QApplication::setFont(interfaceFont(13));

    StationServices station;
    AppDelegate delegate(station.services());
    delegate.applicationDidFinishLaunching();
    const int exitCode = QApplication::exec();
    // A quit is no stop: the day's file is left as a crash would leave it, and nothing is waited
    // for.
    std::_Exit(exitCode);
}

}  // namespace

int main(int argc, char** argv) {
    makeOutputLineBuffered();
    ignoreBrokenPipes();
    if (const auto exitCode = answerCommandLine(parseCommandLine({argv + 1, argv + argc})))
        return *exitCode;
    run(argc, argv);
}
