#include <algorithm>
#include <cstdio>
#include <fstream>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <json/reader.h>

#include <gtest/gtest.h>

#include "ctltestsupport.h"
#include "runningsim.h"
#include "scriptedserver.h"

namespace {

struct Case
{
    std::vector<std::string> args;
    std::vector<std::string> replies;
    std::string sent;
    std::string out;
};

std::string writeTaskFile(const std::string& text)
{
    char name[] = "/tmp/korvane-ctl-tasksXXXXXX";
    const int fd = ::mkstemp(name);
    const ssize_t written = ::write(fd, text.data(), text.size());
    ::close(fd);
    EXPECT_EQ(written, static_cast<ssize_t>(text.size()));
    return name;
}

int closedPort()
{
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    socklen_t length = sizeof address;
    EXPECT_EQ(::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length), 0);
    ::close(listener);
    return ntohs(address.sin_port);
}

const std::string True = R"({"result":true})";

} // namespace

TEST(CtlRequests, EachCommandSendsExactlyItsRequestLines)
{
    const std::string tasks = writeTaskFile(
        R"([{"name":"BuildModel","params":{"quality":2,"smooth":true},"chunks":[2,0],"frames":[[1,4],[1,3]]},
            {"name":"ExportModel"}])");
    const std::vector<Case> cases = {
        {{"batches"}, {R"({"id":0,"result":[]})"},
            R"({"id":0,"method":"listBatches"})"
            "\n",
            "#  Project  Started  Status  Priority  Current Task  Elapsed / Left  Failures  Nodes\n"},
        {{"nodes"}, {R"({"id":0,"result":[]})"},
            R"({"id":0,"method":"listNodes"})"
            "\n",
            "#  Host  Status  Priority  Batch #  Progress  Failures  Last Error\n"},
        {{"status", "7"}, {R"({"result":{"path":"/p/a.kproj","status":"pending","priority":0,"tasks":[]}})"},
            R"({"id":0,"method":"getBatchStatus","params":{"batch_id":7}})"
            "\n",
            "Project: /p/a.kproj\n"},
        {{"pause-batch", "3", "4"}, {True, True},
            R"({"id":0,"method":"pauseBatch","params":{"batch_id":3}})"
            "\n"
            R"({"id":1,"method":"pauseBatch","params":{"batch_id":4}})"
            "\n",
            ""},
        {{"resume-batch", "4294967295"}, {True},
            R"({"id":0,"method":"resumeBatch","params":{"batch_id":4294967295}})"
            "\n",
            ""},
        {{"abort-batch", "5"}, {True},
            R"({"id":0,"method":"abortBatch","params":{"batch_id":5}})"
            "\n",
            ""},
        {{"pause-node", "6"}, {True},
            R"({"id":0,"method":"pauseNode","params":{"node_id":6}})"
            "\n",
            ""},
        {{"resume-node", "7", "0"}, {True, True},
            R"({"id":0,"method":"resumeNode","params":{"node_id":7}})"
            "\n"
            R"({"id":1,"method":"resumeNode","params":{"node_id":0}})"
            "\n",
            ""},
        {{"stop-node", "8"}, {True, True},
            R"({"id":0,"method":"pauseNode","params":{"node_id":8}})"
            "\n"
            R"({"id":1,"method":"abortNode","params":{"node_id":8}})"
            "\n",
            ""},
        {{"batch-priority", "7", "lowest"}, {True},
            R"({"id":0,"method":"setBatchPriority","params":{"batch_id":7,"priority":-2}})"
            "\n",
            ""},
        {{"node-priority", "3", "High"}, {True},
            R"({"id":0,"method":"setNodePriority","params":{"node_id":3,"priority":1}})"
            "\n",
            ""},
        {{"node-priority", "3", "-1"}, {True},
            R"({"id":0,"method":"setNodePriority","params":{"node_id":3,"priority":-1}})"
            "\n",
            ""},
        {{"create", "/p/x.kproj", tasks}, {R"({"result":31})"},
            R"({"id":0,"method":"createBatch","params":{"path":"/p/x.kproj","tasks":[{"chunks":[0,2],"frames":[[1,3],[1,4]],"name":"BuildModel","params":{"quality":2,"smooth":1}},{"name":"ExportModel","params":null}]}})"
            "\n",
            "31\n"},
        {{"find", "/p/x.kproj"}, {R"({"result":12})"},
            R"({"id":0,"method":"findBatch","params":{"path":"/p/x.kproj"}})"
            "\n",
            "12\n"},
    };
    for (const Case& test : cases) {
        ScriptedServer server;
        server.acceptConnection();
        for (const std::string& reply : test.replies)
            server.reply(reply);
        server.waitForClose();
        server.start();
        const CtlResult result = runCtl(atPort(server.port(), test.args));
        EXPECT_TRUE(server.finish());
        EXPECT_EQ(result.code, 0) << test.args[0] << ": " << result.err;
        EXPECT_EQ(server.received(), test.sent) << test.args[0];
        EXPECT_EQ(result.out, test.out) << test.args[0];
        EXPECT_EQ(result.err, "") << test.args[0];
    }
    std::remove(tasks.c_str());
}

TEST(CtlRequests, ARefusedRequestExitsWithOneAndNamesTheId)
{
    ScriptedServer server;
    server.acceptConnection()
        .reply(R"({"id":0,"error":{"code":-32602,"message":"Invalid params: unknown batch id 3"}})")
        .reply(True)
        .waitForClose();
    server.start();
    const CtlResult result = runCtl(atPort(server.port(), {"pause-batch", "3", "4"}));
    EXPECT_TRUE(server.finish());
    EXPECT_EQ(result.code, CtlRunner::ExitRefused);
    EXPECT_EQ(result.err, "korvane-ctl: the server refused to pause batch 3\n");
    EXPECT_NE(server.received().find(R"("batch_id":4)"), std::string::npos) << "the other ids still go";
}

TEST(CtlRequests, StopNodeStillAbortsWhenThePauseIsRefused)
{
    ScriptedServer server;
    server.acceptConnection().reply(R"({"result":null})").reply(True).waitForClose();
    server.start();
    const CtlResult result = runCtl(atPort(server.port(), {"stop-node", "9"}));
    EXPECT_TRUE(server.finish());
    EXPECT_EQ(result.code, CtlRunner::ExitRefused);
    EXPECT_EQ(result.err, "korvane-ctl: the server refused to pause node 9\n");
    EXPECT_EQ(server.received(),
        R"({"id":0,"method":"pauseNode","params":{"node_id":9}})"
        "\n"
        R"({"id":1,"method":"abortNode","params":{"node_id":9}})"
        "\n");
}

TEST(CtlRequests, ARefusedListOrFindExitsWithOne)
{
    for (const auto& [args, message] :
        std::vector<std::pair<std::vector<std::string>, std::string>> {{{"batches"}, "the batch list"},
            {{"nodes"}, "the node list"}, {{"status", "4"}, "the status of batch 4"},
            {{"batch-priority", "4", "high"}, "to set the priority of batch 4"},
            {{"find", "/p/none"}, "to find a batch for /p/none"}}) {
        ScriptedServer server;
        server.acceptConnection().reply(R"({"error":{"code":-32602,"message":"no"}})").waitForClose();
        server.start();
        const CtlResult result = runCtl(atPort(server.port(), args));
        EXPECT_TRUE(server.finish());
        EXPECT_EQ(result.code, CtlRunner::ExitRefused);
        EXPECT_EQ(result.err, "korvane-ctl: the server refused " + message + "\n");
        EXPECT_EQ(result.out, "");
    }
}

TEST(CtlRequests, ALostConnectionExitsWithThree)
{
    ScriptedServer server;
    server.acceptConnection().waitForLine().closeConnection();
    server.start();
    const CtlResult result = runCtl(atPort(server.port(), {"pause-node", "1", "2"}));
    EXPECT_TRUE(server.finish());
    EXPECT_EQ(result.code, CtlRunner::ExitConnection);
    EXPECT_EQ(
        result.err, "korvane-ctl: connection to 127.0.0.1:" + std::to_string(server.port()) + " lost\n");
}

TEST(CtlRequests, NoServerExitsWithThree)
{
    const int port = closedPort();
    const CtlResult result = runCtl({"--host", "127.0.0.1:" + std::to_string(port), "batches"});
    EXPECT_EQ(result.code, CtlRunner::ExitConnection);
    EXPECT_EQ(result.err, "korvane-ctl: cannot connect to 127.0.0.1:" + std::to_string(port) + "\n");
    EXPECT_EQ(result.out, "");
}

TEST(CtlRequests, JsonPrintsTheRecordsWithTheWireKeys)
{
    const std::string batch
        = R"({"batch_id":4,"path":"/p/a.kproj","status":"inprogress","priority":-1,"time_started":1700000000,)"
          R"("task":{"name":"BuildModel","params":{"quality":2},"status":"inprogress","progress":42.5,)"
          R"("time_elapsed":60.0,"time_left":30.0,"items_total":40,"items_done":17,)"
          R"("nodes_active":3,"nodes_waiting":1,"nodes_failed":2}})";
    ScriptedServer server;
    server.acceptConnection().reply(R"({"id":0,"result":[)" + batch + "]}").waitForClose();
    server.start();
    const CtlResult result = runCtl(atPort(server.port(), {"--json", "batches"}));
    EXPECT_TRUE(server.finish());
    ASSERT_EQ(result.code, 0);
    Json::Value printed;
    Json::Value expected;
    ASSERT_TRUE(Json::Reader().parse(result.out, printed)) << result.out;
    ASSERT_TRUE(Json::Reader().parse("[" + batch + "]", expected));
    EXPECT_EQ(printed, expected) << result.out;
}

TEST(CtlRequests, JsonNodesLeaveOutTheBatchOfAnIdleNode)
{
    const std::string nodes
        = R"([{"node_id":1,"hostname":"render-01:5841","version":"1.4.2","status":"ready",)"
          R"("priority":0,"error_count":0,"last_error":null},)"
          R"({"node_id":2,"hostname":"render-02:5841","version":"1.4.2","status":"inprogress",)"
          R"("priority":2,"error_count":1,"batch_id":4,"progress":12.5,)"
          R"("task":{"name":"BuildModel","params":null},)"
          R"("last_error":{"time":1700000000,"batch_id":3,"message":"out of memory"}}])";
    ScriptedServer server;
    server.acceptConnection().reply(R"({"result":)" + nodes + "}").waitForClose();
    server.start();
    const CtlResult result = runCtl(atPort(server.port(), {"--json", "nodes"}));
    EXPECT_TRUE(server.finish());
    Json::Value printed;
    Json::Value expected;
    ASSERT_TRUE(Json::Reader().parse(result.out, printed)) << result.out;
    ASSERT_TRUE(Json::Reader().parse(nodes, expected));
    EXPECT_EQ(printed, expected) << result.out;
}

TEST(CtlRequests, WatchPollsBatchesAndNodesEachRound)
{
    ScriptedServer server;
    server.acceptConnection();
    for (int round = 0; round < 2; ++round)
        server.reply(R"({"result":[]})").reply(R"({"result":[]})");
    server.waitForClose();
    server.start();
    const CtlResult result = runCtl(atPort(server.port(), {"watch"}));
    EXPECT_TRUE(server.finish());
    EXPECT_EQ(result.code, 0);
    const std::string batches
        = "#  Project  Started  Status  Priority  Current Task  Elapsed / Left  Failures  Nodes\n";
    const std::string nodes = "#  Host  Status  Priority  Batch #  Progress  Failures  Last Error\n";
    EXPECT_EQ(result.out, batches + "\n" + nodes + "\n" + batches + "\n" + nodes);
    EXPECT_EQ(server.received(),
        R"({"id":0,"method":"listBatches"})"
        "\n"
        R"({"id":1,"method":"listNodes"})"
        "\n"
        R"({"id":2,"method":"listBatches"})"
        "\n"
        R"({"id":3,"method":"listNodes"})"
        "\n");
}

TEST(CtlAgainstSimulator, ListsCommandsAndRefusals)
{
    RunningSim sim;
    const int port = sim.port();
    const CtlResult batches = runCtl(atPort(port, {"batches"}));
    EXPECT_EQ(batches.code, 0);
    EXPECT_EQ(std::count(batches.out.begin(), batches.out.end(), '\n'), 31);
    EXPECT_NE(batches.out.find("Completed"), std::string::npos);

    const CtlResult nodes = runCtl(atPort(port, {"nodes"}));
    EXPECT_EQ(std::count(nodes.out.begin(), nodes.out.end(), '\n'), 13);
    EXPECT_NE(nodes.out.find("render-12 ("), std::string::npos);

    EXPECT_EQ(runCtl(atPort(port, {"stop-node", "4"})).code, 0);
    EXPECT_NE(runCtl(atPort(port, {"nodes"})).out.find("Aborted"), std::string::npos);

    const CtlResult status = runCtl(atPort(port, {"status", "2"}));
    EXPECT_EQ(status.code, 0);
    EXPECT_EQ(status.out.rfind("Project: /srv/projects/", 0), 0u);
    EXPECT_NE(status.out.find("\nLast error: ["), std::string::npos);

    const CtlResult refused = runCtl(atPort(port, {"pause-batch", "999"}));
    EXPECT_EQ(refused.code, 1);
    EXPECT_EQ(refused.err, "korvane-ctl: the server refused to pause batch 999\n");

    const std::string tasks = writeTaskFile(R"([{"name":"AlignCameras","params":{"quality":1}}])");
    const CtlResult created = runCtl(atPort(port, {"create", "/p/new.kproj", tasks}));
    EXPECT_EQ(created.out, "31\n");
    EXPECT_EQ(runCtl(atPort(port, {"find", "/p/new.kproj"})).out, "31\n");
    std::remove(tasks.c_str());
}

TEST(CtlRequests, ASilentServerEndsTheToolWithThreeAfterTheTimeOut)
{
    FaultSwitches silent;
    silent.muteAfterRequests = 0;
    RunningSim sim(FarmConfig(), RunningSim::withFaults(silent));
    const CtlResult result = runCtl(atPort(sim.port(), {"--timeout", "0.3", "batches"}));
    EXPECT_EQ(result.code, CtlRunner::ExitConnection);
    EXPECT_EQ(result.err,
        "korvane-ctl: listBatches to 127.0.0.1:" + std::to_string(sim.port()) + ": no reply within 0.3 s\n");
    EXPECT_EQ(result.out, "");
}

TEST(CtlRequests, AServerSendingOnlyLinesThatAreNotJsonEndsTheToolWithThree)
{
    std::string garbage;
    for (int i = 0; i < 100; ++i)
        garbage += "<html>busy</html>\n";
    ScriptedServer server;
    server.acceptConnection().waitForLine().write(garbage).waitForClose();
    server.start();
    const CtlResult result = runCtl(atPort(server.port(), {"--timeout=1", "pause-node", "4", "5"}));
    EXPECT_TRUE(server.finish());
    EXPECT_EQ(result.code, CtlRunner::ExitConnection);
    EXPECT_EQ(result.err,
        "korvane-ctl: pauseNode to 127.0.0.1:" + std::to_string(server.port()) + ": no reply within 1 s\n");
    // the second node was never asked for
    EXPECT_EQ(server.received(),
        R"({"id":0,"method":"pauseNode","params":{"node_id":4}})"
        "\n");
}

TEST(CtlRequests, WithoutATimeOutASlowServerIsWaitedFor)
{
    ScriptedServer server;
    server.acceptConnection().waitForLine().pause(1200).write(R"({"result":[]})"
                                                              "\n");
    server.start();
    const CtlResult result = runCtl(atPort(server.port(), {"--timeout", "0", "--json", "batches"}));
    EXPECT_TRUE(server.finish());
    EXPECT_EQ(result.code, CtlRunner::ExitDone);
    EXPECT_EQ(result.out, "[]\n");
}

// Found by fuzzing the task file reader: each of these once ended the tool
// with an uncaught exception or a reason spread over several lines.
TEST(CtlRequests, TaskFilesTheRequestCannotCarryAreOneLineUsageErrors)
{
    const std::string bigNumber = writeTaskFile(R"([{"name":"BuildModel","params":{"quality":2222222222}}])");
    const std::string lineFeed = writeTaskFile("[{\"name\":\"X\",\"params\":{\"a\\nb\\u001b[2J\":{}}}]");
    const std::string deep = writeTaskFile(std::string(1500, '['));
    const std::vector<std::pair<std::string, std::string>> cases = {
        {bigNumber, bigNumber + ": task 1: a parameter holds an integer that does not fit in 32 bits"},
        {lineFeed,
            lineFeed
                + ": task 1: parameter \"a\\nb\\u001b[2J\" must be a number, a string, a boolean or an array "
                  "of numbers"},
        {deep, deep + " is not JSON: Exceeded stackLimit in readValue()."},
    };
    for (const auto& [file, reason] : cases) {
        const CtlResult result = runCtl({"--port", "1", "create", "/p/x.kproj", file});
        EXPECT_EQ(result.code, CtlRunner::ExitUsage);
        EXPECT_EQ(result.err, "korvane-ctl: " + reason + "\n");
        std::remove(file.c_str());
    }
}

TEST(CtlRequests, AReplyStillArrivingAtTheTimeOutIsToldApartFromNoReply)
{
    FaultSwitches trickle;
    trickle.trickleMs = 50;
    RunningSim sim(FarmConfig(), RunningSim::withFaults(trickle));
    const auto start = std::chrono::steady_clock::now();
    const CtlResult result = runCtl(atPort(sim.port(), {"--timeout", "0.5", "batches"}));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
    EXPECT_EQ(result.code, CtlRunner::ExitConnection);
    EXPECT_EQ(result.err,
        "korvane-ctl: listBatches to 127.0.0.1:" + std::to_string(sim.port())
            + ": the reply was still arriving after 0.5 s (slow link?)\n");
    EXPECT_EQ(result.out, "");
}

TEST(CtlRequests, TheTimeOutBoundsTheWholeCommandNotEachRequest)
{
    // Each reply comes 400 ms late, within a per-request limit of 1 s; a
    // stop takes two requests, so the whole command does not fit in 1 s.
    FaultSwitches slow;
    slow.delayMs = 400;
    RunningSim sim(FarmConfig(), RunningSim::withFaults(slow));
    const CtlResult result = runCtl(atPort(sim.port(), {"--timeout", "1", "stop-node", "1", "2"}));
    EXPECT_EQ(result.code, CtlRunner::ExitConnection);
    EXPECT_EQ(result.err,
        "korvane-ctl: pauseNode to 127.0.0.1:" + std::to_string(sim.port()) + ": no reply within 1 s\n");
}

TEST(CtlRequests, AnUnknownNameIsToldAsSuch)
{
    const CtlResult result = runCtl({"--host", "no-such-host.invalid", "--timeout", "20", "batches"});
    EXPECT_EQ(result.code, CtlRunner::ExitConnection);
    EXPECT_EQ(result.err.rfind("korvane-ctl: cannot resolve no-such-host.invalid:5840: ", 0), 0u)
        << result.err;
}
