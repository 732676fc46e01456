#include <algorithm>
#include <atomic>
#include <csignal>
#include <fstream>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "childprocess.h"
#include "controlclient.h"
#include "loopback.h"
#include "simprocess.h"
#include "testpaths.h"

// korvane-sim as a process: the first line names its port, signals end it.
namespace {

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

// Asks a simulator once, so that its steady memory is in.
void warmUp(int port)
{
    LineClient warmUp(static_cast<std::uint16_t>(port));
    warmUp.write("{\"id\":1,\"method\":\"listBatches\"}\n{\"id\":2,\"method\":\"listNodes\"}\n");
    warmUp.readLine();
    warmUp.readLine();
}

} // namespace

TEST(SimProgram, ReportsItsPortServesAndEndsOnSigterm)
{
    SimProcess sim({"--listen", "127.0.0.1:0", "--nodes", "4", "--batches", "3", "--seed", "9"});
    ASSERT_GT(sim.process().pid(), 0);
    const std::string first = sim.firstLine();
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
    EXPECT_EQ(sim.stop(), 0);
}

TEST(SimProgram, EndsCleanlyOnSigint)
{
    SimProcess sim({"--listen", "127.0.0.1:0"});
    ASSERT_EQ(sim.firstLine().rfind("listening on", 0), 0u);
    sim.process().signal(SIGINT);
    EXPECT_EQ(sim.process().wait(), 0);
}

TEST(SimProgram, HelpDocumentsEveryFaultSwitch)
{
    ChildProcess child(KORVANE_SIM_PROGRAM, {"--help"});
    EXPECT_EQ(child.wait(), 0);
    const std::string help = child.out();
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
        ChildProcess child(KORVANE_SIM_PROGRAM, args);
        const int code = child.wait();
        EXPECT_EQ(child.out(), "");
        EXPECT_EQ(code, 2) << args[0];
    }
}

TEST(SimProgram, AnAddressInUseExitsWithOne)
{
    SimProcess first({"--listen", "127.0.0.1:0"});
    ChildProcess second(KORVANE_SIM_PROGRAM, {"--listen", "127.0.0.1:" + std::to_string(first.port())});
    EXPECT_EQ(second.wait(), 1);
    EXPECT_EQ(first.stop(), 0);
}

TEST(SimProgram, ListeningBeyondLoopbackWarnsThatThePortHasNoAuthentication)
{
    SimProcess open({"--listen", "0.0.0.0:0", "--nodes", "2", "--batches", "1"});
    const std::string line = open.firstLine();
    ASSERT_EQ(line.rfind("listening on 0.0.0.0:", 0), 0u) << line;
    EXPECT_EQ(open.stop(), 0);
    EXPECT_EQ(open.process().err(),
        "korvane-sim: warning: 0.0.0.0:" + std::to_string(open.port())
            + " can be reached from other machines, and the control port has no authentication: anyone who "
              "reaches it can control the farm\n"
              "korvane-sim: 1 batches, 2 nodes, seed 1, speed 1\nkorvane-sim: stopped\n");

    SimProcess local({"--listen", "127.0.0.2:0", "--nodes", "2", "--batches", "1"});
    ASSERT_EQ(local.firstLine().rfind("listening on 127.0.0.2:", 0), 0u);
    EXPECT_EQ(local.stop(), 0);
    EXPECT_EQ(
        local.process().err(), "korvane-sim: 1 batches, 2 nodes, seed 1, speed 1\nkorvane-sim: stopped\n");
}

TEST(SimProgram, MemoryStaysBoundedWhileAFiftyMegabyteLineArrives)
{
    SimProcess sim({"--tick-ms", "0"});
    const int port = sim.port();
    warmUp(port);
    const long before = statusKiB(sim.process().pid(), "VmRSS");

    LineClient client(static_cast<std::uint16_t>(port));
    std::atomic<bool> sending {true};
    std::thread sender([&] {
        const std::string block(65536, 'x');
        for (int i = 0; i < 800 && client.write(block); ++i) { }
        sending = false;
    });
    long peak = before;
    while (sending) {
        peak = std::max(peak, statusKiB(sim.process().pid(), "VmRSS"));
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    sender.join();
    const std::string reply = client.readLine();
    const bool closed = client.closedByPeer();
    const long highWater = statusKiB(sim.process().pid(), "VmHWM");
    EXPECT_EQ(sim.stop(), 0);

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
    SimProcess sim({"--tick-ms", "0"});
    const int port = sim.port();
    warmUp(port);
    const long before = statusKiB(sim.process().pid(), "VmRSS");

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
    const long highWater = statusKiB(sim.process().pid(), "VmHWM");
    EXPECT_EQ(sim.stop(), 0);
    std::cout << "korvane-sim resident with a client that never reads: " << before << " KiB before, "
              << highWater << " KiB high-water mark" << std::endl;
    EXPECT_LT(highWater - before, 48 * 1024);
}
