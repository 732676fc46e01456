#pragma once

#include <json/value.h>

#include "simrecords.h"

// The farm's records in their wire form: lower-case keys with underscores,
// ids as unsigned integers, priorities and counts as signed ones.
Json::Value taskToJson(const SimTask& task);
Json::Value batchToJson(const SimBatch& batch);
Json::Value nodeToJson(const SimNode& node, const std::vector<SimBatch>& batches);
// The "getBatchStatus" result: path, status, priority, all tasks, last error.
Json::Value batchStatusToJson(const SimBatch& batch);
Json::Value batchListToJson(const std::vector<SimBatch>& batches);
Json::Value nodeListToJson(const std::vector<SimNode>& nodes, const std::vector<SimBatch>& batches);
