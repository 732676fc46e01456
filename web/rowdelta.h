#pragma once

#include <json/value.h>

#include "farmrows.h"

// What changed from one reading of a list to the next:
//
//   {"added": [row, ...], "removed": [id, ...],
//    "changed": [{"batch_id": 3, "status": "paused", "priority": 1}, ...]}
//
// A changed row names its id and each top-level member whose value differs,
// with the new value (a nested object such as "task" whole). Rows are in
// the order of their ids. Only rows that changed are encoded.
Json::Value batchDelta(const BatchRows& before, const BatchRows& after);
Json::Value nodeDelta(const NodeRows& before, const NodeRows& after);

bool deltaIsEmpty(const Json::Value& delta);
