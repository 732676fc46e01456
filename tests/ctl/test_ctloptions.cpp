#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "ctloptions.h"
#include "ctltestsupport.h"

TEST(CtlOptions, DefaultsAreLocalhostAndPort5840)
{
    CtlOptions options;
    std::string error;
    ASSERT_TRUE(parseCtlOptions({"batches"}, options, error)) << error;
    EXPECT_EQ(options.host, "127.0.0.1");
    EXPECT_EQ(options.port, 5840);
    EXPECT_FALSE(options.json);
    EXPECT_EQ(options.timeoutMs, 10000);
    EXPECT_EQ(options.command, CtlCommand::Batches);
    EXPECT_EQ(options.address(), "127.0.0.1:5840");
}

TEST(CtlOptions, APortAfterTheHostOverridesThePortOption)
{
    CtlOptions options;
    std::string error;
    ASSERT_TRUE(
        parseCtlOptions({"--port", "6000", "--host", "farm:7000", "--json", "nodes"}, options, error));
    EXPECT_EQ(options.host, "farm:7000");
    EXPECT_EQ(options.port, 6000);
    EXPECT_EQ(options.address(), "farm:7000");
    EXPECT_TRUE(options.json);

    CtlOptions plain;
    ASSERT_TRUE(parseCtlOptions({"--host=farm", "--port=6000", "nodes"}, plain, error));
    EXPECT_EQ(plain.address(), "farm:6000");
}

TEST(CtlOptions, TheTimeOutIsInSecondsAndZeroMeansNoLimit)
{
    const std::pair<const char*, int> good[]
        = {{"10", 10000}, {"0", -1}, {"0.0", -1}, {"2.5", 2500}, {"0.001", 1}, {"86400", 86400000}};
    for (const auto& [text, milliseconds] : good) {
        int timeout = 0;
        EXPECT_TRUE(parseTimeout(text, timeout)) << text;
        EXPECT_EQ(timeout, milliseconds) << text;
    }
    for (const char* text : {"", "-1", "abc", "1e3", "86401", "0.0001", "1.2.3", " 5"}) {
        int timeout = 0;
        EXPECT_FALSE(parseTimeout(text, timeout)) << text;
    }
    CtlOptions options;
    std::string error;
    ASSERT_TRUE(parseCtlOptions({"--timeout", "3", "nodes"}, options, error)) << error;
    EXPECT_EQ(options.timeoutMs, 3000);
    EXPECT_FALSE(parseCtlOptions({"--timeout", "soon", "nodes"}, options, error));
    EXPECT_EQ(error, "not a time-out in seconds (0 to 86400): soon");
}

TEST(CtlOptions, LevelsAreWordsOrNumbersFromMinusTwoToTwo)
{
    int level = 99;
    const std::pair<const char*, int> good[] = {{"highest", 2}, {"High", 1}, {"normal", 0}, {"LOW", -1},
        {"lowest", -2}, {"2", 2}, {"+1", 1}, {"0", 0}, {"-1", -1}, {"-2", -2}};
    for (const auto& [text, value] : good) {
        ASSERT_TRUE(parseLevel(text, level)) << text;
        EXPECT_EQ(level, value) << text;
    }
    for (const char* text : {"3", "-3", "top", "", "1.0", "02"})
        EXPECT_FALSE(parseLevel(text, level)) << text;
}

TEST(CtlOptions, IdsAreUnsignedThirtyTwoBitDecimals)
{
    std::uint32_t id = 0;
    EXPECT_TRUE(parseId("0", id));
    EXPECT_TRUE(parseId("4294967295", id));
    EXPECT_EQ(id, 4294967295u);
    for (const char* text : {"4294967296", "-1", "+1", "0x10", "", "1e3", "12a"})
        EXPECT_FALSE(parseId(text, id)) << text;
}

TEST(CtlOptions, CommandsTakeTheirArguments)
{
    CtlOptions options;
    std::string error;
    ASSERT_TRUE(parseCtlOptions({"stop-node", "1", "2", "3"}, options, error));
    EXPECT_EQ(options.command, CtlCommand::StopNode);
    EXPECT_EQ(options.ids, (std::vector<std::uint32_t> {1, 2, 3}));

    CtlOptions priority;
    ASSERT_TRUE(parseCtlOptions({"node-priority", "4", "lowest"}, priority, error));
    EXPECT_EQ(priority.ids, (std::vector<std::uint32_t> {4}));
    EXPECT_EQ(priority.priority, -2);

    CtlOptions create;
    ASSERT_TRUE(parseCtlOptions({"create", "/p/x.kproj", "tasks.json"}, create, error));
    EXPECT_EQ(create.path, "/p/x.kproj");
    EXPECT_EQ(create.tasksFile, "tasks.json");
}

TEST(CtlUsage, ABadArgumentExitsWithTwoAndNeverReachesTheServer)
{
    // A listener nobody else knows of: any connection attempt would queue on it.
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ASSERT_EQ(::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(::listen(listener, 16), 0);
    socklen_t length = sizeof address;
    ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length);
    const int port = ntohs(address.sin_port);

    const std::vector<std::vector<std::string>> bad
        = {{}, {"frobnicate"}, {"pause-batch"}, {"pause-batch", "x"}, {"pause-batch", "1", "-1"},
            {"abort-batch", "4294967296"}, {"status"}, {"status", "1", "2"}, {"batches", "extra"},
            {"batch-priority", "1"}, {"batch-priority", "1", "3"}, {"node-priority", "x", "high"},
            {"node-priority", "1", "top"}, {"--bogus", "batches"}, {"--port"}, {"--json=yes", "batches"},
            {"create", "/p/x.kproj", "/nonexistent/tasks.json"}, {"find", ""}, {"find", "/a", "/b"}};
    for (const auto& args : bad) {
        const CtlResult result = runCtl(atPort(port, args));
        EXPECT_EQ(result.code, CtlRunner::ExitUsage) << ::testing::PrintToString(args);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err.rfind("korvane-ctl: ", 0), 0u) << result.err;
        EXPECT_EQ(result.err.find('\n'), result.err.size() - 1) << "one line: " << result.err;
    }
    for (const auto& args : std::vector<std::vector<std::string>> {{"--port", "70000", "batches"},
             {"--host", "127.0.0.1:abc", "batches"}, {"--host", ":5840", "nodes"}}) {
        const CtlResult result = runCtl(args);
        EXPECT_EQ(result.code, CtlRunner::ExitUsage) << ::testing::PrintToString(args);
    }
    pollfd descriptor {listener, POLLIN, 0};
    EXPECT_EQ(::poll(&descriptor, 1, 0), 0) << "something connected";
    ::close(listener);
}

TEST(CtlUsage, HelpAndVersionExitWithZero)
{
    const CtlResult help = runCtl({"--help"});
    EXPECT_EQ(help.code, 0);
    EXPECT_EQ(help.out, ctlHelpText());
    EXPECT_NE(help.out.find("batch-priority ID LEVEL"), std::string::npos);
    const CtlResult version = runCtl({"--version"});
    EXPECT_EQ(version.code, 0);
    EXPECT_EQ(version.out, "korvane-ctl 0.1.0\n");
}
