#include "support/gwTestEnv.h"

#include <QCoreApplication>
#include <QDir>

#include <gtest/gtest.h>

#include <cstdlib>

namespace {
void removeTestRoot()
{
    if (qEnvironmentVariableIsEmpty("GW_KEEP_TEST_ROOT"))
        QDir(gwTestRoot()).removeRecursively();
}
} // namespace

int main(int argc, char** argv)
{
    gwPrepareTestEnvironment();
    // Registered before any singleton exists, so it runs after their
    // destructors, which may still touch the log folder.
    std::atexit(removeTestRoot);
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
