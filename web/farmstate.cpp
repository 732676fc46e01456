#include "farmstate.h"

bool FarmStatus::operator==(const FarmStatus& other) const
{
    return connected == other.connected && since == other.since && reason == other.reason
        && nextTry == other.nextTry;
}

Json::Value farmStatusJson(const FarmStatus& status)
{
    Json::Value object(Json::objectValue);
    object["state"] = status.connected ? "connected" : "disconnected";
    object["since"] = Json::Int64(status.since);
    if (!status.connected) {
        object["reason"] = status.reason;
        object["next_try"] = Json::Int64(status.nextTry);
    }
    return object;
}

Json::Value snapshotDocument(const FarmState& state)
{
    Json::Value document(Json::objectValue);
    document["seq"] = Json::UInt64(state.seq);
    document["farm"] = farmStatusJson(state.farm);
    document["batches"] = rowArray(*state.batches);
    document["nodes"] = rowArray(*state.nodes);
    return document;
}
