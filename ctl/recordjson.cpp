#include "recordjson.h"

#include "paramjson.h"

Json::Value taskInfoToJson(const ControlClient::TaskInfo& task)
{
    Json::Value object(Json::objectValue);
    object["name"] = task.name;
    object["params"] = paramsToJson(task.params);
    object["status"] = ControlClient::statusToJson(task.status);
    object["progress"] = task.progress;
    object["time_elapsed"] = task.timeElapsed;
    object["time_left"] = task.timeLeft;
    object["items_total"] = task.itemsTotal;
    object["items_done"] = task.itemsDone;
    object["nodes_active"] = task.nodesActive;
    object["nodes_waiting"] = task.nodesWaiting;
    object["nodes_failed"] = task.nodesFailed;
    return object;
}

Json::Value batchInfoToJson(const ControlClient::BatchInfo& batch)
{
    Json::Value object(Json::objectValue);
    object["batch_id"] = Json::UInt(batch.batchId);
    object["path"] = batch.path;
    object["status"] = ControlClient::statusToJson(batch.status);
    object["priority"] = batch.priority;
    object["time_started"] = Json::UInt(batch.timeStarted);
    object["task"] = taskInfoToJson(batch.task);
    return object;
}

Json::Value nodeInfoToJson(const ControlClient::NodeInfo& node)
{
    Json::Value object(Json::objectValue);
    object["node_id"] = Json::UInt(node.nodeId);
    object["hostname"] = node.hostname;
    object["version"] = node.version;
    object["status"] = ControlClient::statusToJson(node.status);
    object["priority"] = node.priority;
    object["error_count"] = Json::UInt(node.errorCount);
    if (node.batchId != ControlClient::NoId) {
        object["batch_id"] = Json::UInt(node.batchId);
        object["progress"] = node.progress;
        object["task"]["name"] = node.taskName;
        object["task"]["params"] = paramsToJson(node.taskParams);
    }
    if (node.lastError.time != 0) {
        object["last_error"]["time"] = Json::UInt(node.lastError.time);
        object["last_error"]["batch_id"] = Json::UInt(node.lastError.batchId);
        object["last_error"]["message"] = node.lastError.message;
    } else {
        object["last_error"] = Json::Value();
    }
    return object;
}

Json::Value batchStatusToJson(const ControlClient::BatchStatus& status)
{
    Json::Value object(Json::objectValue);
    object["path"] = status.path;
    object["status"] = ControlClient::statusToJson(status.status);
    object["priority"] = status.priority;
    object["tasks"] = Json::Value(Json::arrayValue);
    for (const ControlClient::TaskInfo& task : status.tasks)
        object["tasks"].append(taskInfoToJson(task));
    if (status.lastError.time != 0) {
        object["last_error"]["time"] = Json::UInt(status.lastError.time);
        object["last_error"]["node_id"] = Json::UInt(status.lastError.nodeId);
        object["last_error"]["message"] = status.lastError.message;
    } else {
        object["last_error"] = Json::Value();
    }
    return object;
}

Json::Value batchListToJson(const ControlClient::BatchList& batches)
{
    Json::Value list(Json::arrayValue);
    for (const ControlClient::BatchInfo& batch : batches)
        list.append(batchInfoToJson(batch));
    return list;
}

Json::Value nodeListToJson(const ControlClient::NodeList& nodes)
{
    Json::Value list(Json::arrayValue);
    for (const ControlClient::NodeInfo& node : nodes)
        list.append(nodeInfoToJson(node));
    return list;
}
