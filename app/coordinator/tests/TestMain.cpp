#include <QCoreApplication>
#include <gtest/gtest.h>

// The network and file watching tests need a Qt application for their event loop.
int main(int argc, char** argv) {
    QCoreApplication application{argc, argv};
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
