#include <gmock/gmock.h>
#include <signal.h>

#include "support/ExpectedQtWarnings.h"
#include "support/TestApplication.h"

namespace sonavault::testing {

__attribute__((weak)) std::unique_ptr<QCoreApplication> makeTestApplication(int& argc,
                                                                            char** argv) {
    return std::make_unique<QCoreApplication>(argc, argv);
}

}  // namespace sonavault::testing

int main(int argc, char** argv) {
    ::testing::InitGoogleMock(&argc, argv);
    // As the program itself does: a peer that goes away is an error to handle, not an end.
    signal(SIGPIPE, SIG_IGN);
    sonavault::testing::watchQtWarnings();
    const auto application = sonavault::testing::makeTestApplication(argc, argv);
    return RUN_ALL_TESTS();
}
