#include <gtest/gtest.h>

#include <QCoreApplication>

// Sockets work only where an application object is.
int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
