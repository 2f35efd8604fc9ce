#include <QApplication>
#include <clocale>

#include "support/ExpectedQtWarnings.h"
#include "support/TestApplication.h"

namespace sonavault::testing {

// Windows, but on no screen.
std::unique_ptr<QCoreApplication> makeTestApplication(int& argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const ExpectedQtWarnings noSession("XDG_RUNTIME_DIR not set");
    auto application = std::make_unique<QApplication>(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    return application;
}

}  // namespace sonavault::testing
