#pragma once

#include <json/value.h>

#include "farmrows.h"

// What changed from one reading of a list to the next:
//
//   {"added": [row, ...], "removed": [id, ...],
//    "changed": [{"batch_id": 3, "status": "paused", "priority": 1}, ...]}
//
// A changed row names its id under idKey and each top-level member whose
// value differs, with the new value (a nested object such as "task" whole).
// Rows are in the order of their ids. empty() when nothing changed.
Json::Value rowDelta(const RowMap& before, const RowMap& after, const char* idKey);

bool deltaIsEmpty(const Json::Value& delta);
