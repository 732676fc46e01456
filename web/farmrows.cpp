#include "farmrows.h"

#include <algorithm>

#include "recordjson.h"

namespace {

template <class Record, class Id>
std::vector<Record> sortedById(std::vector<Record> records, Id id)
{
    const auto byId = [&](const Record& a, const Record& b) { return id(a) < id(b); };
    const auto sameId = [&](const Record& a, const Record& b) { return id(a) == id(b); };
    // The server sends its lists in id order: then nothing moves.
    if (!std::is_sorted(records.begin(), records.end(), byId))
        std::stable_sort(records.begin(), records.end(), byId); // of one id, the server's last stays last
    if (std::adjacent_find(records.begin(), records.end(), sameId) == records.end())
        return records;
    std::vector<Record> rows;
    rows.reserve(records.size());
    for (Record& record : records) {
        if (!rows.empty() && sameId(rows.back(), record))
            rows.back() = std::move(record);
        else
            rows.push_back(std::move(record));
    }
    return rows;
}

template <class Record, class Id>
bool hasId(const std::vector<Record>& rows, std::uint32_t wanted, Id id)
{
    const auto found = std::lower_bound(rows.begin(), rows.end(), wanted,
        [&](const Record& row, std::uint32_t value) { return id(row) < value; });
    return found != rows.end() && id(*found) == wanted;
}

std::uint32_t batchId(const ControlClient::BatchInfo& batch)
{
    return batch.batchId;
}

std::uint32_t nodeId(const ControlClient::NodeInfo& node)
{
    return node.nodeId;
}

} // namespace

BatchRows batchRows(ControlClient::BatchList batches)
{
    return sortedById(std::move(batches), batchId);
}

NodeRows nodeRows(ControlClient::NodeList nodes)
{
    return sortedById(std::move(nodes), nodeId);
}

bool hasBatch(const BatchRows& rows, std::uint32_t id)
{
    return hasId(rows, id, batchId);
}

bool hasNode(const NodeRows& rows, std::uint32_t id)
{
    return hasId(rows, id, nodeId);
}

Json::Value batchRow(const ControlClient::BatchInfo& batch)
{
    return batchInfoToJson(batch);
}

Json::Value nodeRow(const ControlClient::NodeInfo& node)
{
    Json::Value row = nodeInfoToJson(node);
    for (const char* key : {"batch_id", "progress", "task"}) {
        if (!row.isMember(key))
            row[key] = Json::Value();
    }
    return row;
}
