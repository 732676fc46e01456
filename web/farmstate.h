#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <json/value.h>

#include "farmrows.h"

// Whether the farm can be read, and since when (Unix seconds). While it
// cannot, reason says why and nextTry when the next attempt is due.
struct FarmStatus
{
    bool connected = false;
    std::int64_t since = 0;
    std::string reason;
    std::int64_t nextTry = 0;
};

// Everything a stream is shown: the last known rows (kept while the farm
// cannot be read) and the farm's status, as of event seq. The rows of a
// reading are shared, never changed, by the reading and the hub.
struct FarmState
{
    std::uint64_t seq = 0;
    FarmStatus farm;
    std::shared_ptr<const BatchRows> batches = std::make_shared<const BatchRows>();
    std::shared_ptr<const NodeRows> nodes = std::make_shared<const NodeRows>();
};

// {"state": "connected", "since": T} or
// {"state": "disconnected", "since": T, "reason": "...", "next_try": T2}
Json::Value farmStatusJson(const FarmStatus& status);

// {"batches": [...], "farm": {...}, "nodes": [...], "seq": N} as compact
// JSON, its members in jsoncpp's order; written row by row, so that no tree
// of every row is ever built.
std::string snapshotText(const FarmState& state);
