#pragma once

#include <cstdint>
#include <vector>

#include <json/value.h>

#include "controlclient.h"

// The farm's records as the web keeps them: one reading's lists, sorted by
// id with one record per id (the last the server sent), so that two
// readings are compared side by side.
using BatchRows = std::vector<ControlClient::BatchInfo>;
using NodeRows = std::vector<ControlClient::NodeInfo>;

BatchRows batchRows(ControlClient::BatchList batches);
NodeRows nodeRows(ControlClient::NodeList nodes);

bool hasBatch(const BatchRows& rows, std::uint32_t id);
bool hasNode(const NodeRows& rows, std::uint32_t id);

// A row as the web serves it: the wire form the server sends (its keys, its
// status words, times as Unix seconds). A node without a batch has
// "batch_id", "progress" and "task" as null rather than absent, so that
// every row of a kind has the same members and a change is always a change
// of values.
Json::Value batchRow(const ControlClient::BatchInfo& batch);
Json::Value nodeRow(const ControlClient::NodeInfo& node);
