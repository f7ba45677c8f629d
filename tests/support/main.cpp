// Starts a test program. CTest runs every test case in its own process, because the module's flags never clear.
#include <gmock/gmock.h>

#include "support/private_shared_memory.h"

int main(int argc, char** argv)
{
    testing::InitGoogleMock(&argc, argv);
    if (GTEST_FLAG_GET(list_tests)) return RUN_ALL_TESTS();
    const test::PrivateSharedMemory privateSharedMemory;
    return RUN_ALL_TESTS();
}
