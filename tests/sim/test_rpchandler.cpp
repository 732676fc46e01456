#include <string>

#include <json/reader.h>

#include <gtest/gtest.h>

#include "farm.h"
#include "rpchandler.h"

namespace {

class SimRpc : public ::testing::Test
{
protected:
    static FarmConfig config()
    {
        FarmConfig farm;
        farm.batches = 5;
        farm.nodes = 3;
        return farm;
    }
    Json::Value replyTo(const std::string& line)
    {
        const std::string text = m_handler.handleLine(line);
        EXPECT_FALSE(text.empty());
        EXPECT_EQ(text.back(), '\n');
        EXPECT_EQ(text.find('\n'), text.size() - 1) << "one line";
        Json::Value reply;
        EXPECT_TRUE(Json::Reader().parse(text, reply)) << text;
        return reply;
    }
    std::string error(const std::string& line) { return m_handler.handleLine(line); }

    Farm m_farm {config()};
    RpcHandler m_handler {m_farm};
};

std::string errorLine(const std::string& id, int code, const std::string& message)
{
    return "{\"error\":{\"code\":" + std::to_string(code) + ",\"message\":\"" + message + "\"},\"id\":" + id
        + "}\n";
}

} // namespace

TEST_F(SimRpc, ALineThatIsNotJsonGetsAParseErrorWithNullId)
{
    EXPECT_EQ(error("hello"), errorLine("null", -32700, "Parse error"));
    EXPECT_EQ(error("{\"id\":1,\"method\":"), errorLine("null", -32700, "Parse error"));
    EXPECT_EQ(error("{\"id\":1} trailing"), errorLine("null", -32700, "Parse error"));
}

TEST_F(SimRpc, JsonThatIsNotARequestObjectIsAnInvalidRequest)
{
    EXPECT_EQ(error("[1,2]"), errorLine("null", -32600, "Invalid Request: not an object"));
    EXPECT_EQ(error("5"), errorLine("null", -32600, "Invalid Request: not an object"));
    EXPECT_EQ(error("{\"id\":4}"), errorLine("4", -32600, "Invalid Request: method must be a string"));
    EXPECT_EQ(
        error("{\"id\":4,\"method\":7}"), errorLine("4", -32600, "Invalid Request: method must be a string"));
    EXPECT_EQ(error("{\"id\":[1],\"method\":\"listNodes\"}"),
        errorLine("null", -32600, "Invalid Request: id must be a number, a string or null"));
}

TEST_F(SimRpc, AnUnknownMethodIsMethodNotFound)
{
    EXPECT_EQ(error("{\"id\":9,\"method\":\"launchRocket\"}"),
        errorLine("9", -32601, "Method not found: launchRocket"));
    EXPECT_EQ(error("{\"id\":9,\"method\":\"listbatches\"}"),
        errorLine("9", -32601, "Method not found: listbatches"));
}

TEST_F(SimRpc, MissingParamsAreInvalidParamsForEveryMethodThatNeedsThem)
{
    for (const char* method : {"getBatchStatus", "pauseBatch", "resumeBatch", "abortBatch", "pauseNode",
             "resumeNode", "abortNode", "setBatchPriority", "setNodePriority", "createBatch", "findBatch"}) {
        EXPECT_EQ(error(std::string("{\"id\":1,\"method\":\"") + method + "\"}"),
            errorLine("1", -32602, "Invalid params: params must be an object"))
            << method;
        EXPECT_EQ(error(std::string("{\"id\":1,\"method\":\"") + method + "\",\"params\":[3]}"),
            errorLine("1", -32602, "Invalid params: params must be an object"))
            << method;
    }
    EXPECT_EQ(error("{\"id\":1,\"method\":\"pauseNode\",\"params\":{}}"),
        errorLine("1", -32602, "Invalid params: node_id is missing"));
    EXPECT_EQ(error("{\"id\":1,\"method\":\"setBatchPriority\",\"params\":{\"batch_id\":1}}"),
        errorLine("1", -32602, "Invalid params: priority is missing"));
}

TEST_F(SimRpc, WronglyTypedIdsAreInvalidParams)
{
    const std::string wrong = "Invalid params: batch_id must be an unsigned 32-bit integer";
    for (const char* value : {"\"3\"", "-1", "3.5", "3.0", "4294967296", "true", "[3]"}) {
        EXPECT_EQ(error(std::string("{\"id\":2,\"method\":\"pauseBatch\",\"params\":{\"batch_id\":") + value
                      + "}}"),
            errorLine("2", -32602, wrong))
            << value;
    }
    EXPECT_EQ(error("{\"id\":2,\"method\":\"setNodePriority\",\"params\":{\"node_id\":1,\"priority\":3}}"),
        errorLine("2", -32602, "Invalid params: priority must be an integer from -2 to 2"));
    EXPECT_EQ(
        error("{\"id\":2,\"method\":\"setNodePriority\",\"params\":{\"node_id\":1,\"priority\":\"high\"}}"),
        errorLine("2", -32602, "Invalid params: priority must be an integer from -2 to 2"));
    EXPECT_EQ(error("{\"id\":2,\"method\":\"findBatch\",\"params\":{\"path\":5}}"),
        errorLine("2", -32602, "Invalid params: path must be a non-empty string"));
}

TEST_F(SimRpc, UnknownBatchAndNodeIdsAreInvalidParams)
{
    EXPECT_EQ(error("{\"id\":3,\"method\":\"getBatchStatus\",\"params\":{\"batch_id\":99}}"),
        errorLine("3", -32602, "Invalid params: unknown batch id 99"));
    EXPECT_EQ(error("{\"id\":3,\"method\":\"abortBatch\",\"params\":{\"batch_id\":4294967295}}"),
        errorLine("3", -32602, "Invalid params: unknown batch id 4294967295"));
    EXPECT_EQ(error("{\"id\":3,\"method\":\"resumeNode\",\"params\":{\"node_id\":0}}"),
        errorLine("3", -32602, "Invalid params: unknown node id 0"));
    EXPECT_EQ(error("{\"id\":3,\"method\":\"setBatchPriority\",\"params\":{\"batch_id\":6,\"priority\":1}}"),
        errorLine("3", -32602, "Invalid params: unknown batch id 6"));
    EXPECT_EQ(error("{\"id\":3,\"method\":\"findBatch\",\"params\":{\"path\":\"/nowhere\"}}"),
        errorLine("3", -32602, "Invalid params: no batch with path /nowhere"));
}

TEST_F(SimRpc, BadTaskListsOfCreateBatchAreInvalidParams)
{
    auto create = [this](const std::string& tasks) {
        return error(
            "{\"id\":8,\"method\":\"createBatch\",\"params\":{\"path\":\"/p/x\",\"tasks\":" + tasks + "}}");
    };
    EXPECT_EQ(create("[]"), errorLine("8", -32602, "Invalid params: tasks must be a non-empty array"));
    EXPECT_EQ(create("[{\"params\":null}]"),
        errorLine("8", -32602, "Invalid params: task 0 must be an object with a non-empty string name"));
    EXPECT_EQ(create("[{\"name\":\"BuildModel\",\"params\":3}]"),
        errorLine("8", -32602, "Invalid params: params of task 0 must be an object or null"));
    EXPECT_EQ(create("[{\"name\":\"BuildModel\",\"params\":null,\"chunks\":[\"a\"]}]"),
        errorLine("8", -32602, "Invalid params: chunks of task 0 must be an array of integers"));
    EXPECT_EQ(create("[{\"name\":\"BuildModel\",\"params\":null,\"frames\":[[1]]}]"),
        errorLine(
            "8", -32602, "Invalid params: frames of task 0 must be an array of [key, frame] unsigned pairs"));
    EXPECT_EQ(m_farm.batches().size(), 5u);
}

TEST_F(SimRpc, ErrorRepliesCarryNoResult)
{
    const Json::Value reply = replyTo("{\"id\":\"x\",\"method\":\"pauseNode\",\"params\":{\"node_id\":77}}");
    EXPECT_FALSE(reply.isMember("result"));
    EXPECT_EQ(reply["id"], Json::Value("x"));
    EXPECT_EQ(reply["error"]["code"].asInt(), -32602);
}

TEST_F(SimRpc, CommandsAnswerTrueWithTheRequestsId)
{
    ASSERT_EQ(m_farm.batch(3)->status, SimStatus::Paused);
    EXPECT_EQ(m_handler.handleLine("{\"id\":5,\"method\":\"abortBatch\",\"params\":{\"batch_id\":3}}"),
        "{\"id\":5,\"result\":true}\n");
    EXPECT_EQ(m_farm.batch(3)->status, SimStatus::Aborted);
    EXPECT_EQ(m_handler.handleLine("{\"id\":\"abc\",\"method\":\"setNodePriority\",\"params\":{\"node_id\":2,"
                                   "\"priority\":-2}}\r"),
        "{\"id\":\"abc\",\"result\":true}\n");
    EXPECT_EQ(m_farm.node(2)->priority, -2);
    EXPECT_EQ(m_handler.handleLine("{\"method\":\"resumeNode\",\"params\":{\"node_id\":2}}"),
        "{\"id\":null,\"result\":true}\n");
}

TEST_F(SimRpc, ListsAndStatusUseTheWireKeys)
{
    const Json::Value batches = replyTo("{\"id\":1,\"method\":\"listBatches\"}");
    EXPECT_EQ(batches["id"].asInt(), 1);
    ASSERT_EQ(batches["result"].size(), 5u);
    const Json::Value& batch = batches["result"][0];
    for (const char* key : {"batch_id", "path", "status", "priority", "time_started", "task"})
        EXPECT_TRUE(batch.isMember(key)) << key;
    for (const char* key : {"name", "params", "status", "progress", "time_elapsed", "time_left",
             "items_total", "items_done", "nodes_active", "nodes_waiting", "nodes_failed"})
        EXPECT_TRUE(batch["task"].isMember(key)) << key;
    EXPECT_EQ(batch["batch_id"].asUInt(), 1u);
    EXPECT_EQ(batch["status"].asString(), "completed");

    const Json::Value nodes = replyTo("{\"id\":2,\"method\":\"listNodes\"}");
    ASSERT_EQ(nodes["result"].size(), 3u);
    for (const char* key :
        {"node_id", "hostname", "version", "status", "priority", "error_count", "last_error"})
        EXPECT_TRUE(nodes["result"][0].isMember(key)) << key;
    EXPECT_EQ(nodes["result"][0]["status"].asString(), "ready");

    const Json::Value status
        = replyTo("{\"id\":3,\"method\":\"getBatchStatus\",\"params\":{\"batch_id\":2}}");
    EXPECT_EQ(status["result"]["path"].asString(), m_farm.batch(2)->path);
    EXPECT_EQ(status["result"]["tasks"].size(), m_farm.batch(2)->tasks.size());
    EXPECT_EQ(status["result"]["status"].asString(), "aborted");
    EXPECT_TRUE(status["result"]["last_error"].isMember("node_id"));
}

TEST_F(SimRpc, CreateAndFindAnswerTheNewId)
{
    EXPECT_EQ(m_handler.handleLine(
                  "{\"id\":1,\"method\":\"createBatch\",\"params\":{\"path\":\"/p/new.kproj\","
                  "\"tasks\":[{\"name\":\"BuildModel\",\"params\":{\"quality\":2},\"chunks\":[0,1],"
                  "\"frames\":[[0,1]]}]}}"),
        "{\"id\":1,\"result\":6}\n");
    EXPECT_EQ(m_farm.batch(6)->tasks[0].params["quality"].asInt(), 2);
    EXPECT_EQ(
        m_handler.handleLine("{\"id\":2,\"method\":\"findBatch\",\"params\":{\"path\":\"/p/new.kproj\"}}"),
        "{\"id\":2,\"result\":6}\n");
}

TEST_F(SimRpc, BlankLinesAreNotAnswered)
{
    EXPECT_EQ(m_handler.handleLine(""), "");
    EXPECT_EQ(m_handler.handleLine("  \r"), "");
}

TEST_F(SimRpc, TheListReplyFollowsChangesOfTheFarm)
{
    const std::string before = m_handler.handleLine("{\"id\":1,\"method\":\"listBatches\"}");
    EXPECT_EQ(m_handler.handleLine("{\"id\":1,\"method\":\"listBatches\"}"), before);
    m_handler.handleLine(
        "{\"id\":2,\"method\":\"setBatchPriority\",\"params\":{\"batch_id\":5,\"priority\":2}}");
    const Json::Value after = replyTo("{\"id\":1,\"method\":\"listBatches\"}");
    EXPECT_EQ(after["result"][4]["priority"].asInt(), 2);
}

TEST_F(SimRpc, NestingDeeperThanTheReaderTakesIsAParseError)
{
    EXPECT_EQ(error(std::string(200000, '[')), errorLine("null", -32700, "Parse error"));
    EXPECT_EQ(error("{\"id\":1,\"method\":\"listNodes\",\"params\":" + std::string(5000, '[')
                  + std::string(5000, ']') + "}"),
        errorLine("null", -32700, "Parse error"));
    // the handler goes on as before
    EXPECT_EQ(error("{\"id\":2,\"method\":\"pauseNode\",\"params\":{\"node_id\":1}}"),
        "{\"id\":2,\"result\":true}\n");
}

TEST_F(SimRpc, ErrorLinesToNoRequestCarryANullId)
{
    EXPECT_EQ(m_handler.errorLine(-32000, "Server busy"), errorLine("null", -32000, "Server busy"));
}
