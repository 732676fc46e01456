#include <gtest/gtest.h>

#include "commandlineoption.h"

TEST(CommandLineOption, LongOptionWithEqualsCarriesItsValue)
{
    const CommandLineOption option = splitCommandLineOption("--listen=127.0.0.1:0");
    EXPECT_EQ(option.name, "--listen");
    EXPECT_EQ(option.value, "127.0.0.1:0");
    EXPECT_TRUE(option.hasValue);
}

TEST(CommandLineOption, EmptyValueAfterEqualsIsAValue)
{
    const CommandLineOption option = splitCommandLineOption("--host=");
    EXPECT_EQ(option.name, "--host");
    EXPECT_EQ(option.value, "");
    EXPECT_TRUE(option.hasValue);
}

TEST(CommandLineOption, OnlyTheFirstEqualsSplits)
{
    const CommandLineOption option = splitCommandLineOption("--server=a=b");
    EXPECT_EQ(option.name, "--server");
    EXPECT_EQ(option.value, "a=b");
}

TEST(CommandLineOption, ShortOptionsAndWordsAreNotSplit)
{
    for (const char* argument : {"-h", "-p=3", "status", "x=1"}) {
        const CommandLineOption option = splitCommandLineOption(argument);
        EXPECT_EQ(option.name, argument);
        EXPECT_FALSE(option.hasValue);
    }
}

TEST(CommandLineOption, ValueComesFromTheNextArgument)
{
    const std::vector<std::string> args = {"--seed", "7", "--nodes"};
    std::size_t i = 0;
    CommandLineOption option = splitCommandLineOption(args[i]);
    std::string error;
    ASSERT_TRUE(takeCommandLineValue(option, args, i, error));
    EXPECT_EQ(option.value, "7");
    EXPECT_EQ(i, 1u);
    EXPECT_EQ(error, "");
}

TEST(CommandLineOption, OwnValueLeavesTheNextArgumentAlone)
{
    const std::vector<std::string> args = {"--seed=3", "--nodes"};
    std::size_t i = 0;
    CommandLineOption option = splitCommandLineOption(args[i]);
    std::string error;
    ASSERT_TRUE(takeCommandLineValue(option, args, i, error));
    EXPECT_EQ(option.value, "3");
    EXPECT_EQ(i, 0u);
}

TEST(CommandLineOption, LastArgumentWithoutValueNeedsAValue)
{
    const std::vector<std::string> args = {"--seed", "7", "--nodes"};
    std::size_t i = 2;
    CommandLineOption option = splitCommandLineOption(args[i]);
    std::string error;
    EXPECT_FALSE(takeCommandLineValue(option, args, i, error));
    EXPECT_EQ(error, "--nodes needs a value");
    EXPECT_EQ(i, 2u);
}
