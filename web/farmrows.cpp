#include "farmrows.h"

#include "recordjson.h"

RowMap batchRows(const ControlClient::BatchList& batches)
{
    RowMap rows;
    for (const ControlClient::BatchInfo& batch : batches)
        rows[batch.batchId] = batchInfoToJson(batch);
    return rows;
}

RowMap nodeRows(const ControlClient::NodeList& nodes)
{
    RowMap rows;
    for (const ControlClient::NodeInfo& node : nodes) {
        Json::Value row = nodeInfoToJson(node);
        for (const char* key : {"batch_id", "progress", "task"}) {
            if (!row.isMember(key))
                row[key] = Json::Value();
        }
        rows[node.nodeId] = std::move(row);
    }
    return rows;
}

Json::Value rowArray(const RowMap& rows)
{
    Json::Value array(Json::arrayValue);
    for (const auto& [id, row] : rows)
        array.append(row);
    return array;
}
