#include "rowdelta.h"

#include "recorddiff.h"

namespace {

// Keys besides the members that changed whose value is to be sent again.
using KeyList = std::vector<const char*>;

template <class Record, class Id, class Row, class Visit, class More>
Json::Value rowDelta(const std::vector<Record>& before, const std::vector<Record>& after, const char* idKey,
    Id id, Row row, Visit visit, More more)
{
    Json::Value delta(Json::objectValue);
    Json::Value& added = delta["added"] = Json::Value(Json::arrayValue);
    Json::Value& removed = delta["removed"] = Json::Value(Json::arrayValue);
    Json::Value& changed = delta["changed"] = Json::Value(Json::arrayValue);
    RecordDiff diff;

    // Both lists in id order, walked side by side.
    auto old = before.begin();
    auto now = after.begin();
    while (old != before.end() || now != after.end()) {
        if (now == after.end() || (old != before.end() && id(*old) < id(*now))) {
            removed.append(Json::UInt(id(*old)));
            ++old;
        } else if (old == before.end() || id(*now) < id(*old)) {
            added.append(row(*now));
            ++now;
        } else {
            const std::vector<const char*>& keys = diff.changed(*old, *now, visit);
            if (!keys.empty()) {
                const Json::Value full = row(*now);
                Json::Value members(Json::objectValue);
                members[idKey] = full[idKey];
                for (const char* key : keys)
                    members[key] = full[key];
                for (const char* key : more(*old, *now))
                    members[key] = full[key];
                changed.append(std::move(members));
            }
            ++old;
            ++now;
        }
    }
    return delta;
}

} // namespace

Json::Value batchDelta(const BatchRows& before, const BatchRows& after)
{
    return rowDelta(
        before, after, "batch_id", [](const ControlClient::BatchInfo& batch) { return batch.batchId; },
        batchRow,
        [](auto& visitor, const ControlClient::BatchInfo& batch) { visitBatchMembers(visitor, batch); },
        [](const ControlClient::BatchInfo&, const ControlClient::BatchInfo&) { return KeyList(); });
}

Json::Value nodeDelta(const NodeRows& before, const NodeRows& after)
{
    return rowDelta(
        before, after, "node_id", [](const ControlClient::NodeInfo& node) { return node.nodeId; }, nodeRow,
        [](auto& visitor, const ControlClient::NodeInfo& node) { visitNodeMembers(visitor, node); },
        // A node that gains or loses its batch gains or loses the members
        // that go with it, whatever their values were.
        [](const ControlClient::NodeInfo& old, const ControlClient::NodeInfo& now) {
            const bool hadBatch = old.batchId != ControlClient::NoId;
            const bool hasBatch = now.batchId != ControlClient::NoId;
            return hadBatch == hasBatch ? KeyList() : KeyList {"progress", "task"};
        });
}

bool deltaIsEmpty(const Json::Value& delta)
{
    return delta["added"].empty() && delta["removed"].empty() && delta["changed"].empty();
}
