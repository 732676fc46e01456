#include "farmjson.h"

namespace {

Json::Value errorToJson(const SimError& error, const char* otherKey)
{
    if (error.time == 0)
        return Json::Value();
    Json::Value object(Json::objectValue);
    object["time"] = Json::UInt(error.time);
    object[otherKey] = Json::UInt(error.otherId);
    object["message"] = error.message;
    return object;
}

} // namespace

Json::Value taskToJson(const SimTask& task)
{
    Json::Value object(Json::objectValue);
    object["name"] = task.name;
    object["params"] = task.params;
    object["status"] = statusWireName(task.status);
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

Json::Value batchToJson(const SimBatch& batch)
{
    Json::Value object(Json::objectValue);
    object["batch_id"] = Json::UInt(batch.id);
    object["path"] = batch.path;
    object["status"] = statusWireName(batch.status);
    object["priority"] = batch.priority;
    object["time_started"] = Json::UInt(batch.timeStarted);
    object["task"] = taskToJson(batch.currentTask());
    return object;
}

Json::Value nodeToJson(const SimNode& node, const std::vector<SimBatch>& batches)
{
    Json::Value object(Json::objectValue);
    object["node_id"] = Json::UInt(node.id);
    object["hostname"] = node.hostname;
    object["version"] = node.version;
    object["status"] = statusWireName(node.status());
    object["priority"] = node.priority;
    object["error_count"] = Json::UInt(node.errorCount);
    object["last_error"] = errorToJson(node.lastError, "batch_id");
    // Without a batch the keys are left out; readers take "none" for them.
    if (node.holdsItem()) {
        const SimTask& task = batches[node.batchId - 1].tasks[node.taskIndex];
        object["batch_id"] = Json::UInt(node.batchId);
        object["progress"] = node.progress();
        Json::Value current(Json::objectValue);
        current["name"] = task.name;
        current["params"] = task.params;
        object["task"] = current;
    }
    return object;
}

Json::Value batchStatusToJson(const SimBatch& batch)
{
    Json::Value object(Json::objectValue);
    object["path"] = batch.path;
    object["status"] = statusWireName(batch.status);
    object["priority"] = batch.priority;
    Json::Value tasks(Json::arrayValue);
    for (const SimTask& task : batch.tasks)
        tasks.append(taskToJson(task));
    object["tasks"] = tasks;
    object["last_error"] = errorToJson(batch.lastError, "node_id");
    return object;
}

Json::Value batchListToJson(const std::vector<SimBatch>& batches)
{
    Json::Value list(Json::arrayValue);
    list.resize(static_cast<Json::ArrayIndex>(batches.size()));
    for (std::size_t i = 0; i < batches.size(); ++i)
        list[static_cast<Json::ArrayIndex>(i)] = batchToJson(batches[i]);
    return list;
}

Json::Value nodeListToJson(const std::vector<SimNode>& nodes, const std::vector<SimBatch>& batches)
{
    Json::Value list(Json::arrayValue);
    list.resize(static_cast<Json::ArrayIndex>(nodes.size()));
    for (std::size_t i = 0; i < nodes.size(); ++i)
        list[static_cast<Json::ArrayIndex>(i)] = nodeToJson(nodes[i], batches);
    return list;
}
