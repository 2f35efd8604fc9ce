#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "help/HelpPage.h"
#include "help/ParentLines.h"
#include "help/SonavaultHelpWindow.h"
#include "platform/Privileges.h"

// The window of the help, in a process of its own:
//
//   sonavault-help [--attached] [ADDRESS]
//
// With --attached it belongs to the program that started it: it says "shown" on its standard output
// when its window is open, comes to the front at each line "raise" on its standard input and says
// "raised", and ends when that is closed.

namespace {

using namespace sonavault;

// The engine refuses to run as root inside its sandbox.
void letRootRunIt() {
    if (!runsAsRoot() || qEnvironmentVariableIsSet("QTWEBENGINE_DISABLE_SANDBOX")) return;
    qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
}

void say(const char* word) {
    std::puts(word);
    std::fflush(stdout);
}

int run(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setDesktopFileName(QStringLiteral("sonavault"));
    QStringList arguments = QApplication::arguments().mid(1);
    const bool attached = arguments.removeAll(QStringLiteral("--attached")) > 0;

    SonavaultHelpWindow window;
    window.bringToFront();
    window.load(QUrl(arguments.value(0, QString::fromStdString(helpAddress()))));
    std::unique_ptr<ParentLines> parent;
    if (attached) {
        parent = std::make_unique<ParentLines>(
            [&window](const std::string& line) {
                if (line != "raise") return;
                window.bringToFront();
                say("raised");
            },
            [] { QApplication::quit(); });
        say("shown");
    }
    return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    letRootRunIt();
    const int exitCode = run(argc, argv);
    // A thread may still be waiting for a line.
    std::_Exit(exitCode);
}
