#include <climits>
#include <vector>

#include <json/value.h>

#include <gtest/gtest.h>

#include "consolecapture.h"
#include "controlclient.h"
#include "scriptedserver.h"

namespace {

// A connected client against a server that plays the script given by the test.
class ControlClientRequests : public ::testing::Test
{
protected:
    void connectClient()
    {
        m_server.start();
        ASSERT_TRUE(m_client.connect("127.0.0.1", m_server.port()));
    }

    // Stops the node, noting each step that failed; goOn is the answer to each.
    std::vector<ControlClient::StopStep> stopNode(std::uint32_t id, bool goOn, bool& stopped)
    {
        std::vector<ControlClient::StopStep> failed;
        stopped = m_client.stopNode(id, [&](ControlClient::StopStep step) {
            failed.push_back(step);
            return goOn;
        });
        return failed;
    }

    ScriptedServer m_server;
    ConsoleCapture m_console;
    ControlClient m_client;
};

std::string line(const std::string& text)
{
    return text + "\n";
}

} // namespace

TEST_F(ControlClientRequests, EveryMethodSendsItsExactLine)
{
    m_server.acceptConnection()
        .reply(R"({"id":0,"result":[]})")
        .reply(R"({"id":1,"result":[]})")
        .reply(R"({"id":2,"result":{}})")
        .reply(R"({"result":true})")
        .reply(R"({"result":true})")
        .reply(R"({"result":true})")
        .reply(R"({"result":true})")
        .reply(R"({"result":true})")
        .reply(R"({"result":true})")
        .reply(R"({"result":true})")
        .reply(R"({"result":true})")
        .reply(R"({"result":17})")
        .reply(R"({"result":18})");
    connectClient();

    ControlClient::BatchList batches;
    ControlClient::NodeList nodes;
    ControlClient::BatchStatus status;
    EXPECT_TRUE(m_client.listBatches(batches));
    EXPECT_TRUE(m_client.listNodes(nodes));
    EXPECT_TRUE(m_client.getBatchStatus(3, status));
    EXPECT_TRUE(m_client.pauseBatch(3));
    EXPECT_TRUE(m_client.resumeBatch(4));
    EXPECT_TRUE(m_client.abortBatch(5));
    EXPECT_TRUE(m_client.pauseNode(6));
    EXPECT_TRUE(m_client.resumeNode(7));
    EXPECT_TRUE(m_client.abortNode(8));
    EXPECT_TRUE(m_client.setBatchPriority(9, -2));
    EXPECT_TRUE(m_client.setNodePriority(10, 2));
    ControlClient::TaskRequest task;
    task.name = "AlignCameras";
    EXPECT_EQ(m_client.createBatch("/p/a.kproj", {task}), 17u);
    EXPECT_EQ(m_client.findBatch("/p/a.kproj"), 18u);
    EXPECT_TRUE(m_server.finish());

    EXPECT_EQ(m_server.received(),
        line(R"({"id":0,"method":"listBatches"})") + line(R"({"id":1,"method":"listNodes"})")
            + line(R"({"id":2,"method":"getBatchStatus","params":{"batch_id":3}})")
            + line(R"({"id":3,"method":"pauseBatch","params":{"batch_id":3}})")
            + line(R"({"id":4,"method":"resumeBatch","params":{"batch_id":4}})")
            + line(R"({"id":5,"method":"abortBatch","params":{"batch_id":5}})")
            + line(R"({"id":6,"method":"pauseNode","params":{"node_id":6}})")
            + line(R"({"id":7,"method":"resumeNode","params":{"node_id":7}})")
            + line(R"({"id":8,"method":"abortNode","params":{"node_id":8}})")
            + line(R"({"id":9,"method":"setBatchPriority","params":{"batch_id":9,"priority":-2}})")
            + line(R"({"id":10,"method":"setNodePriority","params":{"node_id":10,"priority":2}})")
            + line(
                R"({"id":11,"method":"createBatch","params":{"path":"/p/a.kproj","tasks":[{"name":"AlignCameras","params":null}]}})")
            + line(R"({"id":12,"method":"findBatch","params":{"path":"/p/a.kproj"}})"));
    EXPECT_EQ(m_console.text(), "connected to 127.0.0.1:" + std::to_string(m_server.port()) + "\n");
}

TEST_F(ControlClientRequests, EighthRequestCarriesIdSeven)
{
    m_server.acceptConnection();
    for (int i = 0; i < 8; ++i)
        m_server.reply(R"({"result":0})");
    connectClient();
    for (int i = 0; i < 7; ++i)
        EXPECT_TRUE(m_client.resumeNode(1));
    EXPECT_TRUE(m_client.pauseBatch(3));
    EXPECT_TRUE(m_server.finish());
    const std::string received = m_server.received();
    const std::string last = line(R"({"id":7,"method":"pauseBatch","params":{"batch_id":3}})");
    ASSERT_GE(received.size(), last.size());
    EXPECT_EQ(received.substr(received.size() - last.size()), last);
}

TEST_F(ControlClientRequests, ConsecutiveRequestsCarryIdsOneApart)
{
    m_server.acceptConnection().reply(R"({"result":1})").reply(R"({"result":1})");
    connectClient();
    EXPECT_TRUE(m_client.pauseNode(1));
    EXPECT_TRUE(m_client.pauseNode(1));
    EXPECT_TRUE(m_server.finish());
    EXPECT_EQ(m_server.received(),
        line(R"({"id":0,"method":"pauseNode","params":{"node_id":1}})")
            + line(R"({"id":1,"method":"pauseNode","params":{"node_id":1}})"));
}

TEST_F(ControlClientRequests, IdsGoOnAcrossReconnects)
{
    m_server.acceptConnection().reply(R"({"result":1})").waitForClose();
    m_server.acceptConnection().reply(R"({"result":1})");
    connectClient();
    EXPECT_TRUE(m_client.abortNode(1));
    ASSERT_TRUE(m_client.connect("127.0.0.1", m_server.port()));
    EXPECT_TRUE(m_client.abortNode(1));
    EXPECT_TRUE(m_server.finish());
    EXPECT_EQ(m_server.received(),
        line(R"({"id":0,"method":"abortNode","params":{"node_id":1}})")
            + line(R"({"id":1,"method":"abortNode","params":{"node_id":1}})"));
}

TEST_F(ControlClientRequests, FalseResultIsStillSuccess)
{
    m_server.acceptConnection().reply(R"({"id":0,"result":false})").reply(R"({"result":0})");
    connectClient();
    EXPECT_TRUE(m_client.pauseNode(2));
    EXPECT_TRUE(m_client.pauseNode(2));
}

TEST_F(ControlClientRequests, StopNodePausesThenAborts)
{
    m_server.acceptConnection().reply(R"({"id":0,"result":true})").reply(R"({"id":1,"result":true})");
    connectClient();
    bool stopped = false;
    const std::vector<ControlClient::StopStep> failed = stopNode(9, true, stopped);
    EXPECT_TRUE(stopped);
    EXPECT_TRUE(failed.empty());
    EXPECT_TRUE(m_server.finish());
    EXPECT_EQ(m_server.received(),
        line(R"({"id":0,"method":"pauseNode","params":{"node_id":9}})")
            + line(R"({"id":1,"method":"abortNode","params":{"node_id":9}})"));
}

TEST_F(ControlClientRequests, StopNodeAbortsEvenWhenThePauseIsRefused)
{
    m_server.acceptConnection().reply(R"({"id":0,"error":"busy"})").reply(R"({"id":1,"error":"busy"})");
    connectClient();
    bool stopped = true;
    const std::vector<ControlClient::StopStep> failed = stopNode(4, true, stopped);
    EXPECT_FALSE(stopped);
    EXPECT_EQ(failed, (std::vector {ControlClient::StopStep::Pause, ControlClient::StopStep::Abort}));
    EXPECT_TRUE(m_server.finish());
    EXPECT_EQ(m_server.received(),
        line(R"({"id":0,"method":"pauseNode","params":{"node_id":4}})")
            + line(R"({"id":1,"method":"abortNode","params":{"node_id":4}})"));
}

TEST_F(ControlClientRequests, StopNodeGoesNoFurtherWhenTold)
{
    m_server.acceptConnection().reply(R"({"id":0,"error":"busy"})");
    connectClient();
    bool stopped = true;
    const std::vector<ControlClient::StopStep> failed = stopNode(4, false, stopped);
    EXPECT_FALSE(stopped);
    EXPECT_EQ(failed, (std::vector {ControlClient::StopStep::Pause}));
    EXPECT_TRUE(m_server.finish());
    EXPECT_EQ(m_server.received(), line(R"({"id":0,"method":"pauseNode","params":{"node_id":4}})"));
}

TEST_F(ControlClientRequests, StopNodeReportsARefusedAbort)
{
    m_server.acceptConnection().reply(R"({"id":0,"result":true})").reply(R"({"id":1,"result":null})");
    connectClient();
    bool stopped = true;
    const std::vector<ControlClient::StopStep> failed = stopNode(2, true, stopped);
    EXPECT_FALSE(stopped);
    EXPECT_EQ(failed, (std::vector {ControlClient::StopStep::Abort}));
}

TEST_F(ControlClientRequests, ErrorWithoutResultIsFailure)
{
    m_server.acceptConnection().reply(R"({"id":0,"error":"x"})");
    connectClient();
    EXPECT_FALSE(m_client.pauseNode(2));
    EXPECT_TRUE(m_client.isConnected());
}

TEST_F(ControlClientRequests, NullResultIsFailure)
{
    m_server.acceptConnection().reply(R"({"id":0,"result":null})");
    connectClient();
    EXPECT_FALSE(m_client.pauseNode(2));
}

TEST_F(ControlClientRequests, EmptyReplyIsFailure)
{
    m_server.acceptConnection().reply("{}").reply("[]").reply("null");
    connectClient();
    EXPECT_FALSE(m_client.resumeBatch(1));
    EXPECT_FALSE(m_client.resumeBatch(1));
    EXPECT_FALSE(m_client.resumeBatch(1));
    EXPECT_TRUE(m_client.isConnected());
}

TEST_F(ControlClientRequests, ReplyWithAnotherIdIsAccepted)
{
    m_server.acceptConnection().reply(R"({"id":999,"result":true})");
    connectClient();
    EXPECT_TRUE(m_client.abortBatch(1));
}

TEST_F(ControlClientRequests, ErrorBesideResultIsIgnored)
{
    m_server.acceptConnection().reply(R"({"error":"bad","result":"yes"})");
    connectClient();
    EXPECT_TRUE(m_client.abortBatch(1));
}

TEST_F(ControlClientRequests, EmptyBatchListIsSuccess)
{
    m_server.acceptConnection().reply(R"({"result":[]})");
    connectClient();
    ControlClient::BatchList batches(3);
    EXPECT_TRUE(m_client.listBatches(batches));
    EXPECT_TRUE(batches.empty());
}

TEST_F(ControlClientRequests, ScalarListResultIsAnEmptyList)
{
    m_server.acceptConnection().reply(R"({"result":3})");
    connectClient();
    ControlClient::NodeList nodes(2);
    EXPECT_TRUE(m_client.listNodes(nodes));
    EXPECT_TRUE(nodes.empty());
}

TEST_F(ControlClientRequests, BatchListIsFilledFromTheResult)
{
    m_server.acceptConnection().reply(
        R"({"id":0,"result":[{"batch_id":1,"path":"/a.kproj","status":"paused","priority":2,"time_started":100,)"
        R"("task":{"name":"ExportModel","progress":12.5,"params":{"format":"obj"}}},{"batch_id":2}]})");
    connectClient();
    ControlClient::BatchList batches;
    ASSERT_TRUE(m_client.listBatches(batches));
    ASSERT_EQ(batches.size(), 2u);
    EXPECT_EQ(batches[0].path, "/a.kproj");
    EXPECT_EQ(batches[0].status, ControlClient::Paused);
    EXPECT_EQ(batches[0].priority, 2);
    EXPECT_EQ(batches[0].timeStarted, 100u);
    EXPECT_EQ(batches[0].task.name, "ExportModel");
    EXPECT_EQ(batches[0].task.progress, 12.5);
    EXPECT_EQ(batches[0].task.params.at("format").toString(), "obj");
    EXPECT_EQ(batches[1].batchId, 2u);
}

TEST_F(ControlClientRequests, NodeListIsFilledFromTheResult)
{
    m_server.acceptConnection().reply(
        R"({"result":[{"hostname":"n1","node_id":4,"status":"inprogress","batch_id":1,"progress":50,)"
        R"("task":{"name":"AlignCameras"},"error_count":2,"last_error":{"time":5,"batch_id":1,"message":"m"}}]})");
    connectClient();
    ControlClient::NodeList nodes;
    ASSERT_TRUE(m_client.listNodes(nodes));
    ASSERT_EQ(nodes.size(), 1u);
    EXPECT_EQ(nodes[0].hostname, "n1");
    EXPECT_EQ(nodes[0].status, ControlClient::InProgress);
    EXPECT_EQ(nodes[0].progress, 50.0);
    EXPECT_EQ(nodes[0].taskName, "AlignCameras");
    EXPECT_EQ(nodes[0].errorCount, 2u);
    EXPECT_EQ(nodes[0].lastError.message, "m");
}

TEST_F(ControlClientRequests, BatchStatusIsFilledFromTheResult)
{
    m_server.acceptConnection().reply(
        R"({"result":{"path":"/b.kproj","status":"completed","priority":-1,"tasks":[{"name":"A"},{"name":"B"}]}})");
    connectClient();
    ControlClient::BatchStatus status;
    ASSERT_TRUE(m_client.getBatchStatus(8, status));
    EXPECT_EQ(status.path, "/b.kproj");
    EXPECT_EQ(status.status, ControlClient::Completed);
    EXPECT_EQ(status.priority, -1);
    ASSERT_EQ(status.tasks.size(), 2u);
    EXPECT_EQ(status.tasks[1].name, "B");
    EXPECT_EQ(status.lastError.nodeId, 0xFFFFFFFFu);
}

TEST_F(ControlClientRequests, FailedListLeavesTheListAlone)
{
    m_server.acceptConnection().reply(R"({"result":null})");
    connectClient();
    ControlClient::BatchList batches(2);
    batches[1].path = "kept";
    EXPECT_FALSE(m_client.listBatches(batches));
    ASSERT_EQ(batches.size(), 2u);
    EXPECT_EQ(batches[1].path, "kept");
}

TEST_F(ControlClientRequests, NoneBatchIdIsWrittenUnsigned)
{
    m_server.acceptConnection().reply(R"({"result":1})").reply(R"({"result":1})");
    connectClient();
    EXPECT_TRUE(m_client.pauseBatch(4294967295u));
    EXPECT_TRUE(m_client.setNodePriority(0xFFFFFFFFu, -1));
    EXPECT_TRUE(m_server.finish());
    EXPECT_EQ(m_server.received(),
        line(R"({"id":0,"method":"pauseBatch","params":{"batch_id":4294967295}})")
            + line(R"({"id":1,"method":"setNodePriority","params":{"node_id":4294967295,"priority":-1}})"));
}

TEST_F(ControlClientRequests, CreateBatchWithoutChunksAndFramesSendsNeitherKey)
{
    m_server.acceptConnection().reply(R"({"result":5})");
    connectClient();
    ControlClient::TaskRequest align;
    align.name = "AlignCameras";
    align.params.emplace("accuracy", ParamValue(std::int32_t(1)));
    ControlClient::TaskRequest build;
    build.name = "BuildModel";
    EXPECT_EQ(m_client.createBatch("/p/x.kproj", {align, build}), 5u);
    EXPECT_TRUE(m_server.finish());
    EXPECT_EQ(m_server.received(),
        line(R"({"id":0,"method":"createBatch","params":{"path":"/p/x.kproj","tasks":[)"
             R"({"name":"AlignCameras","params":{"accuracy":1}},{"name":"BuildModel","params":null}]}})"));
}

TEST_F(ControlClientRequests, CreateBatchSendsChunksAndFramesAscending)
{
    m_server.acceptConnection().reply(R"({"result":4000000000})");
    connectClient();
    ControlClient::TaskRequest task;
    task.name = "BuildDenseCloud";
    task.params.emplace("quality", ParamValue(std::uint32_t(2)));
    task.params.emplace("filter", ParamValue(std::string("mild")));
    task.params.emplace("depth", ParamValue(std::vector<float> {0.5f, 1.0f}));
    task.chunks = {3, -1, 1};
    task.frames[2] = {5, 4};
    task.frames[1] = {9};
    EXPECT_EQ(m_client.createBatch("/p/y.kproj", {task}), 4000000000u);
    EXPECT_TRUE(m_server.finish());
    EXPECT_EQ(m_server.received(),
        line(R"({"id":0,"method":"createBatch","params":{"path":"/p/y.kproj","tasks":[{"chunks":[-1,1,3],)"
             R"("frames":[[1,9],[2,4],[2,5]],"name":"BuildDenseCloud",)"
             R"("params":{"depth":[0.5,1.0],"filter":"mild","quality":2}}]}})"));
}

TEST_F(ControlClientRequests, CreateBatchWithFrameKeyOfNoFramesSendsEmptyFrames)
{
    m_server.acceptConnection().reply(R"({"result":1})");
    connectClient();
    ControlClient::TaskRequest task;
    task.name = "T";
    task.frames[3];
    EXPECT_EQ(m_client.createBatch("p", {task}), 1u);
    EXPECT_TRUE(m_server.finish());
    EXPECT_EQ(m_server.received(),
        line(
            R"({"id":0,"method":"createBatch","params":{"path":"p","tasks":[{"frames":[],"name":"T","params":null}]}})"));
}

TEST_F(ControlClientRequests, CreateBatchOfNoTasksSendsAnEmptyArray)
{
    m_server.acceptConnection().reply(R"({"result":1})");
    connectClient();
    EXPECT_EQ(m_client.createBatch("p", {}), 1u);
    EXPECT_TRUE(m_server.finish());
    EXPECT_EQ(
        m_server.received(), line(R"({"id":0,"method":"createBatch","params":{"path":"p","tasks":[]}})"));
}

TEST_F(ControlClientRequests, IdRequestsGiveNoneOnFailure)
{
    m_server.acceptConnection().reply(R"({"error":"no"})").reply(R"({"result":null})");
    connectClient();
    EXPECT_EQ(m_client.createBatch("p", {}), 0xFFFFFFFFu);
    EXPECT_EQ(m_client.findBatch("p"), 0xFFFFFFFFu);
}

TEST_F(ControlClientRequests, ServerClosingBeforeAnsweringFailsTheRequest)
{
    m_server.acceptConnection().waitForLine().closeConnection();
    connectClient();
    EXPECT_FALSE(m_client.pauseBatch(1));
    EXPECT_FALSE(m_client.isConnected());
    EXPECT_EQ(m_console.text(),
        "connected to 127.0.0.1:" + std::to_string(m_server.port()) + "\ndisconnected from server\n");
    EXPECT_FALSE(m_client.resumeBatch(1));
    ControlClient::BatchList batches;
    EXPECT_FALSE(m_client.listBatches(batches));
    EXPECT_EQ(m_client.findBatch("p"), 0xFFFFFFFFu);
    EXPECT_TRUE(m_server.finish());
    EXPECT_EQ(m_server.received(), line(R"({"id":0,"method":"pauseBatch","params":{"batch_id":1}})"));
}

TEST_F(ControlClientRequests, RequestsFailAtOnceWhenNotConnected)
{
    ControlClient client;
    ControlClient::NodeList nodes;
    ControlClient::BatchStatus status;
    EXPECT_FALSE(client.listNodes(nodes));
    EXPECT_FALSE(client.getBatchStatus(1, status));
    EXPECT_FALSE(client.setBatchPriority(1, 1));
    EXPECT_EQ(client.createBatch("p", {}), 0xFFFFFFFFu);
}

TEST_F(ControlClientRequests, WrongMemberTypeInListRaisesJsoncppError)
{
    m_server.acceptConnection()
        .reply(R"({"result":[{"batch_id":"seven"}]})")
        .reply(R"({"result":[{"node_id":1,"task":{"params":{"a":[1,"x"]}}}]})")
        .reply(R"({"result":{"tasks":[{"time_left":"soon"}]}})")
        .reply(R"({"result":"abc"})");
    connectClient();
    ControlClient::BatchList batches;
    EXPECT_THROW(m_client.listBatches(batches), Json::LogicError);
    ControlClient::NodeList nodes;
    EXPECT_THROW(m_client.listNodes(nodes), Json::LogicError);
    ControlClient::BatchStatus status;
    EXPECT_THROW(m_client.getBatchStatus(1, status), Json::LogicError);
    EXPECT_THROW(m_client.findBatch("p"), Json::LogicError);
    EXPECT_TRUE(m_client.isConnected());
}

TEST_F(ControlClientRequests, ParseErrorLineIsSkippedAndTheNextLineIsTheReply)
{
    m_server.acceptConnection()
        .waitForLine()
        .write("garbage\n")
        .write(R"({"result":true})"
               "\n");
    connectClient();
    EXPECT_TRUE(m_client.pauseBatch(1));
    EXPECT_NE(m_console.text().find(": garbage\n"), std::string::npos);
}

TEST_F(ControlClientRequests, TheIdWrapsFromTheLargestIntToTheSmallest)
{
    m_server.acceptConnection()
        .reply(R"({"result":true})")
        .reply(R"({"result":true})")
        .reply(R"({"result":true})");
    connectClient();
    m_client.setNextRequestId(INT_MAX);
    EXPECT_TRUE(m_client.pauseNode(1));
    EXPECT_TRUE(m_client.pauseNode(2));
    EXPECT_TRUE(m_client.pauseNode(3));
    EXPECT_TRUE(m_server.finish());
    EXPECT_EQ(m_server.received(),
        line(R"({"id":2147483647,"method":"pauseNode","params":{"node_id":1}})")
            + line(R"({"id":-2147483648,"method":"pauseNode","params":{"node_id":2}})")
            + line(R"({"id":-2147483647,"method":"pauseNode","params":{"node_id":3}})"));
}

TEST_F(ControlClientRequests, ByDefaultARequestWaitsForASlowReply)
{
    m_server.acceptConnection().waitForLine().pause(1200).write(line(R"({"result":[]})"));
    connectClient();
    ControlClient::BatchList batches;
    EXPECT_TRUE(m_client.listBatches(batches));
    EXPECT_EQ(m_client.failure(), ControlClient::Failure::None);
    EXPECT_TRUE(m_client.failedRequest().empty());
}

TEST_F(ControlClientRequests, WithATimeOutASilentServerFailsTheRequestAndTheConnectionIsClosed)
{
    m_server.acceptConnection().waitForLine().waitForClose();
    connectClient();
    m_client.setDeadline(SteadyClock::now() + std::chrono::milliseconds(300));
    ControlClient::BatchList batches;
    EXPECT_FALSE(m_client.listBatches(batches));
    EXPECT_EQ(m_client.failure(), ControlClient::Failure::NoReply);
    EXPECT_EQ(m_client.failedRequest(), "listBatches");
    EXPECT_FALSE(m_client.isConnected());
    EXPECT_EQ(m_console.text(),
        "connected to 127.0.0.1:" + std::to_string(m_server.port()) + "\ndisconnected from server\n");
}

TEST_F(ControlClientRequests, WithATimeOutLinesThatAreNotJsonOrNeverEndCountAsNoReply)
{
    std::string garbage;
    for (int i = 0; i < 50; ++i)
        garbage += "not json " + std::to_string(i) + "\n";
    m_server.acceptConnection().waitForLine().write(garbage).waitForClose();
    m_server.acceptConnection().waitForLine().write(R"({"result":tr)").waitForClose();
    connectClient();
    m_client.setDeadline(SteadyClock::now() + std::chrono::milliseconds(300));
    EXPECT_FALSE(m_client.pauseNode(1));
    EXPECT_EQ(m_client.failure(), ControlClient::Failure::NoReply);
    EXPECT_EQ(m_client.failedRequest(), "pauseNode");
    EXPECT_FALSE(m_client.isConnected());
    // half a line, and then nothing: the reply had begun
    m_client.clearDeadline();
    ASSERT_TRUE(m_client.connect("127.0.0.1", m_server.port()));
    m_client.setDeadline(SteadyClock::now() + std::chrono::milliseconds(300));
    EXPECT_FALSE(m_client.resumeNode(1));
    EXPECT_EQ(m_client.failure(), ControlClient::Failure::ReplyTooSlow);
    EXPECT_EQ(m_client.failedRequest(), "resumeNode");
    EXPECT_TRUE(m_server.finish());
}
