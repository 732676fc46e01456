#include <csignal>
#include <cstdio>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "controlclient.h"

// korvane-sim as a process: the first line names its port, signals end it.
namespace {

struct Child
{
    pid_t pid = -1;
    FILE* out = nullptr;
};

Child start(const std::vector<std::string>& args)
{
    int pipeEnds[2];
    if (::pipe(pipeEnds) != 0)
        return {};
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::dup2(pipeEnds[1], STDOUT_FILENO);
        ::close(pipeEnds[0]);
        ::close(pipeEnds[1]);
        std::vector<char*> argv;
        argv.push_back(const_cast<char*>(KORVANE_SIM_PROGRAM));
        for (const std::string& arg : args)
            argv.push_back(const_cast<char*>(arg.c_str()));
        argv.push_back(nullptr);
        ::execv(KORVANE_SIM_PROGRAM, argv.data());
        ::_exit(127);
    }
    ::close(pipeEnds[1]);
    return {pid, ::fdopen(pipeEnds[0], "r")};
}

std::string readLine(FILE* file)
{
    char line[4096];
    return std::fgets(line, sizeof line, file) ? line : "";
}

std::string readAll(FILE* file)
{
    std::string text;
    char block[4096];
    std::size_t count;
    while ((count = std::fread(block, 1, sizeof block, file)) > 0)
        text.append(block, count);
    return text;
}

int exitCode(pid_t pid)
{
    int status = 0;
    ::waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

TEST(SimProgram, ReportsItsPortServesAndEndsOnSigterm)
{
    Child child = start({"--listen", "127.0.0.1:0", "--nodes", "4", "--batches", "3", "--seed", "9"});
    ASSERT_GT(child.pid, 0);
    const std::string first = readLine(child.out);
    ASSERT_EQ(first.rfind("listening on 127.0.0.1:", 0), 0u) << first;
    const int port = std::stoi(first.substr(std::string("listening on 127.0.0.1:").size()));
    EXPECT_GT(port, 0);

    {
        ControlClient client;
        ASSERT_TRUE(client.connect("127.0.0.1", port));
        ControlClient::NodeList nodes;
        ASSERT_TRUE(client.listNodes(nodes));
        EXPECT_EQ(nodes.size(), 4u);
    }
    ::kill(child.pid, SIGTERM);
    EXPECT_EQ(exitCode(child.pid), 0);
    std::fclose(child.out);
}

TEST(SimProgram, EndsCleanlyOnSigint)
{
    Child child = start({"--listen", "127.0.0.1:0"});
    ASSERT_EQ(readLine(child.out).rfind("listening on", 0), 0u);
    ::kill(child.pid, SIGINT);
    EXPECT_EQ(exitCode(child.pid), 0);
    std::fclose(child.out);
}

TEST(SimProgram, HelpDocumentsEveryFaultSwitch)
{
    Child child = start({"--help"});
    const std::string help = readAll(child.out);
    EXPECT_EQ(exitCode(child.pid), 0);
    std::fclose(child.out);
    for (const char* option : {"--listen", "--seed", "--speed", "--nodes", "--batches", "--close-after",
             "--mute-after", "--byte-writes", "--garbage-every", "--delay", "--big-reply"})
        EXPECT_NE(help.find(option), std::string::npos) << option;
}

TEST(SimProgram, BadArgumentsExitWithTwo)
{
    for (const std::vector<std::string>& args : std::vector<std::vector<std::string>> {{"--frobnicate"},
             {"--nodes"}, {"--nodes", "many"}, {"--listen", "127.0.0.1"}, {"--speed", "-1"}}) {
        Child child = start(args);
        EXPECT_EQ(readAll(child.out), "");
        EXPECT_EQ(exitCode(child.pid), 2) << args[0];
        std::fclose(child.out);
    }
}

TEST(SimProgram, AnAddressInUseExitsWithOne)
{
    Child first = start({"--listen", "127.0.0.1:0"});
    const std::string line = readLine(first.out);
    const std::string port = line.substr(line.rfind(':') + 1, line.size() - line.rfind(':') - 2);
    Child second = start({"--listen", "127.0.0.1:" + port});
    EXPECT_EQ(exitCode(second.pid), 1);
    std::fclose(second.out);
    ::kill(first.pid, SIGTERM);
    EXPECT_EQ(exitCode(first.pid), 0);
    std::fclose(first.out);
}
