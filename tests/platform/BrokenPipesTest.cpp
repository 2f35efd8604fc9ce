#include "platform/BrokenPipes.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>

namespace sonavault::testing {
namespace {

/// Writes to a reader that is gone. Gives the exit status: 0 when that was an error like others.
int writeToNobody() {
    std::signal(SIGPIPE, SIG_DFL);
    ignoreBrokenPipes();
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) return 1;
    ::close(ends[0]);
    return ::write(ends[1], "x", 1) < 0 && errno == EPIPE ? 0 : 2;
}

// In a process of its own, for what becomes of the signal is the whole process's.
TEST(BrokenPipesDeathTest, are_errors_and_no_end_of_the_process) {
    EXPECT_EXIT(std::exit(writeToNobody()), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace sonavault::testing
