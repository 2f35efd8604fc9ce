#include <QApplication>
#include <clocale>

#include "platform/Privileges.h"
#include "support/ExpectedQtWarnings.h"
#include "support/TestApplication.h"

namespace sonavault::testing {

// As the program itself prepares for its web engine, but on no screen.
std::unique_ptr<QCoreApplication> makeTestApplication(int& argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    if (runsAsRoot()) qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
    const ExpectedQtWarnings noSession("XDG_RUNTIME_DIR not set");
    auto application = std::make_unique<QApplication>(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    return application;
}

}  // namespace sonavault::testing
