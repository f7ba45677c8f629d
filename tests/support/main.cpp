// Starts a test program. Every test case wants a process of its own, because the module's flags never clear:
// CTest runs them so.
#include <gmock/gmock.h>

#include "support/private_shared_memory.h"

int main(int argc, char** argv)
{
    testing::InitGoogleMock(&argc, argv);
    if (GTEST_FLAG_GET(list_tests)) return RUN_ALL_TESTS();
    const test::PrivateSharedMemory privateSharedMemory;
    return RUN_ALL_TESTS();
}
