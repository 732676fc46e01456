#include "controlclient.h"
#include "paramjson.h"

namespace {

// Wire strings by status value.
const char* const StatusNames[] = {"pending", "inprogress", "completed", "paused", "aborted", "ready"};

} // namespace

ControlClient::Status ControlClient::statusFromJson(const Json::Value& value)
{
    // Unknown words (and any other spelling) read as Pending.
    const std::string text = value.asString();
    if (text == "pending")
        return Pending;
    if (text == "completed")
        return Completed;
    if (text == "inprogress")
        return InProgress;
    if (text == "paused")
        return Paused;
    if (text == "aborted")
        return Aborted;
    if (text == "ready")
        return Ready;
    return Pending;
}

Json::Value ControlClient::statusToJson(int status)
{
    if (status < Pending || status > Ready)
        return {};
    return Json::Value(StatusNames[status]);
}

void ControlClient::parseTaskInfo(const Json::Value& object, TaskInfo& out)
{
    out.name = object["name"].asString();
    out.params = paramsFromJson(object["params"]);
    out.status = statusFromJson(object["status"]);
    out.timeElapsed = object["time_elapsed"].asDouble();
    out.timeLeft = object["time_left"].asDouble();
    out.progress = object["progress"].asDouble();
    out.itemsTotal = object["items_total"].asInt();
    out.itemsDone = object["items_done"].asInt();
    out.nodesActive = object["nodes_active"].asInt();
    out.nodesWaiting = object["nodes_waiting"].asInt();
    out.nodesFailed = object["nodes_failed"].asInt();
}

void ControlClient::parseBatchInfo(const Json::Value& object, BatchInfo& out)
{
    out.batchId = object["batch_id"].asUInt();
    out.path = object["path"].asString();
    out.status = statusFromJson(object["status"]);
    out.priority = object["priority"].asInt();
    out.timeStarted = object["time_started"].asUInt();
    parseTaskInfo(object["task"], out.task);
}

void ControlClient::parseNodeInfo(const Json::Value& object, NodeInfo& out)
{
    out.hostname = object["hostname"].asString();
    out.nodeId = object["node_id"].asUInt();
    out.version = object["version"].asString();
    out.status = statusFromJson(object["status"]);
    out.priority = object["priority"].asInt();
    out.batchId = object.get("batch_id", Json::Value(NoId)).asUInt();
    out.progress = object.get("progress", Json::Value(0.0)).asDouble();
    const Json::Value& task = object["task"];
    out.taskName = task["name"].asString();
    out.taskParams = paramsFromJson(task["params"]);
    out.errorCount = object.get("error_count", Json::Value(0u)).asUInt();

    out.lastError = NodeError();
    const Json::Value& lastError = object["last_error"];
    if (!lastError.isNull()) {
        out.lastError.time = lastError["time"].asUInt();
        out.lastError.batchId = lastError["batch_id"].asUInt();
        out.lastError.message = lastError["message"].asString();
    }
}

void ControlClient::parseBatchStatus(const Json::Value& object, BatchStatus& out)
{
    out.path = object["path"].asString();
    out.status = statusFromJson(object["status"]);
    out.priority = object["priority"].asInt();

    const Json::Value& tasks = object["tasks"];
    out.tasks.resize(tasks.size());
    for (Json::ArrayIndex i = 0; i < out.tasks.size(); ++i)
        parseTaskInfo(tasks[i], out.tasks[i]);

    out.lastError = BatchError();
    const Json::Value& lastError = object["last_error"];
    if (!lastError.isNull()) {
        out.lastError.time = lastError["time"].asUInt();
        out.lastError.nodeId = lastError["node_id"].asUInt();
        out.lastError.message = lastError["message"].asString();
    }
}

void ControlClient::parseBatchList(const Json::Value& array, BatchList& out)
{
    // A result that is not an array gives as many entries as jsoncpp's size()
    // says; indexing an object then raises jsoncpp's error.
    out.resize(array.size());
    for (Json::ArrayIndex i = 0; i < out.size(); ++i)
        parseBatchInfo(array[i], out[i]);
}

void ControlClient::parseNodeList(const Json::Value& array, NodeList& out)
{
    out.resize(array.size());
    for (Json::ArrayIndex i = 0; i < out.size(); ++i)
        parseNodeInfo(array[i], out[i]);
}
