#include <gtest/gtest.h>

#include "consolecapture.h"
#include "controlclient.h"
#include "jsontext.h"
#include "wrongmember.h"

namespace {

const char* const GoodBatch = R"({"batch_id":1,"path":"/p","status":"pending","priority":0,"time_started":5,
    "task":{"name":"AlignCameras","params":{"quality":1,"cameras":[1,2]},"status":"pending","progress":0,
    "time_elapsed":0,"time_left":0,"items_total":1,"items_done":0,"nodes_active":0,"nodes_waiting":0,
    "nodes_failed":0}})";
const char* const GoodNode = R"({"node_id":1,"hostname":"h","version":"1","status":"inprogress","priority":0,
    "batch_id":1,"progress":10.5,"error_count":2,"task":{"name":"x","params":{"a":1}},
    "last_error":{"time":5,"batch_id":1,"message":"m"}})";

// Each case is also checked against the record reader: it must throw, or the path would name nothing wrong.
void expectBatchPath(const std::string& result, const std::string& path)
{
    const Json::Value value = jsonFromText(result);
    ControlClient::BatchList batches;
    EXPECT_ANY_THROW(ControlClient::parseBatchList(value, batches)) << result;
    EXPECT_EQ(findWrongBatchMember(value), path) << result;
}

void expectNodePath(const std::string& result, const std::string& path)
{
    const Json::Value value = jsonFromText(result);
    ControlClient::NodeList nodes;
    EXPECT_ANY_THROW(ControlClient::parseNodeList(value, nodes)) << result;
    EXPECT_EQ(findWrongNodeMember(value), path) << result;
}

} // namespace

TEST(WrongMember, GoodListsNameNothing)
{
    EXPECT_EQ(findWrongBatchMember(jsonFromText(std::string("[") + GoodBatch + "," + GoodBatch + "]")), "");
    EXPECT_EQ(findWrongNodeMember(jsonFromText(std::string("[") + GoodNode + "]")), "");
    EXPECT_EQ(findWrongBatchMember(jsonFromText("[]")), "");
    // Missing members read as their defaults.
    EXPECT_EQ(findWrongNodeMember(jsonFromText(R"([{}, {"last_error":null}])")), "");
}

TEST(WrongMember, BatchMembers)
{
    expectBatchPath(R"([{"batch_id":"seven"}])", "result[0].batch_id");
    expectBatchPath(R"([{"batch_id":-1}])", "result[0].batch_id");
    expectBatchPath(std::string("[") + GoodBatch + R"(,{"priority":"high"}])", "result[1].priority");
    expectBatchPath(R"([{"path":[1]}])", "result[0].path");
    expectBatchPath(R"([{"status":{}}])", "result[0].status");
    expectBatchPath(R"([{"time_started":1.5e10}])", "result[0].time_started");
}

TEST(WrongMember, TaskMembers)
{
    expectBatchPath(R"([{"task":{"time_left":"soon"}}])", "result[0].task.time_left");
    expectBatchPath(R"([{"task":{"nodes_failed":[]}}])", "result[0].task.nodes_failed");
    expectBatchPath(R"([{"task":"AlignCameras"}])", "result[0].task");
    expectBatchPath(
        R"([{"task":{"params":{"quality":1,"cameras":[1,"two"]}}}])", "result[0].task.params.cameras");
    expectBatchPath(R"([{"task":{"params":"none"}}])", "result[0].task.params");
}

TEST(WrongMember, NodeMembers)
{
    expectNodePath(R"([{"error_count":"many"}])", "result[0].error_count");
    expectNodePath(std::string("[") + GoodNode + R"(,{"progress":"half"}])", "result[1].progress");
    expectNodePath(R"([{"task":{"params":{"a":[{}]}}}])", "result[0].task.params.a");
    expectNodePath(R"([{"last_error":"crashed"}])", "result[0].last_error");
    expectNodePath(R"([{"last_error":{"time":"noon"}}])", "result[0].last_error.time");
    expectNodePath(R"([7])", "result[0]");
}

TEST(WrongMember, AResultThatIsNoList)
{
    expectBatchPath(R"({"batches":[]})", "result");
    expectNodePath(R"({"nodes":[]})", "result");
}

TEST(WrongMember, ParameterObjectsAreSkippedNotWrong)
{
    ConsoleCapture console;
    EXPECT_EQ(findWrongNodeMember(jsonFromText(R"([{"task":{"params":{"region":{"x":1}}}}])")), "");
    EXPECT_EQ(console.text(), "skipping json param region\n");
}
