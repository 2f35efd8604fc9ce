#include "support/ExpectedQtWarnings.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <QtGlobal>

namespace sonavault::testing {
namespace {

TEST(ExpectedQtWarnings, fail_a_test_that_did_not_announce_them) {
    EXPECT_NONFATAL_FAILURE(qWarning("the socket is strange"), "the socket is strange");
    EXPECT_NONFATAL_FAILURE(qCritical("the socket is odd"), "the socket is odd");
}

TEST(ExpectedQtWarnings, pass_while_they_are_announced) {
    {
        const ExpectedQtWarnings announced("socket");
        qWarning("the socket is strange");
        qCritical("another socket is strange");
        EXPECT_EQ(announced.count(), 2);
        EXPECT_NONFATAL_FAILURE(qWarning("the server is strange"), "the server is strange");
        EXPECT_EQ(announced.count(), 2);
    }
    EXPECT_NONFATAL_FAILURE(qWarning("the socket is strange"), "the socket is strange");
}

}  // namespace
}  // namespace sonavault::testing
