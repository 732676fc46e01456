#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

#include "controlclient.h"
#include "runningsim.h"

// korvane-sim as a process: the first line names its port, signals end it.
namespace {

struct Child
{
    pid_t pid = -1;
    FILE* out = nullptr;
    FILE* err = nullptr;
};

// With captureErrors the child's standard error comes to Child::err; read it
// to the end once the child has ended.
Child start(const std::vector<std::string>& args, bool captureErrors = false)
{
    int pipeEnds[2];
    int errorEnds[2] = {-1, -1};
    if (::pipe(pipeEnds) != 0 || (captureErrors && ::pipe(errorEnds) != 0))
        return {};
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::dup2(pipeEnds[1], STDOUT_FILENO);
        ::close(pipeEnds[0]);
        ::close(pipeEnds[1]);
        if (captureErrors) {
            ::dup2(errorEnds[1], STDERR_FILENO);
            ::close(errorEnds[0]);
            ::close(errorEnds[1]);
        }
        std::vector<char*> argv;
        argv.push_back(const_cast<char*>(KORVANE_SIM_PROGRAM));
        for (const std::string& arg : args)
            argv.push_back(const_cast<char*>(arg.c_str()));
        argv.push_back(nullptr);
        ::execv(KORVANE_SIM_PROGRAM, argv.data());
        ::_exit(127);
    }
    ::close(pipeEnds[1]);
    if (captureErrors)
        ::close(errorEnds[1]);
    return {pid, ::fdopen(pipeEnds[0], "r"), captureErrors ? ::fdopen(errorEnds[0], "r") : nullptr};
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

int portOf(const std::string& listeningLine)
{
    return std::stoi(listeningLine.substr(listeningLine.rfind(':') + 1));
}

// A line of /proc/PID/status, such as VmRSS or VmHWM, in KiB.
long statusKiB(pid_t pid, const std::string& key)
{
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind(key + ":", 0) == 0)
            return std::stol(line.substr(key.size() + 1));
    }
    return -1;
}

// A simulator with a frozen farm at port, asked once so that its steady
// memory is in.
Child startServing(int& port)
{
    Child child = start({"--listen", "127.0.0.1:0", "--tick-ms", "0"});
    port = portOf(readLine(child.out));
    LineClient warmUp(static_cast<std::uint16_t>(port));
    warmUp.write("{\"id\":1,\"method\":\"listBatches\"}\n{\"id\":2,\"method\":\"listNodes\"}\n");
    warmUp.readLine();
    warmUp.readLine();
    return child;
}

void stop(Child& child)
{
    ::kill(child.pid, SIGTERM);
    EXPECT_EQ(exitCode(child.pid), 0);
    std::fclose(child.out);
    if (child.err)
        std::fclose(child.err);
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
             "--mute-after", "--byte-writes", "--garbage-every", "--delay", "--trickle", "--big-reply",
             "--object-params", "--max-line", "--max-clients"})
        EXPECT_NE(help.find(option), std::string::npos) << option;
}

TEST(SimProgram, BadArgumentsExitWithTwo)
{
    for (const std::vector<std::string>& args :
        std::vector<std::vector<std::string>> {{"--frobnicate"}, {"--nodes"}, {"--nodes", "many"},
            {"--listen", "127.0.0.1"}, {"--speed", "-1"}, {"--max-line", "0"}, {"--max-clients", "0"},
            {"--max-clients", "-3"}, {"--object-params", "1.5"}, {"--object-params", "-0.1"}}) {
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

TEST(SimProgram, ListeningBeyondLoopbackWarnsThatThePortHasNoAuthentication)
{
    Child open = start({"--listen", "0.0.0.0:0", "--nodes", "2", "--batches", "1"}, true);
    const std::string line = readLine(open.out);
    ASSERT_EQ(line.rfind("listening on 0.0.0.0:", 0), 0u) << line;
    ::kill(open.pid, SIGTERM);
    EXPECT_EQ(exitCode(open.pid), 0);
    EXPECT_EQ(readAll(open.err),
        "korvane-sim: warning: 0.0.0.0:" + std::to_string(portOf(line))
            + " can be reached from other machines, and the control port has no authentication: anyone who "
              "reaches it can control the farm\n"
              "korvane-sim: 1 batches, 2 nodes, seed 1, speed 1\nkorvane-sim: stopped\n");
    std::fclose(open.out);
    std::fclose(open.err);

    Child local = start({"--listen", "127.0.0.2:0", "--nodes", "2", "--batches", "1"}, true);
    ASSERT_EQ(readLine(local.out).rfind("listening on 127.0.0.2:", 0), 0u);
    ::kill(local.pid, SIGTERM);
    EXPECT_EQ(exitCode(local.pid), 0);
    EXPECT_EQ(readAll(local.err), "korvane-sim: 1 batches, 2 nodes, seed 1, speed 1\nkorvane-sim: stopped\n");
    std::fclose(local.out);
    std::fclose(local.err);
}

TEST(SimProgram, MemoryStaysBoundedWhileAFiftyMegabyteLineArrives)
{
    int port = 0;
    Child child = startServing(port);
    const long before = statusKiB(child.pid, "VmRSS");

    LineClient client(static_cast<std::uint16_t>(port));
    std::atomic<bool> sending {true};
    std::thread sender([&] {
        const std::string block(65536, 'x');
        for (int i = 0; i < 800 && client.write(block); ++i) { }
        sending = false;
    });
    long peak = before;
    while (sending) {
        peak = std::max(peak, statusKiB(child.pid, "VmRSS"));
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    sender.join();
    const std::string reply = client.readLine();
    const bool closed = client.closedByPeer();
    const long highWater = statusKiB(child.pid, "VmHWM");
    stop(child);

    EXPECT_EQ(reply,
        "{\"error\":{\"code\":-32600,\"message\":\"Invalid Request: line longer than 1048576 bytes\"},"
        "\"id\":null}\n");
    EXPECT_TRUE(closed);
    std::cout << "korvane-sim resident while a 50 MB line arrived: " << before << " KiB before, " << peak
              << " KiB at most while sampled, " << highWater << " KiB high-water mark" << std::endl;
    // the line is kept up to the 1 MiB limit, then dropped as it comes
    EXPECT_LT(highWater - before, 12 * 1024);
}

TEST(SimProgram, AClientThatNeverReadsCannotMakeTheServerHoldItsRepliesWithoutLimit)
{
    int port = 0;
    Child child = startServing(port);
    const long before = statusKiB(child.pid, "VmRSS");

    // some 140 MB of replies asked for with 400 KB of requests
    LineClient flood(static_cast<std::uint16_t>(port));
    std::string requests;
    for (int i = 0; i < 10000; ++i)
        requests += "{\"id\":" + std::to_string(i) + ",\"method\":\"listBatches\"}\n";
    ASSERT_TRUE(flood.write(requests));
    // one more client, answered all the while; its 300 turns give the server
    // rounds enough to take every request of the first, 64 a round
    LineClient other(static_cast<std::uint16_t>(port));
    for (int i = 0; i < 300; ++i) {
        ASSERT_TRUE(other.write("{\"id\":7,\"method\":\"pauseNode\",\"params\":{\"node_id\":1}}\n"));
        ASSERT_EQ(other.readLine(), "{\"id\":7,\"result\":true}\n");
    }
    const long highWater = statusKiB(child.pid, "VmHWM");
    stop(child);
    std::cout << "korvane-sim resident with a client that never reads: " << before << " KiB before, "
              << highWater << " KiB high-water mark" << std::endl;
    EXPECT_LT(highWater - before, 48 * 1024);
}
