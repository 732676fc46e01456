#include <QElapsedTimer>
#include <QMetaType>
#include <QTest>

#include <gtest/gtest.h>

#include "consolecapture.h"
#include "monitorworker.h"
#include "scriptedserver.h"
#include "testenvironment.h"
#include "workerharness.h"

namespace {

const std::string EmptyList = R"({"result":[]})";
const std::string Ok = R"({"result":true})";
const std::string Failed = R"({"error":{"code":-32602,"message":"no such id"}})";

std::string lines(std::initializer_list<const char*> texts)
{
    std::string all;
    for (const char* text : texts)
        all += std::string(text) + "\n";
    return all;
}

// A worker against a scripted server on loopback; the test writes the script
// into `server` before start().
class WorkerOnServer : public ::testing::Test
{
protected:
    void start()
    {
        server.start();
        harness.start();
    }

    // Waits until the worker has polled the node list this many times.
    bool turnsDone(int turns)
    {
        return QTest::qWaitFor(
            [&] {
                int polls = 0;
                for (const std::string& event : recorder().events)
                    polls += event.rfind("nodes:", 0) == 0;
                return polls >= turns;
            },
            10000);
    }

    // Stops the worker as the panel's Disconnect does and waits for the end.
    bool stop()
    {
        worker().disconnect();
        const bool ended = harness.waitForEnd();
        server.finish();
        return ended;
    }

    MonitorWorker& worker() { return harness.worker; }
    const WorkerRecorder& recorder() { return harness.recorder; }

    ScriptedServer server;
    ConsoleCapture console;
    WorkerHarness harness {"127.0.0.1", server.port()};
};

} // namespace

TEST(MonitorWorker, RecordTypesAreRegisteredUnderTheirNames)
{
    registerRecordMetaTypes();
    EXPECT_TRUE(QMetaType::fromName("ControlClient::BatchList").isValid());
    EXPECT_TRUE(QMetaType::fromName("ControlClient::NodeList").isValid());
    EXPECT_TRUE(QMetaType::fromName("ControlClient::BatchStatus").isValid());
}

TEST_F(WorkerOnServer, ACyclePollsBatchesThenNodesOncePerSecond)
{
    server.acceptConnection()
        .reply(R"({"result":[{"batch_id":4,"path":"/p/a.kproj","status":"inprogress"}]})")
        .reply(R"({"result":[{"node_id":9,"hostname":"render-09:5841"}]})")
        .reply(EmptyList)
        .reply(EmptyList)
        .waitForClose();
    QElapsedTimer clock;
    start();
    clock.start();
    ASSERT_TRUE(turnsDone(1));
    const qint64 firstCycle = clock.elapsed();
    ASSERT_TRUE(turnsDone(2));
    const qint64 secondCycle = clock.elapsed();
    ASSERT_TRUE(stop());

    EXPECT_GE(secondCycle - firstCycle, 950);
    EXPECT_EQ(server.received(),
        lines({R"({"id":0,"method":"listBatches"})", R"({"id":1,"method":"listNodes"})",
            R"({"id":2,"method":"listBatches"})", R"({"id":3,"method":"listNodes"})"}));
    EXPECT_EQ(recorder().events,
        (std::vector<std::string> {"batches:1", "nodes:1", "batches:0", "nodes:0", "finished"}));
    ASSERT_EQ(recorder().lastBatches.size(), 0u);
    EXPECT_EQ(console.text(),
        "connected to 127.0.0.1:" + std::to_string(server.port()) + "\ndisconnected from server\n");
}

TEST_F(WorkerOnServer, WithNoBatchFollowedNoStatusIsRequested)
{
    server.acceptConnection().reply(EmptyList).reply(EmptyList).waitForClose();
    start();
    ASSERT_TRUE(turnsDone(1));
    ASSERT_TRUE(stop());
    EXPECT_EQ(server.received().find("getBatchStatus"), std::string::npos);
}

TEST_F(WorkerOnServer, FollowedBatchIsPolledAfterTheLists)
{
    server.acceptConnection()
        .reply(EmptyList)
        .reply(EmptyList)
        .reply(R"({"result":{"path":"/p/followed.kproj","tasks":[{"name":"AlignCameras"}]}})")
        .waitForClose();
    worker().setStatusBatch(4294967294u);
    start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return recorder().count("status:/p/followed.kproj") == 1; }, 10000));
    worker().setStatusBatch(ControlClient::NoId);
    ASSERT_TRUE(stop());
    EXPECT_EQ(server.received(),
        lines({R"({"id":0,"method":"listBatches"})", R"({"id":1,"method":"listNodes"})",
            R"({"id":2,"method":"getBatchStatus","params":{"batch_id":4294967294}})"}));
    EXPECT_EQ(recorder().events,
        (std::vector<std::string> {"batches:0", "nodes:0", "status:/p/followed.kproj", "finished"}));
}

TEST_F(WorkerOnServer, FailedStatusIsLoggedAndNotEmitted)
{
    server.acceptConnection().reply(EmptyList).reply(EmptyList).reply(Failed).waitForClose();
    worker().setStatusBatch(7);
    start();
    ASSERT_TRUE(turnsDone(1));
    worker().setStatusBatch(ControlClient::NoId);
    ASSERT_TRUE(stop());
    EXPECT_EQ(recorder().events, (std::vector<std::string> {"batches:0", "nodes:0", "finished"}));
    EXPECT_NE(console.text().find("can't get batch status\n"), std::string::npos);
}

TEST_F(WorkerOnServer, PauseThenStopThenResumeSendsOnlyThePause)
{
    server.acceptConnection().reply(EmptyList).reply(EmptyList).reply(Ok).waitForClose();
    start();
    ASSERT_TRUE(turnsDone(1));
    worker().enqueueCommand(MonitorWorker::PauseBatch, 5, 0);
    worker().disconnect();
    worker().enqueueCommand(MonitorWorker::ResumeBatch, 5, 0);
    ASSERT_TRUE(harness.waitForEnd());
    server.finish();
    EXPECT_EQ(server.received(),
        lines({R"({"id":0,"method":"listBatches"})", R"({"id":1,"method":"listNodes"})",
            R"({"id":2,"method":"pauseBatch","params":{"batch_id":5}})"}));
    EXPECT_EQ(recorder().events, (std::vector<std::string> {"batches:0", "nodes:0", "finished"}));
}

TEST_F(WorkerOnServer, EveryCommandSendsItsRequestsInQueueOrder)
{
    server.acceptConnection().reply(EmptyList).reply(EmptyList);
    for (int i = 0; i < 10; ++i)
        server.reply(Ok);
    server.reply(EmptyList).reply(EmptyList).waitForClose();
    start();
    ASSERT_TRUE(turnsDone(1));
    worker().enqueueCommand(1, 11, 0);
    worker().enqueueCommand(2, 12, 0);
    worker().enqueueCommand(3, 13, 0);
    worker().enqueueCommand(4, 14, 0);
    worker().enqueueCommand(5, 15, 0);
    worker().enqueueCommand(6, 16, 0);
    worker().enqueueCommand(7, 17, -2);
    worker().enqueueCommand(9, 19, 0);
    worker().enqueueCommand(8, 18, 2);
    worker().enqueueCommand(-1, 20, 0);
    ASSERT_TRUE(turnsDone(2));
    ASSERT_TRUE(stop());
    EXPECT_EQ(server.received(),
        lines({R"({"id":0,"method":"listBatches"})", R"({"id":1,"method":"listNodes"})",
            R"({"id":2,"method":"pauseNode","params":{"node_id":11}})",
            R"({"id":3,"method":"pauseNode","params":{"node_id":12}})",
            R"({"id":4,"method":"abortNode","params":{"node_id":12}})",
            R"({"id":5,"method":"resumeNode","params":{"node_id":13}})",
            R"({"id":6,"method":"pauseBatch","params":{"batch_id":14}})",
            R"({"id":7,"method":"abortBatch","params":{"batch_id":15}})",
            R"({"id":8,"method":"resumeBatch","params":{"batch_id":16}})",
            R"({"id":9,"method":"setBatchPriority","params":{"batch_id":17,"priority":-2}})",
            R"({"id":10,"method":"setNodePriority","params":{"node_id":18,"priority":2}})",
            R"({"id":11,"method":"listBatches"})", R"({"id":12,"method":"listNodes"})"}));
    EXPECT_EQ(console.text().find("can't"), std::string::npos) << console.text();
}

TEST_F(WorkerOnServer, EachFailedCommandWritesItsLineAndTheTurnGoesOn)
{
    server.acceptConnection().reply(EmptyList).reply(EmptyList);
    for (int i = 0; i < 9; ++i)
        server.reply(Failed);
    server.reply(EmptyList).reply(EmptyList).waitForClose();
    start();
    ASSERT_TRUE(turnsDone(1));
    for (int type = 1; type <= 8; ++type)
        worker().enqueueCommand(type, 3, 1);
    ASSERT_TRUE(turnsDone(2));
    ASSERT_TRUE(stop());
    const std::string port = std::to_string(server.port());
    EXPECT_EQ(console.text(),
        "connected to 127.0.0.1:" + port
            + "\n"
              "can't pause node\n"
              "can't pause node\n"
              "can't abort node\n"
              "can't resume node\n"
              "can't pause batch\n"
              "can't abort batch\n"
              "can't resume batch\n"
              "can't set batch priority\n"
              "can't set node priority\n"
              "disconnected from server\n");
}

TEST_F(WorkerOnServer, StoppingANodeWhosePauseFailsStillSendsTheAbort)
{
    server.acceptConnection().reply(EmptyList).reply(EmptyList).reply(Failed).reply(Ok).waitForClose();
    start();
    ASSERT_TRUE(turnsDone(1));
    worker().enqueueCommand(MonitorWorker::StopNode, 3, 0);
    ASSERT_TRUE(stop());
    EXPECT_EQ(server.received(),
        lines({R"({"id":0,"method":"listBatches"})", R"({"id":1,"method":"listNodes"})",
            R"({"id":2,"method":"pauseNode","params":{"node_id":3}})",
            R"({"id":3,"method":"abortNode","params":{"node_id":3}})"}));
    EXPECT_NE(console.text().find("can't pause node\n"), std::string::npos);
    EXPECT_EQ(console.text().find("can't abort node"), std::string::npos);
}

TEST_F(WorkerOnServer, CommandsQueuedBeforeTheConnectionAreDropped)
{
    server.acceptConnection().reply(EmptyList).reply(EmptyList).waitForClose();
    worker().enqueueCommand(MonitorWorker::PauseBatch, 1, 0);
    worker().disconnect();
    start();
    ASSERT_TRUE(turnsDone(1));
    ASSERT_TRUE(stop());
    EXPECT_EQ(
        server.received(), lines({R"({"id":0,"method":"listBatches"})", R"({"id":1,"method":"listNodes"})"}));
}

TEST_F(WorkerOnServer, ServerClosingDuringTheBatchListEndsTheRunAtTheNextTurn)
{
    server.acceptConnection().waitForLine().write(R"({"result":[{"batch_id)").closeConnection();
    start();
    ASSERT_TRUE(harness.waitForEnd());
    server.finish();
    ASSERT_TRUE(QTest::qWaitFor([&] { return recorder().count("finished") == 1; }, 10000));
    EXPECT_EQ(recorder().events,
        (std::vector<std::string> {"batches:0", "nodes:0", "error:Disconnected from server", "finished"}));
    EXPECT_EQ(console.text(),
        "connected to 127.0.0.1:" + std::to_string(server.port())
            + "\ndisconnected from server\ncan't get batch list\ncan't get node list\n");
}

TEST(MonitorWorker, WrongHostNameEndsAtOnceWithCantConnect)
{
    WorkerHarness harness("no-such-host.invalid", 5840);
    ConsoleCapture console;
    harness.start();
    ASSERT_TRUE(harness.waitForEnd());
    ASSERT_TRUE(QTest::qWaitFor([&] { return harness.recorder.count("finished") == 1; }, 10000));
    EXPECT_EQ(
        harness.recorder.events, (std::vector<std::string> {"error:Can't connect to server", "finished"}));
    EXPECT_EQ(console.text(), "can't connect to server\n");
    EXPECT_FALSE(console.wideText().empty());
}

TEST(MonitorWorker, RefusedConnectionEndsWithCantConnect)
{
    int port = 0;
    {
        ScriptedServer closed;
        port = closed.port();
    }
    WorkerHarness harness("127.0.0.1", port);
    ConsoleCapture console;
    harness.start();
    ASSERT_TRUE(harness.waitForEnd());
    ASSERT_TRUE(QTest::qWaitFor([&] { return harness.recorder.count("finished") == 1; }, 10000));
    EXPECT_EQ(
        harness.recorder.events, (std::vector<std::string> {"error:Can't connect to server", "finished"}));
    EXPECT_EQ(
        console.text(), "can't connect to 127.0.0.1:" + std::to_string(port) + "\ncan't connect to server\n");
}

TEST_F(WorkerOnServer, AbortEndsARunStuckOnAServerThatNeverAnswers)
{
    server.acceptConnection().waitForClose();
    start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return server.received().size() > 0; }, 10000));
    QElapsedTimer clock;
    clock.start();
    worker().abort();
    ASSERT_TRUE(harness.waitForEnd(2000));
    server.finish();
    EXPECT_LT(clock.elapsed(), 2000);
    ASSERT_TRUE(QTest::qWaitFor([&] { return recorder().count("finished") == 1; }, 10000));
    EXPECT_EQ(recorder().count("error:Disconnected from server"), 0);
}

TEST_F(WorkerOnServer, EnqueueingWaitsWhileTheTurnsCommandsRun)
{
    // steps: 0 accept; 1-4 the lists of the first turn; 5 the command's line;
    // 6 a slow server's pause; 7 its answer; 8 everything after
    server.acceptConnection()
        .reply(EmptyList)
        .reply(EmptyList)
        .waitForLine()
        .pause(800)
        .write(Ok + "\n")
        .answerEveryLine(EmptyList + "\n");
    start();
    ASSERT_TRUE(turnsDone(1));
    worker().enqueueCommand(MonitorWorker::PauseNode, 5, 0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return server.stepsDone() >= 6; }, 10000));
    ASSERT_LT(server.stepsDone(), 7u) << "the server answered before the test could ask";

    // the worker holds its lock until the command's answer is in
    worker().enqueueCommand(MonitorWorker::ResumeNode, 6, 0);
    EXPECT_GE(server.stepsDone(), 7u);

    ASSERT_TRUE(
        QTest::qWaitFor([&] { return server.received().find("resumeNode") != std::string::npos; }, 10000));
    ASSERT_TRUE(stop());
    const std::string expected
        = lines({R"({"id":0,"method":"listBatches"})", R"({"id":1,"method":"listNodes"})",
            R"({"id":2,"method":"pauseNode","params":{"node_id":5}})", R"({"id":3,"method":"listBatches"})",
            R"({"id":4,"method":"listNodes"})", R"({"id":5,"method":"resumeNode","params":{"node_id":6}})"});
    EXPECT_EQ(server.received().substr(0, expected.size()), expected);
}
