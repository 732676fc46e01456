#include <memory>
#include <string>
#include <vector>

#include <json/reader.h>

#include <gtest/gtest.h>

#include "consolecapture.h"
#include "controlclient.h"
#include "loopback.h"
#include "runningsim.h"

namespace {

const std::string ListNodes = "{\"id\":1,\"method\":\"listNodes\"}\n";
const std::string ParseError = "{\"error\":{\"code\":-32700,\"message\":\"Parse error\"},\"id\":null}\n";

std::string pauseNode(int id)
{
    return "{\"id\":" + std::to_string(id) + ",\"method\":\"pauseNode\",\"params\":{\"node_id\":1}}\n";
}

std::string trueReply(int id)
{
    return "{\"id\":" + std::to_string(id) + ",\"result\":true}\n";
}

std::string tooLong(int limit)
{
    return "{\"error\":{\"code\":-32600,\"message\":\"Invalid Request: line longer than "
        + std::to_string(limit) + " bytes\"},\"id\":null}\n";
}

ServerConfig withLimits(std::size_t maxLine, std::size_t maxClients)
{
    ServerConfig config = RunningSim::frozen();
    config.maxLineBytes = maxLine;
    config.maxClients = maxClients;
    return config;
}

} // namespace

TEST(SimServer, GarbageGetsAParseErrorAndTheConnectionStaysOpen)
{
    RunningSim sim;
    ASSERT_TRUE(sim.listening());
    LineClient client(sim.port());
    ASSERT_TRUE(client.write("garbage\n\x01\x02\xff\n"));
    EXPECT_EQ(client.readLine(), ParseError);
    EXPECT_EQ(client.readLine(), ParseError);
    ASSERT_TRUE(client.write(pauseNode(3)));
    EXPECT_EQ(client.readLine(), trueReply(3));
}

TEST(SimServer, AHalfLineIsAnsweredOnceItIsComplete)
{
    RunningSim sim;
    LineClient client(sim.port());
    const std::string request = pauseNode(4);
    ASSERT_TRUE(client.write(request.substr(0, 10)));
    EXPECT_EQ(client.readLine(200), "");
    ASSERT_TRUE(client.write(request.substr(10)));
    EXPECT_EQ(client.readLine(), trueReply(4));
}

TEST(SimServer, SeveralRequestsInOneWriteAreAnsweredInOrder)
{
    RunningSim sim;
    LineClient client(sim.port());
    ASSERT_TRUE(client.write(pauseNode(1) + "\n" + pauseNode(2) + "{\n" + pauseNode(3)));
    EXPECT_EQ(client.readLine(), trueReply(1));
    EXPECT_EQ(client.readLine(), trueReply(2));
    EXPECT_EQ(client.readLine(), ParseError);
    EXPECT_EQ(client.readLine(), trueReply(3));
}

TEST(SimServer, ManyClientsAreServedAtOnceAndOneVanishingDisturbsNoneOfThem)
{
    RunningSim sim;
    std::vector<std::unique_ptr<LineClient>> clients;
    for (int i = 0; i < 30; ++i) {
        clients.push_back(std::make_unique<LineClient>(sim.port()));
        ASSERT_TRUE(clients.back()->connected());
    }
    // one leaves in the middle of a line, one sends garbage, one never reads
    clients[0]->write("{\"id\":1,\"meth");
    clients[0]->close();
    clients[1]->write("nonsense\n");
    clients[2]->write(ListNodes + ListNodes + ListNodes);
    for (std::size_t i = 3; i < clients.size(); ++i)
        ASSERT_TRUE(clients[i]->write(pauseNode(static_cast<int>(i))));
    for (std::size_t i = 3; i < clients.size(); ++i)
        EXPECT_EQ(clients[i]->readLine(), trueReply(static_cast<int>(i)));
    EXPECT_EQ(clients[1]->readLine(), ParseError);
}

TEST(SimServer, CloseAfterRepliesClosesTheConnectionAfterTheNthReply)
{
    FaultSwitches faults;
    faults.closeAfterReplies = 2;
    RunningSim sim(FarmConfig(), RunningSim::withFaults(faults));
    LineClient client(sim.port());
    ASSERT_TRUE(client.write(pauseNode(1) + pauseNode(2) + pauseNode(3)));
    EXPECT_EQ(client.readLine(), trueReply(1));
    EXPECT_EQ(client.readLine(), trueReply(2));
    EXPECT_TRUE(client.closedByPeer());
    EXPECT_EQ(client.pending(), "");
    // each connection counts for itself
    LineClient next(sim.port());
    ASSERT_TRUE(next.write(pauseNode(4)));
    EXPECT_EQ(next.readLine(), trueReply(4));
}

TEST(SimServer, MuteAfterRequestsStopsAnsweringButKeepsTheSocketOpen)
{
    FaultSwitches faults;
    faults.muteAfterRequests = 1;
    RunningSim sim(FarmConfig(), RunningSim::withFaults(faults));
    LineClient client(sim.port());
    ASSERT_TRUE(client.write(pauseNode(1) + pauseNode(2)));
    EXPECT_EQ(client.readLine(), trueReply(1));
    EXPECT_FALSE(client.closedByPeer(300));
    EXPECT_EQ(client.pending(), "");
}

TEST(SimServer, ByteWritesStillDeliverWholeReplies)
{
    FaultSwitches faults;
    faults.byteWrites = true;
    RunningSim sim(FarmConfig(), RunningSim::withFaults(faults));
    ConsoleCapture console;
    ControlClient client;
    ASSERT_TRUE(client.connect("127.0.0.1", sim.port()));
    ControlClient::NodeList nodes;
    ASSERT_TRUE(client.listNodes(nodes));
    EXPECT_EQ(nodes.size(), 12u);
    EXPECT_TRUE(client.pauseNode(2));
}

TEST(SimServer, GarbageEveryNthReplyPutsANonJsonLineBeforeIt)
{
    FaultSwitches faults;
    faults.garbageEvery = 2;
    RunningSim sim(FarmConfig(), RunningSim::withFaults(faults));
    LineClient client(sim.port());
    ASSERT_TRUE(client.write(pauseNode(1) + pauseNode(2) + pauseNode(3) + pauseNode(4)));
    EXPECT_EQ(client.readLine(), trueReply(1));
    EXPECT_EQ(client.readLine(), GarbageLine);
    EXPECT_EQ(client.readLine(), trueReply(2));
    EXPECT_EQ(client.readLine(), trueReply(3));
    EXPECT_EQ(client.readLine(), GarbageLine);
    EXPECT_EQ(client.readLine(), trueReply(4));

    // the protocol client skips the line and reads on
    ConsoleCapture console;
    ControlClient control;
    ASSERT_TRUE(control.connect("127.0.0.1", sim.port()));
    EXPECT_TRUE(control.pauseNode(1));
    EXPECT_TRUE(control.pauseNode(1));
    EXPECT_NE(console.text().find(": *** this line is not JSON ***"), std::string::npos);
}

TEST(SimServer, DelayHoldsRepliesBackWithoutHoldingUpOtherClients)
{
    FaultSwitches faults;
    faults.delayMs = 1500;
    RunningSim sim(FarmConfig(), RunningSim::withFaults(faults));
    LineClient slow(sim.port());
    LineClient other(sim.port());
    ASSERT_TRUE(slow.write(pauseNode(1)));
    EXPECT_EQ(slow.readLine(200), "");
    ASSERT_TRUE(other.write(pauseNode(2)));
    EXPECT_EQ(slow.pending(), "");
    EXPECT_EQ(slow.readLine(), trueReply(1));
    EXPECT_EQ(other.readLine(), trueReply(2));
}

TEST(SimServer, TrickleSendsOneByteAtATimeWithoutHoldingUpOtherClients)
{
    FaultSwitches faults;
    faults.trickleMs = 40;
    RunningSim sim(FarmConfig(), RunningSim::withFaults(faults));
    LineClient slow(sim.port());
    LineClient other(sim.port());
    ASSERT_TRUE(slow.write(pauseNode(1)));
    ASSERT_TRUE(other.write(pauseNode(2)));
    // 23 bytes at 40 ms each: most of a second for the whole line.
    EXPECT_EQ(slow.readLine(400), "");
    const std::size_t early = slow.pending().size();
    EXPECT_GE(early, 3u);
    EXPECT_LE(early, 14u);
    EXPECT_EQ(slow.readLine(), trueReply(1));
    EXPECT_EQ(other.readLine(), trueReply(2));
}

TEST(SimServer, BigReplyPadsTheFirstReplyToTheGivenSize)
{
    FaultSwitches faults;
    faults.bigReplyBytes = 100000;
    RunningSim sim(FarmConfig(), RunningSim::withFaults(faults));
    LineClient client(sim.port());
    ASSERT_TRUE(client.write(pauseNode(1) + pauseNode(2)));
    const std::string first = client.readLine();
    EXPECT_EQ(first.size(), 100000u);
    Json::Value reply;
    ASSERT_TRUE(Json::Reader().parse(first, reply));
    EXPECT_EQ(reply["result"], Json::Value(true));
    EXPECT_EQ(reply["id"].asInt(), 1);
    EXPECT_EQ(client.readLine(), trueReply(2));
}

TEST(SimServer, AnswersTenThousandBatchesAndTwoThousandNodes)
{
    FarmConfig config;
    config.batches = 10000;
    config.nodes = 2000;
    ServerConfig server;
    server.tickMs = 50;
    server.speed = 10.0;
    RunningSim sim(config, server);
    ConsoleCapture console;
    ControlClient client;
    ASSERT_TRUE(client.connect("127.0.0.1", sim.port()));
    for (int round = 0; round < 2; ++round) {
        ControlClient::BatchList batches;
        ControlClient::NodeList nodes;
        ASSERT_TRUE(client.listBatches(batches));
        ASSERT_TRUE(client.listNodes(nodes));
        ASSERT_EQ(batches.size(), 10000u);
        ASSERT_EQ(nodes.size(), 2000u);
        EXPECT_EQ(batches[9999].batchId, 10000u);
        EXPECT_EQ(nodes[1999].hostname, "render-2000:5841");
    }
}

TEST(SimServer, TheLimitsDefaultToOneMebibyteLinesAndSixtyFourClients)
{
    EXPECT_EQ(ServerConfig().maxLineBytes, 1048576u);
    EXPECT_EQ(ServerConfig().maxClients, 64u);
}

TEST(SimServer, ALineGrowingPastTheLimitGetsAnErrorAfterTheRequestsBeforeItAndTheConnectionCloses)
{
    RunningSim sim(FarmConfig(), withLimits(1000, 64));
    LineClient client(sim.port());
    ASSERT_TRUE(client.write(pauseNode(1) + std::string(1001, 'x')));
    EXPECT_EQ(client.readLine(), trueReply(1));
    EXPECT_EQ(client.readLine(), tooLong(1000));
    // what the peer still sends is read and dropped, then the server closes
    ASSERT_TRUE(client.write(std::string(5000, 'y') + "\n" + pauseNode(2)));
    EXPECT_TRUE(client.closedByPeer());
    EXPECT_EQ(client.pending(), "");
}

TEST(SimServer, ACompleteLineOverTheLimitEndsTheConnectionAndNothingAfterItIsAnswered)
{
    RunningSim sim(FarmConfig(), withLimits(1000, 64));
    LineClient client(sim.port());
    ASSERT_TRUE(client.write(pauseNode(1) + std::string(1001, ' ') + "\n" + pauseNode(2)));
    EXPECT_EQ(client.readLine(), trueReply(1));
    EXPECT_EQ(client.readLine(), tooLong(1000));
    EXPECT_TRUE(client.closedByPeer());
    EXPECT_EQ(client.pending(), "");
}

TEST(SimServer, ALineOfExactlyTheLimitIsStillARequest)
{
    RunningSim sim(FarmConfig(), withLimits(1000, 64));
    LineClient client(sim.port());
    std::string request = pauseNode(5);
    request.insert(request.size() - 1, 1000 - request.size() + 1, ' ');
    ASSERT_EQ(request.size(), 1001u);
    ASSERT_TRUE(client.write(request + pauseNode(6)));
    EXPECT_EQ(client.readLine(), trueReply(5));
    EXPECT_EQ(client.readLine(), trueReply(6));
}

TEST(SimServer, TheClientBeyondTheLimitIsToldAndClosedWhileTheOthersAreServed)
{
    RunningSim sim(FarmConfig(), withLimits(1048576, 2));
    LineClient first(sim.port());
    LineClient second(sim.port());
    ASSERT_TRUE(first.write(pauseNode(1)));
    ASSERT_TRUE(second.write(pauseNode(2)));
    EXPECT_EQ(first.readLine(), trueReply(1));
    EXPECT_EQ(second.readLine(), trueReply(2));

    LineClient third(sim.port());
    EXPECT_EQ(third.readLine(),
        "{\"error\":{\"code\":-32000,\"message\":\"Server busy: 2 clients connected, the most it "
        "serves\"},\"id\":null}\n");
    EXPECT_TRUE(third.closedByPeer());
    ASSERT_TRUE(first.write(pauseNode(3)));
    EXPECT_EQ(first.readLine(), trueReply(3));

    // a place that comes free is taken again
    second.close();
    std::string answer;
    for (int attempt = 0; attempt < 100 && answer != trueReply(4); ++attempt) {
        LineClient next(sim.port());
        if (next.write(pauseNode(4)))
            answer = next.readLine();
    }
    EXPECT_EQ(answer, trueReply(4));
}

TEST(SimServer, ClientsThatNeverReadStallOrFloodDoNotHoldUpTheOthers)
{
    RunningSim sim;
    LineClient silent(sim.port());
    LineClient halfLine(sim.port());
    ASSERT_TRUE(halfLine.write("{\"id\":1,\"method\":\"listNo"));
    // asks for far more than its socket buffers hold, and never reads
    LineClient neverReads(sim.port());
    std::string flood;
    for (int i = 0; i < 2000; ++i)
        flood += ListNodes + "{\"id\":2,\"method\":\"listBatches\"}\n";
    ASSERT_TRUE(neverReads.write(flood));

    LineClient other(sim.port());
    for (int i = 0; i < 20; ++i) {
        ASSERT_TRUE(other.write(pauseNode(100 + i)));
        ASSERT_EQ(other.readLine(5000), trueReply(100 + i));
    }
}
