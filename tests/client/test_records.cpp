#include <json/value.h>

#include <gtest/gtest.h>

#include "consolecapture.h"
#include "controlclient.h"
#include "jsontext.h"

namespace {

const char* const FullBatch = R"({
    "batch_id": 12, "path": "/projects/site.kproj", "status": "inprogress", "priority": -1,
    "time_started": 1700000000,
    "task": {"name": "BuildDenseCloud", "params": {"quality": 2, "filter": "mild"}, "status": "paused",
             "time_elapsed": 61.5, "time_left": 30.25, "progress": 66.6, "items_total": 40, "items_done": 12,
             "nodes_active": 3, "nodes_waiting": 2, "nodes_failed": 1}
})";

const char* const FullNode = R"({
    "hostname": "render-07", "node_id": 7, "version": "1.8.4", "status": "completed", "priority": 2,
    "batch_id": 12, "progress": 12.5, "task": {"name": "AlignCameras", "params": {"accuracy": 1}},
    "error_count": 4, "last_error": {"time": 1700000100, "batch_id": 11, "message": "out of memory"}
})";

} // namespace

TEST(ControlClientStatus, WireStringsGiveTheirValues)
{
    EXPECT_EQ(ControlClient::statusFromJson(Json::Value("pending")), ControlClient::Pending);
    EXPECT_EQ(ControlClient::statusFromJson(Json::Value("inprogress")), ControlClient::InProgress);
    EXPECT_EQ(ControlClient::statusFromJson(Json::Value("completed")), ControlClient::Completed);
    EXPECT_EQ(ControlClient::statusFromJson(Json::Value("paused")), ControlClient::Paused);
    EXPECT_EQ(ControlClient::statusFromJson(Json::Value("aborted")), ControlClient::Aborted);
    EXPECT_EQ(ControlClient::statusFromJson(Json::Value("ready")), ControlClient::Ready);
    EXPECT_EQ(ControlClient::InProgress, 1);
    EXPECT_EQ(ControlClient::Ready, 5);
}

TEST(ControlClientStatus, CapitalisedOrUnknownWordIsPending)
{
    EXPECT_EQ(ControlClient::statusFromJson(Json::Value("Paused")), ControlClient::Pending);
    EXPECT_EQ(ControlClient::statusFromJson(Json::Value("running")), ControlClient::Pending);
    EXPECT_EQ(ControlClient::statusFromJson(Json::Value()), ControlClient::Pending);
}

TEST(ControlClientStatus, ValuesGiveWireStringsAndOthersNull)
{
    const char* const names[] = {"pending", "inprogress", "completed", "paused", "aborted", "ready"};
    for (int status = 0; status < 6; ++status)
        EXPECT_EQ(ControlClient::statusToJson(status), Json::Value(names[status]));
    EXPECT_TRUE(ControlClient::statusToJson(6).isNull());
    EXPECT_TRUE(ControlClient::statusToJson(-1).isNull());
}

TEST(ControlClientRecords, BatchFieldsComeFromTheirKeys)
{
    ControlClient::BatchInfo batch;
    ControlClient::parseBatchInfo(jsonFromText(FullBatch), batch);
    EXPECT_EQ(batch.batchId, 12u);
    EXPECT_EQ(batch.path, "/projects/site.kproj");
    EXPECT_EQ(batch.status, ControlClient::InProgress);
    EXPECT_EQ(batch.priority, -1);
    EXPECT_EQ(batch.timeStarted, 1700000000u);
    const ControlClient::TaskInfo& task = batch.task;
    EXPECT_EQ(task.name, "BuildDenseCloud");
    EXPECT_EQ(task.status, ControlClient::Paused);
    EXPECT_EQ(task.timeElapsed, 61.5);
    EXPECT_EQ(task.timeLeft, 30.25);
    EXPECT_EQ(task.progress, 66.6);
    EXPECT_EQ(task.itemsTotal, 40);
    EXPECT_EQ(task.itemsDone, 12);
    EXPECT_EQ(task.nodesActive, 3);
    EXPECT_EQ(task.nodesWaiting, 2);
    EXPECT_EQ(task.nodesFailed, 1);
    ASSERT_EQ(task.params.size(), 2u);
    EXPECT_EQ(task.params.at("quality").toInt32(), 2);
    EXPECT_EQ(task.params.at("filter").toString(), "mild");
}

TEST(ControlClientRecords, BatchWithoutTaskHasAnEmptyPendingTask)
{
    ControlClient::BatchInfo batch;
    batch.task.name = "stale";
    batch.task.progress = 5;
    batch.task.params.emplace("x", ParamValue(std::int32_t(1)));
    ControlClient::parseBatchInfo(jsonFromText(R"({"batch_id": 1, "path": "p", "status": "ready"})"), batch);
    EXPECT_EQ(batch.status, ControlClient::Ready);
    EXPECT_EQ(batch.task.name, "");
    EXPECT_TRUE(batch.task.params.empty());
    EXPECT_EQ(batch.task.status, ControlClient::Pending);
    EXPECT_EQ(batch.task.progress, 0.0);
    EXPECT_EQ(batch.task.timeElapsed, 0.0);
    EXPECT_EQ(batch.task.timeLeft, 0.0);
    EXPECT_EQ(batch.task.itemsTotal, 0);
    EXPECT_EQ(batch.task.itemsDone, 0);
    EXPECT_EQ(batch.task.nodesActive, 0);
    EXPECT_EQ(batch.task.nodesWaiting, 0);
    EXPECT_EQ(batch.task.nodesFailed, 0);
}

TEST(ControlClientRecords, NodeFieldsComeFromTheirKeys)
{
    ControlClient::NodeInfo node;
    ControlClient::parseNodeInfo(jsonFromText(FullNode), node);
    EXPECT_EQ(node.hostname, "render-07");
    EXPECT_EQ(node.nodeId, 7u);
    EXPECT_EQ(node.version, "1.8.4");
    EXPECT_EQ(node.status, ControlClient::Completed);
    EXPECT_EQ(node.priority, 2);
    EXPECT_EQ(node.batchId, 12u);
    EXPECT_EQ(node.progress, 12.5);
    EXPECT_EQ(node.taskName, "AlignCameras");
    ASSERT_EQ(node.taskParams.size(), 1u);
    EXPECT_EQ(node.taskParams.at("accuracy").toInt32(), 1);
    EXPECT_EQ(node.errorCount, 4u);
    EXPECT_EQ(node.lastError.time, 1700000100u);
    EXPECT_EQ(node.lastError.batchId, 11u);
    EXPECT_EQ(node.lastError.message, "out of memory");
}

TEST(ControlClientRecords, NodeWithoutBatchIdHasNone)
{
    ControlClient::NodeInfo node;
    ControlClient::parseNodeInfo(jsonFromText(R"({"hostname": "n1", "node_id": 3})"), node);
    EXPECT_EQ(node.batchId, 0xFFFFFFFFu);
    EXPECT_EQ(node.progress, 0.0);
    EXPECT_EQ(node.errorCount, 0u);
    EXPECT_EQ(node.status, ControlClient::Pending);
    EXPECT_EQ(node.priority, 0);
    EXPECT_EQ(node.version, "");
    EXPECT_EQ(node.taskName, "");
    EXPECT_TRUE(node.taskParams.empty());
    EXPECT_EQ(node.lastError.time, 0u);
    EXPECT_EQ(node.lastError.batchId, 0xFFFFFFFFu);
    EXPECT_EQ(node.lastError.message, "");
}

TEST(ControlClientRecords, NodeWithBatchIdZeroHasBatchZero)
{
    ControlClient::NodeInfo node;
    ControlClient::parseNodeInfo(jsonFromText(R"({"batch_id": 0})"), node);
    EXPECT_EQ(node.batchId, 0u);
}

TEST(ControlClientRecords, NodeWithNullLastErrorHasNoError)
{
    ControlClient::NodeInfo node;
    node.lastError.message = "stale";
    node.lastError.time = 9;
    ControlClient::parseNodeInfo(jsonFromText(R"({"node_id": 3, "last_error": null})"), node);
    EXPECT_EQ(node.lastError.message, "");
    EXPECT_EQ(node.lastError.time, 0u);
    EXPECT_EQ(node.lastError.batchId, 0xFFFFFFFFu);
}

TEST(ControlClientRecords, StatusWithTasksKeepsTheirOrder)
{
    ControlClient::BatchStatus status;
    ControlClient::parseBatchStatus(jsonFromText(R"({
        "path": "/p/a.kproj", "status": "aborted", "priority": 1,
        "tasks": [{"name": "AlignCameras", "status": "completed"},
                  {"name": "BuildDenseCloud", "status": "inprogress", "progress": 50},
                  {"name": "ExportModel"}],
        "last_error": {"time": 1700000200, "node_id": 5, "message": "disk full"}
    })"),
        status);
    EXPECT_EQ(status.path, "/p/a.kproj");
    EXPECT_EQ(status.status, ControlClient::Aborted);
    EXPECT_EQ(status.priority, 1);
    ASSERT_EQ(status.tasks.size(), 3u);
    EXPECT_EQ(status.tasks[0].name, "AlignCameras");
    EXPECT_EQ(status.tasks[0].status, ControlClient::Completed);
    EXPECT_EQ(status.tasks[1].name, "BuildDenseCloud");
    EXPECT_EQ(status.tasks[1].progress, 50.0);
    EXPECT_EQ(status.tasks[2].name, "ExportModel");
    EXPECT_EQ(status.tasks[2].status, ControlClient::Pending);
    EXPECT_EQ(status.lastError.time, 1700000200u);
    EXPECT_EQ(status.lastError.nodeId, 5u);
    EXPECT_EQ(status.lastError.message, "disk full");
}

TEST(ControlClientRecords, StatusWithoutLastErrorHasNoNode)
{
    ControlClient::BatchStatus status;
    status.lastError.message = "stale";
    status.tasks.resize(4);
    ControlClient::parseBatchStatus(jsonFromText(R"({"path": "x", "last_error": null})"), status);
    EXPECT_EQ(status.lastError.nodeId, 0xFFFFFFFFu);
    EXPECT_EQ(status.lastError.time, 0u);
    EXPECT_EQ(status.lastError.message, "");
    EXPECT_TRUE(status.tasks.empty());

    ControlClient::parseBatchStatus(jsonFromText(R"({"path": "x"})"), status);
    EXPECT_EQ(status.lastError.nodeId, 0xFFFFFFFFu);
}

TEST(ControlClientRecords, ListParseReplacesTheWholeList)
{
    ControlClient::BatchList batches(5);
    batches[0].path = "stale";
    batches[0].task.params.emplace("old", ParamValue(1.0));
    batches[1].priority = 2;
    ControlClient::parseBatchList(jsonFromText(R"([{"batch_id": 1, "path": "a"}, {"batch_id": 2}])"), batches);
    ASSERT_EQ(batches.size(), 2u);
    EXPECT_EQ(batches[0].path, "a");
    EXPECT_TRUE(batches[0].task.params.empty());
    EXPECT_EQ(batches[1].batchId, 2u);
    EXPECT_EQ(batches[1].priority, 0);
}

TEST(ControlClientRecords, NodeListKeepsTheOrderOfTheArray)
{
    ControlClient::NodeList nodes;
    ControlClient::parseNodeList(jsonFromText(R"([{"node_id": 9}, {"node_id": 3}, {"node_id": 5}])"), nodes);
    ASSERT_EQ(nodes.size(), 3u);
    EXPECT_EQ(nodes[0].nodeId, 9u);
    EXPECT_EQ(nodes[1].nodeId, 3u);
    EXPECT_EQ(nodes[2].nodeId, 5u);
}

TEST(ControlClientRecords, ScalarResultGivesAnEmptyList)
{
    ControlClient::NodeList nodes(2);
    ControlClient::parseNodeList(Json::Value(true), nodes);
    EXPECT_TRUE(nodes.empty());
}

TEST(ControlClientRecords, ObjectResultRaisesJsoncppError)
{
    ControlClient::BatchList batches;
    EXPECT_THROW(ControlClient::parseBatchList(jsonFromText(R"({"batch_id": 1})"), batches), Json::LogicError);
}

TEST(ControlClientRecords, MemberOfWrongTypeRaisesJsoncppError)
{
    ControlClient::BatchList batches;
    EXPECT_THROW(ControlClient::parseBatchList(jsonFromText(R"([{"batch_id": "one"}])"), batches), Json::LogicError);
    ControlClient::NodeList nodes;
    EXPECT_THROW(ControlClient::parseNodeList(jsonFromText(R"([{"batch_id": "x"}])"), nodes), Json::LogicError);
    EXPECT_THROW(ControlClient::parseNodeList(jsonFromText(R"([{"priority": [1]}])"), nodes), Json::LogicError);
    EXPECT_THROW(ControlClient::parseNodeList(jsonFromText(R"([{"progress": "half"}])"), nodes), Json::LogicError);
    ControlClient::BatchStatus status;
    EXPECT_THROW(ControlClient::parseBatchStatus(jsonFromText(R"({"tasks": [{"items_done": {}}]})"), status),
        Json::LogicError);
}

TEST(ControlClientRecords, NegativeIdRaisesJsoncppError)
{
    ControlClient::BatchList batches;
    EXPECT_THROW(ControlClient::parseBatchList(jsonFromText(R"([{"batch_id": -1}])"), batches), Json::LogicError);
}

TEST(ControlClientRecords, TaskParamsWithWrongElementRaiseJsoncppError)
{
    ControlClient::NodeList nodes;
    EXPECT_THROW(ControlClient::parseNodeList(jsonFromText(R"([{"task": {"params": {"a": ["x"]}}}])"), nodes),
        Json::LogicError);
}

TEST(ControlClientRecords, ObjectParamOfANodeTaskIsReported)
{
    const ConsoleCapture console;
    ControlClient::NodeInfo node;
    ControlClient::parseNodeInfo(jsonFromText(R"({"task": {"name": "t", "params": {"a": {}, "b": 1}}})"), node);
    EXPECT_EQ(node.taskParams.size(), 1u);
    EXPECT_EQ(console.text(), "skipping json param a\n");
}

TEST(ControlClientRecords, RecordsAreCopyableValues)
{
    ControlClient::NodeList nodes;
    ControlClient::parseNodeList(jsonFromText(std::string("[") + FullNode + "]"), nodes);
    const ControlClient::NodeList copy = nodes;
    nodes.clear();
    ASSERT_EQ(copy.size(), 1u);
    EXPECT_EQ(copy[0].taskParams.at("accuracy").toInt32(), 1);
    EXPECT_EQ(copy[0].lastError.message, "out of memory");
}
