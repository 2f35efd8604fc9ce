#pragma once

#include <QCoreApplication>
#include <memory>

namespace sonavault::testing {

/// The application object under which all tests of a program run. A test program that needs another
/// kind defines this function itself, and its definition is taken.
std::unique_ptr<QCoreApplication> makeTestApplication(int& argc, char** argv);

}  // namespace sonavault::testing
