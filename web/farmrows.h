#pragma once

#include <cstdint>
#include <map>

#include <json/value.h>

#include "controlclient.h"

// The farm's records as the web serves them: each row in the wire form the
// server sends (its keys, its status words, times as Unix seconds), keyed by
// its id. A node without a batch has "batch_id", "progress" and "task" as
// null rather than absent, so that every row of a kind has the same members
// and a change is always a change of values.
using RowMap = std::map<std::uint32_t, Json::Value>;

RowMap batchRows(const ControlClient::BatchList& batches);
RowMap nodeRows(const ControlClient::NodeList& nodes);

// The rows as a JSON array, in the order of their ids.
Json::Value rowArray(const RowMap& rows);
