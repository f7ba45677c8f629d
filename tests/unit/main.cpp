// Runs the tests with a /dev/shm of their own where the system allows it.
#include <gtest/gtest.h>

#include "private_shm.h"

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    test::EnterPrivateShm();
    return RUN_ALL_TESTS();
}
