#include <gtest/gtest.h>

#include "application.h"
#include "testenvironment.h"

int main(int argc, char** argv)
{
    TestEnvironment environment;
    ::testing::InitGoogleTest(&argc, argv);
    Application app(argc, argv);
    return RUN_ALL_TESTS();
}
