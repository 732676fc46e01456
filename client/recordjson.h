#pragma once

#include <json/value.h>

#include "controlclient.h"

// The client's records back in their wire form, for --json output: the keys
// and value kinds the server sends. A node without a batch carries no
// "batch_id", "progress" or "task"; an error with time 0 is null.
Json::Value taskInfoToJson(const ControlClient::TaskInfo& task);
Json::Value batchInfoToJson(const ControlClient::BatchInfo& batch);
Json::Value nodeInfoToJson(const ControlClient::NodeInfo& node);
Json::Value batchStatusToJson(const ControlClient::BatchStatus& status);
Json::Value batchListToJson(const ControlClient::BatchList& batches);
Json::Value nodeListToJson(const ControlClient::NodeList& nodes);
